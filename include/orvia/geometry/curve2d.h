// The composite horizontal curve: planar pieces placed end to end and addressed by one abscissa.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <orvia/geometry/parametric_function.h>
#include <orvia/geometry/point_data.h>
#include <orvia/ruvex/elements/curves.h>
#include <orvia/vek/box.h>
#include <orvia/vek/math.h>
#include <orvia/vek/vector.h>

namespace Orvia {

// The element list (Functions) holds the pieces in file order with one reference each; a table of
// {piece, start abscissa, end abscissa} mirrors it for the queries and is rebuilt after every edit made here.
// Elements of the list that are not planar pieces (a document read without the library's factory) are kept
// for saving and take no part in the geometry.
//
// Abscissa s in metres from the start of the first piece; lateral offset t in metres, positive to the right
// of the direction of travel. Queries are const, allocate nothing and take no locks.
class Curve2D : public Ruvex::XYCurveElement {
public:
    static constexpr size_t npos = std::numeric_limits<size_t>::max();

    // SetLength never makes a curve shorter than this (m): a curve keeps a direction.
    static constexpr double kMinLength = 0.01;
    // Lengths and abscissas closer than this (m) are the same.
    static constexpr double kLengthTolerance = 1e-12;
    // Below this |curvature| (1/m) the offset sample's curvature is rescaled by 1 / (k t + 1); see
    // GetPointData.
    static constexpr double kStraightCurvature = 1e-12;
    // SearchNearestAbscissa starts from s0 only when s0 / length lies within this range (unitless); otherwise
    // from the start. A Newton step landing outside [-length, 2 length] restarts from the start too.
    static constexpr double kStartRatioMin = -0.2;
    static constexpr double kStartRatioMax = 1.2;
    // Fraction of the tangential distance moved per iteration (unitless): halving keeps the iteration
    // from jumping past the foot point where the curve bends towards the point.
    static constexpr double kNewtonDamping = 0.5;
    // The Newton steps' result stands when the full Newton step from it is within this many tolerances
    // (unitless): the damped steps leave up to three times their last step near a bend's inside.
    static constexpr double kFootStepTolerance = 4;
    // Largest turn (radians) between two samples of the safeguarded search: within two such intervals the
    // distance to a point has one minimum on an arc or a clothoid.
    static constexpr double kBracketTurn = vek::kPi / 4;
    // Samples per piece of the safeguarded search: at most this many intervals on a piece (a piece turning
    // more is sampled more coarsely), and this many on a piece of another class, whose turn is unknown.
    static constexpr int kMaxBracketIntervals = 64;
    static constexpr int kOtherBracketIntervals = 32;
    // Refinement of the safeguarded search: steps at most, and the narrowest bracket relative to the
    // abscissa (unitless), below which rounding decides.
    static constexpr int kMaxRefinements = 200;
    static constexpr double kMinBracketWidth = 1e-15;

    Curve2D();
    // Deep: the pieces are cloned; other elements of the list are shared.
    Curve2D(const Curve2D& other);
    Curve2D& operator=(const Curve2D& other);
    ~Curve2D() override;

    // --- Pieces -------------------------------------------------------------------------------------------
    // The curve takes one reference on the piece. The piece keeps its placement until
    // UpdateFunctionsFromStart() or SetOrigin() chains the pieces. False for null.
    bool AddFunction(ParametricFunction* function);
    // Inserts before piece index; an index at or beyond the count (npos) appends.
    bool InsertFunction(ParametricFunction* function, size_t index);
    // Removes count pieces from first (clipped to the end), dropping one reference each. False when first is
    // beyond the count.
    bool RemoveFunction(size_t first, size_t count);
    bool RemoveFunction(size_t index) { return RemoveFunction(index, 1); }
    // Cuts piece index at ratio of its length (0 < ratio < 1) and inserts the second part after it; false
    // when the index or the ratio is out of range. The parts keep their placement (the second starts where
    // the first now ends).
    bool SplitFunction(size_t index, double ratio);
    // Null beyond the count.
    ParametricFunction* GetFunction(size_t index) const;
    size_t GetFunctionCount() const { return m_records.size(); }
    // Position of the piece (pointer comparison), npos when absent.
    size_t GetFunctionIndex(const ParametricFunction* function) const;
    // The piece holding s and its start abscissa: npos for an empty curve, and npos with startAbscissa = the
    // total length when s lies beyond the end (by more than kLengthTolerance). s < 0 gives piece 0.
    size_t GetFunctionIndex(double s, double& startAbscissa) const;
    // Bisection over the pieces [lo, hi): a piece whose start exceeds s sends the search left, one whose end
    // is below s sends it right; an abscissa on a boundary belongs to the piece met first. npos when the
    // range is empty (hi is clipped to the count).
    size_t GetFunctionIndexAt(double s, size_t lo, size_t hi) const;
    // Start abscissa of piece index (m); the total length beyond the count.
    double GetFunctionStartLength(size_t index) const;
    // Rebuilds the table from the element list and the pieces' current lengths: call it after changing a
    // piece's length directly.
    void UpdateParametricFunctionVector();

