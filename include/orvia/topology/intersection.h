#pragma once

// The node where track extremities of one sub-network meet.

#include <orvia/ruvex/elements/intersection.h>
#include <orvia/topology/connector.h>

#include <string>

namespace Orvia {

// Tracks name the intersection at their ends; the intersection lists no tracks itself.
class Intersection : public Ruvex::IntersectionElement, public TrackConnector {
public:
    Intersection();
    explicit Intersection(SubNetwork* subNetwork);
    ~Intersection() override;

    using TrackConnector::GetPosition;
    using TrackConnector::SetPosition;
    Ruvex::TrackConnectorElement* GetAsConnectionElement() override { return this; }
    const Ruvex::TrackConnectorElement* GetAsConnectionElement() const override { return this; }
    Intersection* GetAsIntersection() override { return this; }

    // Renames the intersection and, in its sub-network, every track end that named it by its old name, except
    // ends linked to another intersection (one that bore the same name).
    void SetName(const std::string& name) override;
};

}  // namespace Orvia
