// Straight piece.
#pragma once

#include <orvia/geometry/parametric_function.h>
#include <orvia/ruvex/elements/curves.h>

class Segment : public ParametricFunction, public Ruvex::SegmentElement {
public:
    // Length 1 m.
    Segment();
    // See ConstructedLength.
    explicit Segment(double length);
    Segment(const Segment& other);
    ~Segment() override;

    double GetLength() const override { return m_Length; }
    // A length outside [0, kMaxLength] (NaN included) is refused.
    void SetLength(double length) override;
    // Same as SetLength for a segment; returns true.
    bool SetRawLength(double length);

    Segment* Clone() const override;
    bool IsEqual(const ParametricFunction* other) const override;
    Ruvex::Element* GetElement() const override;
    uint64_t AddRef() override;
    uint64_t Release() override;

    // The composite curve's direct sample (no virtual call; see ParametricFunction::PlaceLocalSample): the
    // same values as GetPointData(s), with the unit tangent (cos, sin) of its heading when tangent is set.
    PointData GetPointDataDirect(double s, vek::Vector2* tangent) const {
        if (tangent) *tangent = PlacedTangent(s, {1, 0});
        return PlaceLocalSample(s, Segment::GetLocalPointData(s));
    }

    // Reads the tag, then recomputes. True for any document; false only for null arguments.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

protected:
    // (s, 0), heading 0, curvature 0, for any s.
    PointData GetLocalPointData(double s) const override { return PointData({s, 0}, 0, 0); }
    void InvertLocalData() override {}
};
