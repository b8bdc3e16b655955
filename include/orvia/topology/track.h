#pragma once

// A stretch of road between two nodes, owned by a sub-network.

#include <orvia/core/user_data.h>
#include <orvia/ruvex/elements/track.h>
#include <orvia/vek/box.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvia {

class Intersection;
class Network;
class Road;
class SubNetwork;
class SubNetworkJunction;
class TrackConnector;

// The element record holds the name, the names of the intersections at both ends, the axis curves and the
// portions. The runtime part holds what post-load resolves: the owning sub-network, the intersections at both
// ends, and the positions in the network's road list of the roads that pass over the track.
class Track : public Ruvex::TrackElement, public UserDataContainer {
public:
    Track();
    explicit Track(SubNetwork* subNetwork);
    ~Track() override;

    SubNetwork* GetSubNetwork() const { return m_subNetwork; }
    void SetSubNetwork(SubNetwork* subNetwork) { m_subNetwork = subNetwork; }
    // The network above the sub-network, or null.
    Network* GetNetwork() const;

    // Renames the track and, in every road that lists it, the pieces that name it in its sub-network.
    void SetName(const std::string& name) override;

    // Links an end to an intersection (null frees it) and stores the intersection's name ("" for null).
    void SetStartIntersection(Intersection* intersection);
    void SetEndIntersection(Intersection* intersection);
    Intersection* GetStartIntersection() const { return m_startIntersection; }
    Intersection* GetEndIntersection() const { return m_endIntersection; }
    // The network's junction at that end, or null (also without sub-network or network).
    SubNetworkJunction* GetStartSubNetworkJunction() const;
    SubNetworkJunction* GetEndSubNetworkJunction() const;
    // The node at that end: the intersection when one is linked, else the network's junction, else null.
    TrackConnector* FindStartNode() const;
    TrackConnector* FindEndNode() const;

    // Positions in the network's road list of the roads over this track (filled by Road::InitTracksData).
    // AddRoad appends `roadIndex` unless it is already there; RemoveRoad removes it; ReplaceRoad changes the
    // first entry equal to `oldIndex` into `newIndex` (nothing when absent).
    void AddRoad(uint64_t roadIndex);
    void RemoveRoad(uint64_t roadIndex);
    void ReplaceRoad(uint64_t oldIndex, uint64_t newIndex);
    const std::vector<uint64_t>& GetInRoad() const { return m_inRoad; }
    // The road at position `i` of the in-road list, or null (out of range, or no network).
    Road* GetInRoad(size_t i) const;

    // Box of the axis in the sub-network's frame; empty while the track has no computed geometry.
    vek::Box3 GetBoundingBox() const;

    // After loading: stores the sub-network, empties the in-road list (roads register again) and links each
    // end to the sub-network's intersection of the stored name; an unknown name leaves that end free.
    void PostLoad(SubNetwork* subNetwork);

    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

protected:
    // Children the record does not take are offered to the user data.
    bool LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) override;

private:
    SubNetwork* m_subNetwork = nullptr;
    Intersection* m_startIntersection = nullptr;
    Intersection* m_endIntersection = nullptr;
    std::vector<uint64_t> m_inRoad;
};

}  // namespace Orvia
