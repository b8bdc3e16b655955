// A control polygon whose corners are rounded by fitted clothoid pairs.
#pragma once

#include <orvia/geometry/corner_fitting.h>
#include <orvia/geometry/curve2d.h>
#include <orvia/geometry/polyline.h>
#include <orvia/ruvex/elements/curves.h>

// The curve starts at the first control point along the first edge and ends at the last one along the last
// edge. Corner i is fitted from the midpoint of the edge before it (the first point for the first corner) to
// the midpoint of the edge after it (the last point for the last corner), with the threshold as the fitter's
// limit blender. Samples come from the fitted pieces; the polygon keeps its own tables.
class ClothoidSpline : public PolyLineCommonData,
                       public Ruvex::ClothoidSplineElement,
                       public CTriPointControlledAnalytic {
public:
    // The fitted pieces, chained under one abscissa.
    using Curve = Orvia::Curve2D;

    // Below this distance (m) consecutive control points count as one.
    static constexpr double kUniquePointTolerance = 1e-5;

    // No point, threshold 0.75, not symmetric.
    ClothoidSpline();
    ClothoidSpline(const ClothoidSpline& other);
    ~ClothoidSpline() override;

    // Length of the fitted curve (m), 0 when nothing is fitted.
    double GetLength() const override { return m_curveLength; }
    // Shortening to L: with P the curve point at L, the polygon keeps its points up to the edge that the
    // tangent line at P meets behind P (nearest such edge; failing one, the edge P projects onto) and then
    // ends with that crossing point and P, so the refitted curve ends at P along the same tangent; its new
    // length is close to L, not equal. Lengthening, or a cut that finds no edge, scales the polygon length by
    // L / curve length. Lengths outside [0, kMaxLength] (NaN included) are ignored.
    void SetLength(double length) override;

    // Pieces in the piece's own frame, and the same pieces placed by the start position and orientation.
    const Curve& GetLocalCurve() const { return m_localCurve; }
    const Curve& GetGlobalCurve() const { return m_globalCurve; }
    double GetThreshold() const { return m_Threshold; }
    void SetThreshold(double threshold);
    bool GetSymmetric() const { return m_Symmetric; }
    void SetSymmetric(bool symmetric);
    // False when some corner could not be fitted (a U-turn, or a fitting error): that corner declared
    // nothing and the curve continues from the previous corner's end.
    bool IsFitComplete() const { return m_fitComplete; }

    // Points, threshold, symmetric flag, constraints and placement of other (nothing for null or itself).
    void CopyFrom(const ClothoidSpline* other);
    // curve length * a / polygon length: no guard (a polygon of length 0 divides by zero).
    double GetCurveAbscissaFromLineAbscissa(double lineAbscissa) const;

    // The polygon tables, then the fit of every corner.
    void Validate() override;

    // Fitter callbacks: a Segment, CircleArc or ClothoArc appended to the local curve.
    void DeclareLine(double length) override;
    void DeclareCircle(double length, double curvature) override;
    void DeclareClothoide(double length, double startCurvature, double endCurvature) override;

    ClothoidSpline* Clone() const override;
    // Another ClothoidSpline with the same control points, threshold and symmetric flag.
    bool IsEqual(const ParametricFunction* other) const override;
    Ruvex::Element* GetElement() const override;
    uint64_t AddRef() override;
    uint64_t Release() override;

    // Reads the tag; the control points come from the record. True for any document; false only for null
    // arguments.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;
    // Writes the current control points.
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

protected:
    // The local curve's sample (all zeros when nothing is fitted).
    PointData GetLocalPointData(double s) const override;

private:
    // Places the global curve by the current start position and orientation.
    void PlaceGlobalCurve();

    Curve m_localCurve;
    Curve m_globalCurve;
    double m_curveLength = 0;
    bool m_fitComplete = true;
};
