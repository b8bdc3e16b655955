#include <orvia/geometry/passageway.h>

#include <orvia/ruvex/elements/traffic.h>

namespace Orvia {

double Passageway::GetSpeedLimit() const {
    const Lane* lane = Carrier();
    return lane ? lane->GetSpeedLimit() : Ruvex::VehicleTypeElement::gNoLimit;
}

Ground* Passageway::GetGround() const {
    const Lane* lane = Carrier();
    return lane ? lane->GetGround() : nullptr;
}

LaneType Passageway::GetLaneType() const {
    const Lane* lane = Carrier();
    return lane ? lane->GetLaneType() : kUnknownLaneType;
}

Marking* Passageway::GetLeftMarking() const {
    const Lane* lane = Carrier();
    const LaneBorder* border = lane ? lane->GetLeftKey() : nullptr;
    return border ? border->GetMarking() : nullptr;
}

Marking* Passageway::GetRightMarking() const {
    const Lane* lane = Carrier();
    const LaneBorder* border = lane ? lane->GetRightKey() : nullptr;
    return border ? border->GetMarking() : nullptr;
}

// Leaving the strip to the left crosses its left line from right to left.
Marking::EMarkingLogic Passageway::GetLeftMarkingLogic() const {
    const Marking* marking = GetLeftMarking();
    return marking ? marking->GetRightToLeftId() : Marking::eUnknown;
}

Marking::EMarkingLogic Passageway::GetRightMarkingLogic() const {
    const Marking* marking = GetRightMarking();
    return marking ? marking->GetLeftToRightId() : Marking::eUnknown;
}

double Passageway::GetLeftMarkingOffset() const {
    const Lane* lane = Carrier();
    const LaneBorder* border = lane ? lane->GetLeftKey() : nullptr;
    return border ? border->GetMarkingOffset() : 0.0;
}

double Passageway::GetRightMarkingOffset() const {
    const Lane* lane = Carrier();
    const LaneBorder* border = lane ? lane->GetRightKey() : nullptr;
    return border ? border->GetMarkingOffset() : 0.0;
}

Decoration* Passageway::GetLeftDecoration() const {
    const Lane* lane = Carrier();
    const LaneBorder* border = lane ? lane->GetLeftKey() : nullptr;
    return border ? border->GetDecoration() : nullptr;
}

Decoration* Passageway::GetRightDecoration() const {
    const Lane* lane = Carrier();
    const LaneBorder* border = lane ? lane->GetRightKey() : nullptr;
    return border ? border->GetDecoration() : nullptr;
}

}  // namespace Orvia
