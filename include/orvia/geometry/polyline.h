// Pieces defined by a control polygon: the polygon itself (PolyLineCommonData) and the polyline smoothed into
// a spline or a chain of Bezier curves (PolyLine).
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <vector>

#include <orvia/geometry/parametric_function.h>
#include <orvia/ruvex/elements/curves.h>
#include <orvia/vek/convolution.h>
#include <orvia/vek/trajectory.h>

// A control polygon in the piece's own frame, sampled as the polygon: position linear along each edge,
// heading that of the edge, curvature interpolated between per-point curvatures (that of the circle through
// each inner point and its neighbours, extrapolated at the ends).
class PolyLineCommonData : public ParametricFunction {
public:
    static constexpr size_t npos = std::numeric_limits<size_t>::max();

    // Polygon length (m); 0 with fewer than 2 points.
    double GetLength() const override { return GetPolylineLength(); }
    // SetPolylineLength.
    void SetLength(double length) override;
    // Mirrors the control points about the local x axis.
    void Flip() override;

    const std::vector<vek::Vector2>& GetControlPoints() const { return m_controlPoints; }
    void SetControlPoints(const std::vector<vek::Vector2>& points);
    void ClearControlPoints();
    // Index must be below the count.
    const vek::Vector2& GetControlPoint(size_t index) const { return m_controlPoints[index]; }
    // False for an index out of range.
    bool SetControlPoint(size_t index, const vek::Vector2& point);
    void AddControlPointAtEnd(const vek::Vector2& point);
    // Inserts before index (npos or the count: at the end); recomputes now when update is set. False beyond
    // the count.
    bool InsertControlPoint(size_t index, const vek::Vector2& point, bool update);
    // Removes count points from first (clipped to the end). False when first is out of range.
    bool RemoveControlPoint(size_t first, size_t count);
    size_t GetControlPointsCount() const { return m_controlPoints.size(); }
    // Edges: points - 1, 0 when empty.
    size_t GetSegmentsCount() const { return m_controlPoints.empty() ? 0 : m_controlPoints.size() - 1; }

    // position: the first point is kept at (0, 0); orientation: the second point is kept on the x axis (y =
    // 0). Applied on the next recomputation.
    void SetOriginConstraints(bool position, bool orientation);
    bool GetPositionConstraint() const { return m_constrainPosition; }
    bool GetOrientationConstraint() const { return m_constrainOrientation; }

    // Per edge: cumulative length at its end (m) and direction (radians); per point: curvature (1/m).
    const std::vector<double>& GetEndAbscissas() const { return m_endAbscissas; }
    const std::vector<double>& GetOrientations() const { return m_orientations; }
    const std::vector<double>& GetCurvatures() const { return m_curvatures; }

    // Between the piece's frame (where the control points live) and the outer frame.
    vek::Vector2 ConvertLocalToGlobal(const vek::Vector2& p) const { return LocalToGlobal(p); }
    vek::Vector2 ConvertGlobalToLocal(const vek::Vector2& p) const { return GlobalToLocal(p); }

    // The points in order, without each one equal (within tolerance, per coordinate) to the stored one
    // before.
    std::vector<vek::Vector2> GetUniqueControlPoints(double tolerance) const;
    // First edge whose end abscissa is >= s; the last edge beyond the end. 0 with fewer than 2 points.
    size_t GetSegmentIndex(double s) const;

    // Makes the polygon length L: 0 clears the points; with no point (0,0) and (L,0) are added, with one
    // point (L,0); a longer polygon loses the points after the edge holding L; then the last point moves
    // along the last edge. Lengths outside [0, kMaxLength] (NaN included) are ignored.
    void SetPolylineLength(double length);
    double GetPolylineLength() const;

    // Rebuilds the edge and point tables from the control points (nothing with fewer than 2 points).
    virtual void Validate();
    // Smooths the control points with the kernel (end points kept), then recomputes.
    void ApplyConvolution(const vek::Convolution1D& kernel);

    ~PolyLineCommonData() override;

protected:
    PolyLineCommonData();
    PolyLineCommonData(const PolyLineCommonData&);
    PolyLineCommonData& operator=(const PolyLineCommonData&);

    // Applies the origin constraints, Validate(), then the base.
    void DataChanged() override;
    // The polygon sample; outside [0, length] along the first or last edge. All zeros with fewer than 2
    // points.
    PointData GetLocalPointData(double s) const override;
    PointData GetPolygonPointData(double s) const;
    // Reverses the points and re-expresses them in the frame Invert() has moved to.
    void InvertLocalData() override;

    // Signed curvature (1/m) of the circle through a, b, c; 0 when |c - a| < kCoincidentPointDistance.
    static double computeCurvature(const vek::Vector2& a, const vek::Vector2& b, const vek::Vector2& c);

    // Below this distance (m) the outer points of a corner count as one: no circle.
    static constexpr double kCoincidentPointDistance = 1e-5;

    std::vector<vek::Vector2> m_controlPoints;
    bool m_constrainPosition = false;
    bool m_constrainOrientation = false;
    std::vector<double> m_endAbscissas;
    std::vector<double> m_orientations;
    std::vector<double> m_curvatures;
};

