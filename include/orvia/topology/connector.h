#pragma once

// What track extremities meet at: intersections inside one sub-network, and junctions joining tracks of
// different sub-networks.

#include <orvia/ruvex/elements/network.h>
#include <orvia/vek/vector.h>

#include <cstddef>
#include <string>

namespace Orvia {

class Intersection;
class Network;
class SubNetwork;
class SubNetworkJunction;
class Track;

// Common face of intersections and sub-network junctions. Position and name live in the connector's own
// element record (GetAsConnectionElement); the owners are plain back-pointers set at post-load.
class TrackConnector {
public:
    // The sub-network holding the connector; null for a sub-network junction.
    virtual SubNetwork* GetInSubNetwork() const { return m_subNetwork; }
    // The network set on the connector, else the one of its sub-network; null when neither is known.
    virtual Network* GetNetwork() const;
    // Position in the frame of its sub-network (the network's frame for a junction), metres.
    virtual const vek::Vector3& GetPosition() const;
    virtual void SetPosition(const vek::Vector3& position);
    const std::string& GetConnectorName() const;

    virtual Ruvex::TrackConnectorElement* GetAsConnectionElement() = 0;
    virtual const Ruvex::TrackConnectorElement* GetAsConnectionElement() const = 0;
    virtual void SetInSubNetwork(SubNetwork* subNetwork) { m_subNetwork = subNetwork; }
    virtual void SetInNetwork(Network* network) { m_network = network; }
    // This connector as its concrete kind, or null.
    virtual Intersection* GetAsIntersection() { return nullptr; }
    virtual SubNetworkJunction* GetAsSubNetworkJunction() { return nullptr; }

protected:
    TrackConnector() = default;
    // A copy belongs to nobody until it is placed.
    TrackConnector(const TrackConnector&) {}
    TrackConnector& operator=(const TrackConnector&) { return *this; }
    virtual ~TrackConnector() = default;

    Network* m_network = nullptr;
    SubNetwork* m_subNetwork = nullptr;
};

// One track extremity joined by a sub-network junction: the sub-network and track names and the extremity
// word are persisted; post-load resolves them into pointers.
class SubNetworkExit : public Ruvex::SubNetworkExitElement {
public:
    static const std::string kStart;  // "start"
    static const std::string kEnd;    // "end"

    SubNetworkExit();
    // An exit already linked to `track` (which may be null) at its start or end; names follow UpdateNames.
    SubNetworkExit(Track* track, bool atStart);
    ~SubNetworkExit() override;

    Track* GetTrack() const;
    void SetTrack(Track* track);
    SubNetwork* GetSubNetwork() const { return m_subNetwork; }
    void SetSubNetwork(SubNetwork* subNetwork) { m_subNetwork = subNetwork; }
    bool IsAtStart() const { return m_atStart; }
    void SetIsAtStart(bool atStart) { m_atStart = atStart; }

    // Copies the names of the linked sub-network and track (when set) into the record, and writes the
    // extremity word from the flag.
    void UpdateNames();
    // Resolves the names in `network`: false when the sub-network or, in it, the track is missing (what was
    // found is kept). The exit is at the start exactly when the extremity word is "start".
    bool PostLoad(Network* network);

private:
    SubNetwork* m_subNetwork = nullptr;
    Ruvex::CountedPtr<Track> m_track;
    bool m_atStart = true;
};

// Joins track extremities of different sub-networks. Belongs to the network.
class SubNetworkJunction : public Ruvex::SubNetworkJunctionElement, public TrackConnector {
public:
    SubNetworkJunction();
    explicit SubNetworkJunction(Network* network);
    ~SubNetworkJunction() override;

    using TrackConnector::GetPosition;
    using TrackConnector::SetPosition;
    Ruvex::TrackConnectorElement* GetAsConnectionElement() override { return this; }
    const Ruvex::TrackConnectorElement* GetAsConnectionElement() const override { return this; }
    SubNetworkJunction* GetAsSubNetworkJunction() override { return this; }

    size_t GetSubNetworkExitCount() const { return m_Exits.size(); }
    // Null when out of range.
    SubNetworkExit* GetSubNetworkExit(size_t index) const;
    // The first exit linked to `track` at the given extremity, or null.
    SubNetworkExit* GetSubNetworkExit(const Track* track, bool atStart) const;
    // Appends `exit` (taking a reference); null is ignored.
    void AddExit(SubNetworkExit* exit);
    // Removes every exit linked to `track`, keeping the order of the others.
    void RemoveExit(const Track* track);
    // Links to `newTrack` every exit linked to `oldTrack`, and renames it.
    void ReplaceTrack(const Track* oldTrack, Track* newTrack);
    // True when an exit lies on `subNetwork`: linked to it, or naming it while unresolved.
    bool ConnectsSubNetwork(const SubNetwork* subNetwork) const;
    // UpdateNames on every exit.
    void UpdateNames();
    // Attaches the junction to `network` and resolves its exits in order. The first exit that fails ends the
    // resolution (later exits stay unresolved) and makes the result false.
    bool PostLoad(Network* network);
};

}  // namespace Orvia
