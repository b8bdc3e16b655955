// Clothoid piece: curvature varies linearly with arc length from the start curvature to the end curvature.
#pragma once

#include <vector>

#include <orvia/geometry/cornu.h>
#include <orvia/geometry/parametric_function.h>
#include <orvia/ruvex/elements/curves.h>

class ClothoArc : public ParametricFunction, public Ruvex::ClothoidArcElement {
public:
    // Below this length (m) the piece is a straight line along +x; below this |curvature| (1/m) at both ends
    // it is straight too; curvatures closer than this make a circle arc of the start curvature.
    static constexpr double kDegenerateTolerance = 1e-5;
    // Largest |Cornu parameter| over the piece for which positions come from the summed Cornu series: up to
    // it the series stays within 8e-9 of the true integrals (before scaling by a). Beyond it (a clothoid far
    // along its spiral: sharp curvature changing slowly) the series is useless, and the piece integrates its
    // heading from nodes computed when its data change instead.
    static constexpr double kSeriesRange = 4.0;
    // Node spacing of that integration: at most this turn (radians) per spacing from the curvature, and from
    // its change.
    static constexpr double kNodeTurn = 0.125;

    // Length 1 m, curvature 0 -> 0.01 /m.
    ClothoArc();
    // The length is stored through ConstructedLength (its absolute value); a curvature that is not finite as
    // 0.
    ClothoArc(double length, double startCurvature, double endCurvature);
    ClothoArc(const ClothoArc& other);
    ~ClothoArc() override;

    double GetLength() const override { return m_Length; }
    // Keeps the rate of change of curvature: the end curvature is rescaled first (when the old length exceeds
    // kDegenerateTolerance, even if the new length is then refused); a negative length is refused, and one
    // whose magnitude exceeds kMaxLength (NaN included) is refused before the rescale.
    void SetLength(double length) override;
    // Sets the length alone, curvatures unchanged; a length outside [0, kMaxLength] is ignored. Returns true.
    bool SetRawLength(double length);

    double GetStartCurvature() const { return m_StartCurvature; }
    double GetEndCurvature() const { return m_EndCurvature; }
    // 1/m, positive turning left. True, or false (nothing changes) for a value that is not finite.
    bool SetStartCurvature(double curvature);
    bool SetEndCurvature(double curvature);

    ClothoArc* Clone() const override;
    // Another ClothoArc with exactly the same length and curvatures.
    bool IsEqual(const ParametricFunction* other) const override;
    Ruvex::Element* GetElement() const override;
    uint64_t AddRef() override;
    uint64_t Release() override;
    // Negates both curvatures.
    void Flip() override;

    // The composite curve's direct sample (no virtual call; see ParametricFunction::PlaceLocalSample): the
    // same values as GetPointData(s), with the unit tangent (cos, sin) of its heading when tangent is set.
    PointData GetPointDataDirect(double s, vek::Vector2* tangent) const;

    // Documents older than 2.3.0 go through the legacy converter. True for any document; false only for null
    // arguments.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

protected:
    void DataChanged() override;
    // Position from the Cornu series (CCornuFunc's accuracy, scaled by the clothoid scale a; see kSeriesRange
    // for clothoids beyond its reach); heading k0 s + (k1 - k0) s^2 / (2 length) brought into (-pi, pi];
    // curvature linear in s. Degenerate pieces: see kDegenerateTolerance. Outside [0, length] the piece goes
    // on as the same clothoid, whatever the distance (see ClothoidChord), from its start before it and from
    // its end beyond it: continuous at both ends, curvature still linear in s, spiralling in towards the
    // asymptotic points.
    PointData GetLocalPointData(double s) const override;
    // Runs backwards: (k0, k1) = (-k1, -k0).
    void InvertLocalData() override;

    // Rebuilds the Cornu state from the three numbers; leaves it as it was for a zero length or equal
    // curvatures.
    void Init();
    // Cornu parameter t at arc length s, and back.
    double EvalT(double s) const { return s / m_a + m_t0; }
    double EvalS(double t) const { return (t - m_t0) * m_a; }
    // k0 at s = 0, k1 at s = length (the increasing or decreasing clothoid's curvature).
    double GetLocalCurvature(double s) const;
    // Local position and heading (in (-pi, pi]) of the clothoid branch.
    void Func(double s, double& x, double& y, double& heading) const;

private:
    enum class Shape { Line, Clothoid, Circle };

    // A sample of the clothoid, for integrating its heading from the nearest one.
    struct Node {
        vek::Vector2 position;
        double cosHeading = 1, sinHeading = 0;
        double curvature = 0;
    };

    // Heading at s in the piece's frame, not wrapped.
    double LocalHeading(double s) const;
    // Position and heading of GetLocalPointData(s).
    void LocalPositionHeading(double s, vek::Vector2& position, double& heading) const;
    void BuildNodes();
    // Position and heading of the clothoid at s outside [0, length].
    void ExtrapolatedPositionHeading(double s, vek::Vector2& position, double& heading) const;
    vek::Vector2 NodePosition(double s) const;

    CCornuFunc m_cornu;
    double m_t0 = 0;            // Cornu parameter at s = 0
    double m_a = 1;             // clothoid scale sqrt(2 length / |k1 - k0|), metres
    bool m_decreasing = false;  // k0 > k1
    double m_tStart = 0;
    double m_X0 = 0, m_Y0 = 0;       // Cornu point at s = 0
    vek::Vector2 m_rawStartTangent;  // Cornu derivative at s = 0
    double m_c = 1, m_d = 0;         // its unit vector
    Shape m_shape = Shape::Clothoid;
    double m_circleRadius = 1;  // for Shape::Circle
    bool m_useSeries = true;    // the Cornu parameter stays within kSeriesRange
    std::vector<Node> m_nodes;  // at i * m_nodeSpacing, i = 0 .. n (the last at the length)
    double m_nodeSpacing = 0;
    // The clothoid's local end point and the cosine and sine of its local end heading.
    vek::Vector2 m_endPosition;
    double m_endCos = 1, m_endSin = 0;
};
