#include <orvia/geometry/axis_local_geometry.h>

#include <cmath>

namespace Orvia {

void AxisLocalGeometry::Init() {
    altitude = 0;
    tangent = {1, 0};
    slope = 0;
    curvature = 0;
    verticalCurvature = 0;
    banking = 0;
}

bool AxisLocalGeometry::FillData(Axis* axis, double s, const vek::Vector2& offset) {
    if (!axis) return false;
    axis->Validate();
    return axis->GetGeometricData(s, offset, &position, &altitude, &tangent, &slope, &curvature,
                                  &verticalCurvature, &banking);
}

void AxisLocalGeometry::GetFrame(vek::Mark& mark) const {
    mark.position = {position.x, position.y, altitude};
    mark.roll = banking;
    mark.pitch = -slope;
    mark.yaw = std::atan2(tangent.y, tangent.x);
}

}  // namespace Orvia
