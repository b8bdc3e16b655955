#include <orvia/topology/intersection.h>

#include <orvia/topology/sub_network.h>
#include <orvia/topology/track.h>

#include <vector>

namespace Orvia {

Intersection::Intersection() = default;

Intersection::Intersection(SubNetwork* subNetwork) {
    m_subNetwork = subNetwork;
}

Intersection::~Intersection() = default;

void Intersection::SetName(const std::string& name) {
    if (name == m_name) return;
    // Tracks refer to the intersection by name: gather their ends under the old name before it changes.
    std::vector<std::pair<Track*, bool>> ends;
    if (m_subNetwork && !m_name.empty()) {
        for (size_t i = 0; i < m_subNetwork->GetTrackCount(); ++i) {
            Track* track = m_subNetwork->GetTrack(i);
            if (!track) continue;
            // An end linked to another intersection of the same name is that one's.
            const Intersection* start = track->GetStartIntersection();
            const Intersection* end = track->GetEndIntersection();
            if (track->GetStartIntersectionName() == m_name && (!start || start == this))
                ends.emplace_back(track, false);
            if (track->GetEndIntersectionName() == m_name && (!end || end == this))
                ends.emplace_back(track, true);
        }
    }
    IntersectionElement::SetName(name);
    for (const auto& [track, atEnd] : ends) {
        if (atEnd)
            track->SetEndIntersectionName(name);
        else
            track->SetStartIntersectionName(name);
    }
}

}  // namespace Orvia
