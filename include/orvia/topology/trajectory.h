#pragma once

// Trajectories: chains of trajectory pieces, each running along or against a trajectory part with its own
// axis.

#include <orvia/ruvex/elements/misc.h>

#include <cstddef>

namespace Orvia {

class SubNetwork;
class TrajectoryPart;

class Trajectory : public Ruvex::TrajectoryElement {
public:
    ~Trajectory() override;

    // Each piece resolves its part name among `subNetwork`'s trajectory parts (an unknown name, or a null
    // sub-network, leaves it without a part).
    void PostLoad(SubNetwork* subNetwork);
    // The part of piece `index`; null out of range or unresolved.
    TrajectoryPart* GetPart(size_t index) const;
};

class TrajectoryPart : public Ruvex::TrajectoryPartElement {
public:
    ~TrajectoryPart() override;

    SubNetwork* GetInSubNetwork() const { return m_subNetwork; }
    void SetInSubNetwork(SubNetwork* subNetwork) { m_subNetwork = subNetwork; }

private:
    SubNetwork* m_subNetwork = nullptr;
};

// Read from and saved as "TrajectoryElement".
class TrajectoryPiece : public Ruvex::TrajectoryPieceElement {
public:
    ~TrajectoryPiece() override;

    TrajectoryPart* GetPart() const { return m_part; }
    void SetPart(TrajectoryPart* part) { m_part = part; }

private:
    TrajectoryPart* m_part = nullptr;
};

}  // namespace Orvia