    // --- Geometry -----------------------------------------------------------------------------------------
    // Sum of the piece lengths (m), 0 when empty.
    double GetLength() const { return m_records.empty() ? 0 : m_records.back().end; }
    // Makes the length max(length, kMinLength): shortening cuts the piece holding the new end and drops
    // those after it; lengthening stretches the last piece (by its own SetLength rule). Nothing when empty
    // or when length is not finite.
    void SetLength(double length);

    // Sample at (s, t). Within [0, length] the piece holding s (see GetFunctionIndexAt) is sampled; beyond
    // the ends the curve continues straight along its end tangent with curvature 0 (heading then in
    // (-pi, pi]). The point moves by t to the right; the curvature stays the axis curvature (see
    // OffsetPointData). False, out untouched, for an empty curve.
    bool GetPointData(double s, double t, PointData& out) const;
    // The same, with the unit tangent (cos, sin) of out.heading, which the offset computes anyway (and
    // straight pieces know): for frame queries, which would otherwise compute it again.
    bool GetPointDataAndTangent(double s, double t, PointData& out, vek::Vector2& tangent) const;

    // Abscissa of the foot of p on the curve and its straight extensions (so possibly negative or beyond the
    // length). First damped Newton steps from s0 (see kStartRatioMin / kNewtonDamping), which stop when two
    // successive samples lie closer than tolerance (m): the result is then within about tolerance of the
    // local foot near s0. When they do not settle within maxIterations + 1 steps (far outside a bend they
    // can cycle), or settle where the full Newton step exceeds kFootStepTolerance * tolerance (near the
    // centre of curvature the damped steps stall), a safeguarded search takes over: the nearest of samples
    // at most kBracketTurn apart on each piece, refined within its neighbours to tolerance, against the feet
    // on the extensions; it returns the nearest point's abscissa (within tolerance where the nearest point is
    // unique; among equally near points, one of them). maxIterations < 1 asks for the single damped step,
    // returned as it is. s0 for an empty curve; NaN for a point that is not finite. Allocates nothing.
    double SearchNearestAbscissa(const vek::Vector2& p, double s0, double tolerance, int maxIterations) const;
    // Foot of p on the straight extension before the start (s <= 0) or beyond the end (s >= length), with
    // the signed distance d (m, positive right of the direction of travel). False when p lies on the curve's
    // side of that end, or the curve is empty.
    bool ComputeAbscissaDistBefore(const vek::Vector2& p, double& s, double& d) const;
    bool ComputeAbscissaDistAfter(const vek::Vector2& p, double& s, double& d) const;

    // Places the first piece at position (m) heading orientation (radians) and chains the others after it;
    // nothing when empty or when the first piece already starts there.
    void SetOrigin(const vek::Vector2& position, double orientation);
    // The first piece's start; (0, 0) and 0 when empty.
    vek::Vector2 GetOriginPosition() const;
    double GetOriginOrientation() const;
    // Each piece after the first starts at the end of the one before, along its end heading; a PolyLine at
    // the end recomputes its natural end tangent; the table is rebuilt.
    void UpdateFunctionsFromStart();
    // The same points run backwards: pieces in reverse order, each inverted.
    void Invert();
    // Union of the pieces' boxes (each rebuilt lazily by its piece); empty when there is no piece.
    vek::Box2 GetBoundingBox() const;

