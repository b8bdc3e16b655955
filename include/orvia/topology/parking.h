#pragma once

// Parking: rows of spots laid along a track, and single spots placed in a sub-network.

#include <orvia/ruvex/elements/misc.h>

namespace Orvia {

class ParkingLot : public Ruvex::ParkingLotElement {
public:
    ~ParkingLot() override;
};

class ParkingSpot : public Ruvex::ParkingSpotElement {
public:
    ~ParkingSpot() override;
};

}  // namespace Orvia
