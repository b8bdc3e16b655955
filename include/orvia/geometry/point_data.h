// One sample of a planar curve.
#pragma once

#include <cmath>

#include <orvia/vek/vector.h>

class PointData {
public:
    // All zeros.
    PointData() = default;
    PointData(const vek::Vector2& position_, double heading_, double curvature_)
        : position(position_), heading(heading_), curvature(curvature_) {}

    // Unit tangent (cos heading, sin heading).
    vek::Vector2 GetTangent() const { return {std::cos(heading), std::sin(heading)}; }
    // Unit left normal (-sin heading, cos heading).
    vek::Vector2 GetNormal() const { return {-std::sin(heading), std::cos(heading)}; }
    // heading = atan2(v.y, v.x); position and curvature are kept. A zero vector gives heading 0.
    void SetTangent(const vek::Vector2& v) { heading = std::atan2(v.y, v.x); }
    // heading such that n is the left normal: atan2(-n.x, n.y). Position and curvature are kept.
    void SetNormal(const vek::Vector2& n) { heading = std::atan2(-n.x, n.y); }

    vek::Vector2 position;  // metres
    double heading = 0;     // radians from +x, counter-clockwise
    double curvature = 0;   // 1/m, positive when turning left
};