// A control polygon smoothed by its type, from 3 points: 1 a clamped cubic spline through the points, 2 a C1
// Bezier curve through the points, 4 a chain of cubic Bezier pieces on points 0-3, 3-6, 6-9, ... whose handle
// before each junction is the mirror of the handle after it (so the chain is tangent-continuous whatever the
// stored handle; three points make one quadratic piece, points after the last full piece are unused). Any
// other type, or fewer points, is the plain polygon. Smoothed types are sampled by arc length on the curve
// and continue straight along their end tangents beyond their ends.
class PolyLine : public PolyLineCommonData, public Ruvex::PolyLineElement {
public:
    using EType = Ruvex::PolyLineElement::EType;

    // constrainOrigin sets both origin constraints (see SetOriginConstraints).
    PolyLine(EType type, bool constrainOrigin);
    // The factory's form: PolyLine(1, 0) is a clamped spline without constraints.
    PolyLine(int type, bool constrainOrigin) : PolyLine(static_cast<EType>(type), constrainOrigin) {}
    PolyLine(const PolyLine& other);
    ~PolyLine() override;

    // The smoothed curve's length when there is one, else the sum of the Bezier pieces, else the polygon's.
    double GetLength() const override;

    EType GetType() const { return m_Type; }
    void SetType(EType type);
    // Angle (radians, local frame) of the end tangent used by the clamped spline without orientation
    // constraint, and by the polygon's heading at and beyond its end.
    double GetEndTangent() const { return m_EndTangent; }
    void SetEndTangent(double angle);

    // Points, type, end tangent, constraints and placement of other (nothing for null or itself).
    void CopyFrom(const PolyLine* other);
    // Stores the angle of the tangent at the end of a natural curve through the points (type 1: natural end
    // spline; type 2: Bezier through the points; type 4: end of the last Bezier piece; otherwise the last
    // edge), then recomputes.
    void ComputeNaturalEndTangent();
    // Arc length (m) at which the curve passes the control point (a Bezier handle: the length at its share of
    // the piece's parameter). The length for an index out of range.
    double GetAbscissaOfControlPoint(size_t index) const;
    // Nearest point of the curve to a point of the outer frame: returns its abscissa (within [0, length]) and
    // writes the placed sample there. 0 and the start sample for an empty polyline.
    double GetPointDataFromGlobalPoint(const vek::Vector2& global, PointData& sample) const;
    // Type 4 with n >= 5 points: drops the points that no Bezier piece uses, so that n = 3k + 1.
    void cutBezier();
    // Type 4: after control point index moved, moves its partner so that the stored handles around the
    // junction are symmetric, as the curve draws them. Nothing for other types or indices.
    void updateBezierTangent(int index);
    // Parameter i / (n - 1) of control point i.
    double GetControlPointParam(size_t index) const;
    // Index of the control point at or before parameter u (0 with fewer than 2 points).
    size_t GetControlPointBeforeIndex(double u) const;

    // The points, the tables and the curve are in the piece's own frame: a move rebuilds only the placement,
    // unless something else changed since the last rebuild (then everything is rebuilt, as any change does).
    void SetStartPosition(const vek::Vector2& position) override;
    void SetStartOrientation(double orientation) override;

    PolyLine* Clone() const override;
    // Another PolyLine with the same type, end tangent and control points.
    bool IsEqual(const ParametricFunction* other) const override;
    Ruvex::Element* GetElement() const override;
    uint64_t AddRef() override;
    uint64_t Release() override;
    // Also negates the end tangent.
    void Flip() override;

    // Documents older than 2.3.0 go through the legacy converter. The control points come from the record.
    // True for any document; false only for null arguments.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;
    // Writes the current control points.
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

protected:
    // Rebuilds the polygon tables, then the smoothing curve or the Bezier pieces.
    void DataChanged() override;
    PointData GetLocalPointData(double s) const override;
    void InvertLocalData() override;

private:
    struct BezierPiece {
        std::unique_ptr<vek::Trajectory> curve;
        double start = 0;  // abscissa along the chain, m
        double end = 0;
        size_t pointCount = 0;  // control points the piece consumed
    };

    bool HasSmoothingCurve() const { return m_curve != nullptr; }
    // Tangents handed to the clamped spline.
    vek::Vector2 SplineStartTangent() const;
    vek::Vector2 SplineEndTangent() const;
    // Appends the piece starting at control point first and, while more than 3 points remain, the next ones.
    void addBezier(size_t first);
    size_t GetBezierFunctionIndexAt(double s) const;
    // Sample of a trajectory at arc length s, straight along the end tangents outside [0, length].
    static PointData SampleTrajectory(const vek::Trajectory& curve, double s);

    // What the last rebuild read besides the points' values: while it all stands (and a point count that only
    // InsertControlPoint without update changes), a rebuild would give the same tables and curve.
    struct BuiltFrom {
        size_t pointCount = 0;
        EType type = EType::Polygon;
        double endTangent = 0;
        bool constrainPosition = false;
        bool constrainOrientation = false;
        bool valid = false;  // false: never built, or copied (the copy rebuilds on its first change)
    };
    bool IsBuiltFromCurrent() const;

    std::unique_ptr<vek::Trajectory> m_curve;  // types 1 and 2
    std::vector<BezierPiece> m_beziers;        // type 4
    BuiltFrom m_builtFrom;
    bool m_moving = false;  // within SetStartPosition / SetStartOrientation with nothing else to rebuild
};
