#pragma once

// A strip that runs through a portion from a lane of its start profile to a lane of its end profile.

#include <orvia/geometry/profile.h>

#include <utility>

namespace Orvia {

class Ground;

// Lane k of the start profile joined to lane k of the end profile. A profile with fewer lanes gives no lane
// at that end (null); the stored point of an end is then the left border of lane k there, clamped to the
// profile's last border ((0, 0) without borders). Points are (horizontal, vertical) distances to the axis in
// metres. Values the strip carries (speed, ground, type, markings) are the start lane's, else the end lane's.
class Passageway {
public:
    Passageway() = default;
    Passageway(Lane* startLane, Lane* endLane, std::pair<double, double> startPoint,
               std::pair<double, double> endPoint)
        : m_startLane(startLane), m_endLane(endLane), m_startPoint(startPoint), m_endPoint(endPoint) {}

    Lane* GetStartLane() const { return m_startLane; }
    Lane* GetEndLane() const { return m_endLane; }
    const std::pair<double, double>& GetStartPoint() const { return m_startPoint; }
    const std::pair<double, double>& GetEndPoint() const { return m_endPoint; }

    // m/s; Ruvex::VehicleTypeElement::gNoLimit without a lane.
    double GetSpeedLimit() const;
    Ground* GetGround() const;
    // kUnknownLaneType without a lane.
    LaneType GetLaneType() const;
    Marking* GetLeftMarking() const;
    Marking* GetRightMarking() const;
    Marking::EMarkingLogic GetLeftMarkingLogic() const;
    Marking::EMarkingLogic GetRightMarkingLogic() const;
    double GetLeftMarkingOffset() const;
    double GetRightMarkingOffset() const;
    Decoration* GetLeftDecoration() const;
    Decoration* GetRightDecoration() const;

private:
    // The lane whose values the strip carries.
    Lane* Carrier() const { return m_startLane ? m_startLane : m_endLane; }

    Lane* m_startLane = nullptr;
    Lane* m_endLane = nullptr;
    std::pair<double, double> m_startPoint{0, 0};
    std::pair<double, double> m_endPoint{0, 0};
};

}  // namespace Orvia
