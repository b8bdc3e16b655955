// A placed frame: position and roll/pitch/yaw angles.
//
// Frames are right-handed, x forward, y left, z up. The rotation is R = Rz(yaw) * Ry(pitch) * Rx(roll): roll
// about x first, then pitch about y, then yaw about z, each counter-clockwise positive seen from the tip of
// its axis. Its columns are the frame's forward, left and up axes in the outer frame. What that means:
// - yaw +90 deg turns forward (x) onto +y, i.e. heading counter-clockwise from +x;
// - pitch +a turns forward to (cos a, 0, -sin a): a positive pitch lowers the nose, so a frame climbing a
//   grade of angle a has pitch -a;
// - roll +a turns left (y) to (0, cos a, sin a): a positive roll lifts the left side and lowers the right.
#pragma once

#include <cmath>

#include <orvia/vek/matrix.h>
#include <orvia/vek/transform.h>
#include <orvia/vek/vector.h>

namespace vek {

struct Mark {
    Vector3 position;
    double roll = 0, pitch = 0, yaw = 0;  // radians

    // Rz(yaw) * Ry(pitch) * Rx(roll), as described above.
    Matrix3 rotation() const {
        const double cr = std::cos(roll), sr = std::sin(roll);
        const double cp = std::cos(pitch), sp = std::sin(pitch);
        const double cy = std::cos(yaw), sy = std::sin(yaw);
        return {{cy * cp, cy * sp * sr - sy * cr, cy * sp * cr + sy * sr},
                {sy * cp, sy * sp * sr + cy * cr, sy * sp * cr - cy * sr},
                {-sp, cp * sr, cp * cr}};
    }
    // Local point of the frame to the outer frame.
    Transform transform() const { return {rotation(), position}; }

    // Angles of a rotation built as above, pitch in [-pi/2, pi/2], roll and yaw in [-pi, pi]. At pitch +-pi/2
    // roll and yaw are not separable: roll is set to 0 and yaw carries the whole turn.
    static Mark fromTransform(const Transform& t) {
        const Matrix3& r = t.rotation();
        Mark m;
        m.position = t.translation();
        const double cp = std::hypot(r(0, 0), r(1, 0));
        m.pitch = std::atan2(-r(2, 0), cp);
        if (cp > kGimbalLockCosine) {
            m.yaw = std::atan2(r(1, 0), r(0, 0));
            m.roll = std::atan2(r(2, 1), r(2, 2));
        } else {
            m.yaw = std::atan2(-r(0, 1), r(1, 1));
        }
        return m;
    }

    bool operator==(const Mark&) const = default;

    // Below this cos(pitch) (unitless; pitch within ~1e-12 rad of +-90 deg) the roll and yaw columns are
    // numerically degenerate.
    static constexpr double kGimbalLockCosine = 1e-12;
};

}  // namespace vek
