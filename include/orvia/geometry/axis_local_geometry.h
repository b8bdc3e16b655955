// One sample of an axis, kept as plain values.
#pragma once

#include <concepts>

#include <orvia/geometry/axis.h>
#include <orvia/vek/mark.h>
#include <orvia/vek/vector.h>

namespace Orvia {

class Track;

struct AxisLocalGeometry {
    vek::Vector2 position;       // m
    double altitude = 0;         // m, banking-adjusted off the centre line
    vek::Vector2 tangent{1, 0};  // horizontal unit tangent
    double slope = 0;            // elevation angle, radians
    double curvature = 0;        // horizontal, 1/m
    double verticalCurvature = 0;
    double banking = 0;  // radians

    // Altitude 0, tangent (1, 0), slope, curvatures and banking 0; the position is left as it is.
    void Init();
    // Validates the axis, then fills every field from one Axis::GetGeometricData call at (s, offset). False
    // for null or when the horizontal query fails (the fields written so far stay).
    bool FillData(Axis* axis, double s, const vek::Vector2& offset);
    // A track is an axis: FillData(track, s, offset) samples its axis.
    template <class TrackType>
    requires std::derived_from<TrackType, Axis>
    bool FillData(TrackType* track, double s, const vek::Vector2& offset) {
        Axis* axis = track;
        return FillData(axis, s, offset);
    }
    // (x, y, altitude).
    void GetPosition(vek::Vector3& p) const { p = {position.x, position.y, altitude}; }
    // Position (x, y, altitude), roll = banking, pitch = -slope, yaw = direction of the tangent.
    void GetFrame(vek::Mark& mark) const;
};

}  // namespace Orvia