    // Same number of pieces, each IsEqual to the other's at the same index (placement not compared). False
    // for null.
    bool IsEqual(const Curve2D* other) const;
    // Clones of other's pieces and its origin (nothing for null or itself).
    void CopyFrom(const Curve2D* other);
    // No piece.
    void Clear();

    // Reads the origin and the pieces; ClothoidSpline pieces keep their first point at the origin along the
    // x axis, PolyLine pieces their first point; then the pieces are placed from the origin and chained.
    // False only when the record's reader fails.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;
    // Writes the current origin (the first piece's start) and the pieces.
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

protected:
    // Foot of p on the straight line through the sample at sRef (0 or the length) along the outward
    // direction; see ComputeAbscissaDistBefore.
    bool ComputeAbscissaDistOutside(const vek::Vector2& p, double sRef, double& s, double& d) const;
    // Sample at s on the tangent line through the sample at sRef, moved by t to the right; curvature 0.
    bool ComputePointDataOutside(double sRef, double s, double t, PointData& out) const;
    // Moves pd by t to the right of its heading. The curvature is the axis curvature on purpose (lane data
    // are read against the axis), except that one below kStraightCurvature becomes k / (k t + 1) (0 when
    // |k t + 1| < kStraightCurvature).
    static void OffsetPointData(double t, PointData& pd);

private:
    // Pieces of exactly these classes are sampled through their direct (non-virtual) samples.
    enum class Kind : uint8_t { Other, Segment, CircleArc, ClothoArc };

    struct Record {
        ParametricFunction* function = nullptr;  // borrowed: the element list holds the reference
        double start = 0;
        double end = 0;
        Kind kind = Kind::Other;
    };

    // Whether sample (with its unit tangent) is the foot of p within tolerance: see kFootStepTolerance.
    static bool IsFoot(const vek::Vector2& p, const PointData& sample, const vek::Vector2& tangent,
                       double tolerance);
    // The safeguarded search of SearchNearestAbscissa; sIteration, where the Newton steps ended, is kept
    // when nothing found is nearer.
    double SearchNearestSafely(const vek::Vector2& p, double sIteration, double tolerance) const;
    // Intervals the safeguarded search samples on a record (at least 1).
    static int BracketIntervals(const Record& record);
    // The nearest point's abscissa within [lo, hi] (the bracket of a sample nearer than its neighbours).
    double RefineNearest(const vek::Vector2& p, double lo, double hi, double tolerance) const;

    // Position in the element list of piece index's element; the list size beyond the count.
    size_t ElementPosition(size_t index) const;
    // Rebuilds the abscissa index of the table.
    void IndexRecords();
    // The record GetFunctionIndexAt finds for s in [0, length] (not empty). A record index `hint` (or npos)
    // is tried first: a projection's steps mostly stay on one piece.
    size_t RecordAt(double s, size_t hint) const;
    // GetPointData(s, t, out) with, when tangent is set, the unit tangent (cos, sin) of out.heading, and,
    // when hint is set, its record tried first (see RecordAt) and replaced by the record sampled.
    bool Sample(double s, double t, PointData& out, vek::Vector2* tangent, size_t* hint) const;
    // Its part within the table (not empty): the record RecordAt finds for s, sampled at s clamped to its
    // span. Never extrapolates, so that the end samples of the extrapolation cannot recurse whatever the
    // lengths are.
    void SampleWithin(double s, double t, PointData& out, vek::Vector2* tangent, size_t* hint) const;

    std::vector<Record> m_records;
    // Bucket b covers abscissas [b, b + 1) / m_bucketScale and holds the first record whose end reaches the
    // bucket's start; the last entry closes the last bucket. Empty when the table cannot be indexed (no
    // length, or a piece of negative length).
    std::vector<uint32_t> m_buckets;
    double m_bucketScale = 0;  // buckets per metre
};

}  // namespace Orvia
