#pragma once

// Modifiers that bend the lane borders of a profile inside a portion.
//
// x is the distance (m) from the start of the stretch a modifier applies to; lateral distances are in metres
// from the axis, positive to the right.

#include <orvia/geometry/polynomial_function.h>
#include <orvia/ruvex/elements/portion.h>

#include <cstddef>
#include <vector>

namespace Orvia {

class Passageway;
class Portion;

// One piece of a border's drift, as start abscissa and coefficients of y = a + b u + c u^2 + d u^3 with
// u = x - start.
struct FuncData {
    double start = 0;
    double a = 0, b = 0, c = 0, d = 0;
};

class BorderOffset : public Ruvex::BorderOffsetElement {
public:
    BorderOffset() = default;
    BorderOffset(double t, double yOffset, double dirIn, double dirOut);
    ~BorderOffset() override;

    // Seen from the other end: the directions swap and the offset changes side (t is kept).
    void Invert();
    void PostLoad() {}
    void CopyFrom(const BorderOffset* other);
    // Count 0; the caller owns it.
    BorderOffset* Clone() const;
};

// The drift of one border (id: its index in the profile): a cubic Hermite chain through the offsets, each
// added to the straight blend between the border's base positions at both ends of the stretch.
class BorderModifier : public Ruvex::BorderModifierElement {
public:
    ~BorderModifier() override;

    size_t GetBorderOffsetCount() const { return m_BorderOffsets.size(); }
    // Null beyond the count (or for a plain record).
    BorderOffset* GetBorderOffset(size_t index) const;
    // Replaces offset `index`; nothing beyond the count or for null.
    void setBorderOffset(size_t index, BorderOffset* offset);
    void addBorderOffset(BorderOffset* offset);
    BorderOffset* createBorderOffset(double t, double yOffset, double dirIn, double dirOut);

    // Builds one function per consecutive pair of offsets over [0, sEnd - sStart]. The base positions are the
    // passageway's lanes' left borders (right borders when this is the last border), its stored points where
    // a lane is missing; no passageway gives 0. Fewer than two offsets build nothing.
    void LoadFunctions(const Passageway* passageway, double sStart, double sEnd, size_t lastBorderId);
    size_t GetFunctionCount() const { return m_functions.size(); }
    // The border's distance to the axis at x (the end functions extrapolate); 0 without functions.
    double GetDistanceFromAxis(double x) const;
    double computeDerivativeAtAbscissa(double x) const;
    double getMaxCurvature(const double& x) const;
    void getFunctionsCoefficients(std::vector<FuncData>& out) const;
    // Index of the function for x by bisection over [lo, hi); npos when the range is empty.
    size_t GetFunctionAtIdx(double x, size_t lo, size_t hi) const;

    // Mirrors the drift for a reversed portion: t -> 1 - t, each offset inverted, order reversed.
    void Invert(const Portion* portion);
    void PostLoad(Portion*) {}
    // Copies the offsets (deep) and the id; the functions are rebuilt by LoadFunctions.
    void CopyFrom(const BorderModifier* other);
    BorderModifier* Clone() const;

    static constexpr size_t npos = static_cast<size_t>(-1);

private:
    std::vector<Ruvex::CountedPtr<PolynomialFunction>> m_functions;
};

class ProfileModifier : public Ruvex::ProfileModifierElement {
public:
    ~ProfileModifier() override;

    size_t GetBorderModifierCount() const { return m_BorderModifiers.size(); }
    BorderModifier* GetBorderModifier(size_t index) const;
    // The first border modifier of that id (linear search), or null.
    BorderModifier* GetBorderModifierById(size_t id) const;
    std::vector<size_t> GetBorderModifierIds() const;
    // Appends an offset to the border modifier of `id`, created when missing. Offsets are expected in
    // increasing t.
    BorderModifier* CreateOrUpdateBorderModifier(size_t id, double t, double yOffset, double dirIn,
                                                 double dirOut);
    // LoadFunctions of every border modifier; `passageways` are the stretch's strips, lane by lane: border
    // id i takes strip min(i, count - 1).
    void LoadFunctions(const std::vector<Passageway>& passageways, double sStart, double sEnd,
                       size_t lastBorderId);
    void Invert(const Portion* portion);
    void PostLoad(Portion* portion);
    void CopyFrom(const ProfileModifier* other);
    ProfileModifier* Clone() const;
};

}  // namespace Orvia
