#include <orvia/topology/sub_network.h>
#include <orvia/topology/trajectory.h>

namespace Orvia {

Trajectory::~Trajectory() = default;
TrajectoryPart::~TrajectoryPart() = default;
TrajectoryPiece::~TrajectoryPiece() = default;

void Trajectory::PostLoad(SubNetwork* subNetwork) {
    for (const auto& item : m_Pieces)
        if (auto* piece = dynamic_cast<TrajectoryPiece*>(item.Get()))
            piece->SetPart(subNetwork ? subNetwork->GetTrajectoryPartByName(piece->GetTrajectoryPartName())
                                      : nullptr);
}

TrajectoryPart* Trajectory::GetPart(size_t index) const {
    if (index >= m_Pieces.size()) return nullptr;
    auto* piece = dynamic_cast<TrajectoryPiece*>(m_Pieces[index].Get());
    return piece ? piece->GetPart() : nullptr;
}

}  // namespace Orvia
