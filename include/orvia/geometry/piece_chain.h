// Pieces placed end to end and addressed by one abscissa. A stand-in with the interface of the composite
// horizontal curve that ClothoidSpline needs; it will give way to that curve once it exists.
#pragma once

#include <cstddef>
#include <vector>

#include <orvia/geometry/parametric_function.h>
#include <orvia/geometry/point_data.h>
#include <orvia/ruvex/counted.h>

namespace Orvia {

class PieceChain {
public:
    PieceChain();
    // Deep: the other's pieces are cloned.
    PieceChain(const PieceChain& other);
    PieceChain& operator=(const PieceChain& other);
    ~PieceChain();

    // Appends the piece (taking a reference) after the current end abscissa; its placement is left as it is
    // until UpdateFunctionsFromStart(). Null is ignored.
    void AddFunction(ParametricFunction* piece);
    // Removes count pieces from first (clipped to the end); false when first is out of range.
    bool RemoveFunction(size_t first, size_t count);
    void Clear();
    size_t GetFunctionCount() const { return m_records.size(); }
    // Null beyond the count.
    ParametricFunction* GetFunction(size_t index) const;
    // Abscissa (m) where piece index starts; the total length beyond the count.
    double GetFunctionStartLength(size_t index) const;
    // Sum of the piece lengths (m); 0 when empty.
    double GetLength() const { return m_records.empty() ? 0 : m_records.back().end; }

    // Sample at abscissa s, moved by t metres to the right of the direction of travel. Within [0, length]
    // the piece holding s is sampled (a boundary belongs to the piece found first by bisection); beyond the
    // ends the chain continues straight along its end tangents with curvature 0. False when empty.
    bool GetPointData(double s, double t, PointData& out) const;

    // Places the first piece and chains the others after it; nothing when empty.
    void SetOrigin(const vek::Vector2& position, double orientation);
    // The first piece's start, (0, 0) and 0 when empty.
    vek::Vector2 GetOriginPosition() const;
    double GetOriginOrientation() const;
    // Each piece after the first starts at the end of the one before, along its end heading.
    void UpdateFunctionsFromStart();

private:
    struct Record {
        Ruvex::CountedPtr<ParametricFunction> piece;
        double start = 0;
        double end = 0;
    };

    void UpdateAbscissas();
    size_t FindRecord(double s) const;

    std::vector<Record> m_records;
};

}  // namespace Orvia
