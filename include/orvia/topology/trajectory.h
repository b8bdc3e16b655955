#pragma once

// Trajectories: chains of trajectory pieces, each running along or against a trajectory part with its own
// axis.

#include <orvia/ruvex/elements/misc.h>

namespace Orvia {

class Trajectory : public Ruvex::TrajectoryElement {
public:
    ~Trajectory() override;
};

class TrajectoryPart : public Ruvex::TrajectoryPartElement {
public:
    ~TrajectoryPart() override;
};

// Read from and saved as "TrajectoryElement".
class TrajectoryPiece : public Ruvex::TrajectoryPieceElement {
public:
    ~TrajectoryPiece() override;
};

}  // namespace Orvia
