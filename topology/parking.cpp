#include <orvia/topology/parking.h>

namespace Orvia {

ParkingLot::~ParkingLot() = default;
ParkingSpot::~ParkingSpot() = default;

}  // namespace Orvia
