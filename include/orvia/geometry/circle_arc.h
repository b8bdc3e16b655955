// Constant-curvature piece.
#pragma once

#include <cmath>

#include <orvia/geometry/parametric_function.h>
#include <orvia/ruvex/elements/curves.h>

// Position of the arc of curvature k and signed radius r (= 1/k, or the stand-in) after s metres from the
// origin heading +x: (r sin ks, r (1 - cos ks)) without cancellation near ks = 0.
// The same, with the cosine and sine of the local heading k * s, which give its tangent.
inline vek::Vector2 CircleArcLocalPosition(double k, double r, double s, double& cosine, double& sine) {
    const double angle = k * s;
    sine = std::sin(angle);
    cosine = std::cos(angle);
    // 1 - cos = sin^2 / (1 + cos) where cos > 0, which has no cancellation; elsewhere the difference is safe.
    const double versine = cosine > 0 ? sine * sine / (1 + cosine) : 1 - cosine;
    return {r * sine, r * versine};
}
inline vek::Vector2 CircleArcLocalPosition(double k, double r, double s) {
    double cosine, sine;
    return CircleArcLocalPosition(k, r, s, cosine, sine);
}

class CircleArc : public ParametricFunction, public Ruvex::CircleArcElement {
public:
    // Below this |curvature| (1/m) an arc is refused by SetCurvature; one read from a file is sampled with
    // the stand-in radius kZeroCurvatureRadius, which keeps every sample at the start, heading 0.
    static constexpr double kMinCurvature = 1e-12;
    static constexpr double kZeroCurvatureRadius = 10000;

    // Length 1 m, curvature 1/m.
    CircleArc();
    // Stored as given (a zero curvature is kept, see kMinCurvature), the length through ConstructedLength; a
    // curvature that is not finite is stored as 0.
    CircleArc(double length, double curvature);
    CircleArc(const CircleArc& other);
    ~CircleArc() override;

    double GetLength() const override { return m_Length; }
    // A length outside [0, kMaxLength] (NaN included) is refused. SetRawLength returns true.
    void SetLength(double length) override;
    bool SetRawLength(double length);

    // 1/m, positive turning left.
    double GetCurvature() const { return m_Curvature; }
    // False (nothing changes) when |curvature| < kMinCurvature or it is not finite.
    bool SetCurvature(double curvature);

    CircleArc* Clone() const override;
    // Another CircleArc with exactly the same length and curvature.
    bool IsEqual(const ParametricFunction* other) const override;
    Ruvex::Element* GetElement() const override;
    uint64_t AddRef() override;
    uint64_t Release() override;
    // Negates the curvature.
    void Flip() override;

    // The composite curve's direct sample (no virtual call; see ParametricFunction::PlaceLocalSample): the
    // same values as GetPointData(s), with the unit tangent (cos, sin) of its heading when tangent is set
    // (see PlacedTangent).
    PointData GetPointDataDirect(double s, vek::Vector2* tangent) const {
        double cosine, sine;
        const vek::Vector2 local = CircleArcLocalPosition(m_Curvature, m_radius, s, cosine, sine);
        const PointData pd = PlaceLocalSample(s, PointData(local, m_Curvature * s, m_Curvature));
        if (tangent) *tangent = PlacedTangent(s, {cosine, sine});
        return pd;
    }

    // Reads the tag, then recomputes. True for any document; false only for null arguments.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

protected:
    void DataChanged() override;
    // (R sin ks, R (1 - cos ks)), heading ks, for any s; the second coordinate is computed without
    // cancellation, so an arc of curvature 1e-11 stays within 1e-9 m of the true circle over 100 m.
    PointData GetLocalPointData(double s) const override {
        return PointData(CircleArcLocalPosition(m_Curvature, m_radius, s), m_Curvature * s, m_Curvature);
    }
    void InvertLocalData() override;

private:
    double m_radius = 1;  // signed; kZeroCurvatureRadius for a zero curvature
};
