#include <orvia/topology/trajectory.h>

namespace Orvia {

Trajectory::~Trajectory() = default;
TrajectoryPart::~TrajectoryPart() = default;
TrajectoryPiece::~TrajectoryPiece() = default;

}  // namespace Orvia
