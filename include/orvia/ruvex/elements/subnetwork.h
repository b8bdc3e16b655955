#pragma once

// Data of a sub-network: its placement, its files and the lists of everything local to it.

#include <orvia/ruvex/elements/clipped.h>
#include <orvia/ruvex/elements/ground.h>
#include <orvia/ruvex/elements/intersection.h>
#include <orvia/ruvex/elements/misc.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/elements/profile.h>
#include <orvia/ruvex/elements/rail.h>
#include <orvia/ruvex/elements/track.h>
#include <orvia/ruvex/elements/traffic.h>

namespace Ruvex {

// Everything inside refers to its siblings by name. Junction tracks are the ways laid inside sub-network
// junctions. The sub-network's own clipped data sit in "ClippedDatas" (marks, and track clipped data that lie
// on no track) and as direct "MarkClippedData" children.
#define RUVEX_SUB_NETWORK_TABLE(F)                                                                   \
    F(XYZ, Position, "x", "y", "z", 0.0, 0.0, 0.0)                                                   \
    F(ATTR, double, Heading, "heading", 0.0)                                                         \
    F(CHILD, ExternalFileElement, ProxyFileElement, "ProxyFile")                                     \
    F(CHILD, ExternalFileElement, TerrainElement, "ExternalTerrain")                                 \
    F(CHILD, ExternalFileElement, RollingSurfaceElement, "ExternalSurface")                          \
    F(CHILD, ExternalFileElement, PhysicalSurfaceElement, "ExternalPhysicSurface")                   \
    F(NAMED_LIST_IN, MaterialElement, Materials, "Materials", "Material")                            \
    F(NAMED_LIST_IN, GroundElement, Grounds, "Grounds", "Ground")                                    \
    F(NAMED_LIST_IN, MarkingElement, Markings, "Markings", "Marking")                                \
    F(NAMED_LIST_IN, ProfileElement, Profiles, "Profiles", "Profile")                                \
    F(NAMED_LIST_IN, IntersectionElement, Intersections, "Intersections", "Intersection")            \
    F(NAMED_LIST_IN, TrackElement, Tracks, "Tracks", "Track")                                        \
    F(NAMED_LIST_IN, TrackElement, JunctionTracks, "JunctionTracks", "Track")                        \
    F(NAMED_LIST_IN, TrafficLightGroupElement, TrafficLightGroups, "TrafficLightGroups",             \
      "TrafficLightGroup")                                                                           \
    F(NAMED_LIST_IN, TrajectoryPartElement, TrajectoryParts, "TrajectoryParts", "TrajectoryPart")    \
    F(NAMED_LIST_IN, TrajectoryElement, Trajectories, "Trajectories", "Trajectory")                  \
    F(NAMED_LIST_IN, ParkingSpotElement, ParkingSpots, "ParkingSpots", "ParkingSpot")                \
    F(NAMED_LIST_IN, AreaElement, Zones, "Zones", "Area")                                            \
    F(NAMED_LIST_IN, EntitiesGenerationElement, EntitiesGenerations, "EntitiesGenerations",          \
      "EntitiesGeneration")                                                                          \
    F(LIST_IN, ClippedDataElement, ClippedDatas, "ClippedDatas", "MarkClippedData|TrackClippedData") \
    F(LIST, MarkClippedDataElement, MarkClippedData, "MarkClippedData")                              \
    F(CHILD, ::Rail::RailNetworkElement, RailNetwork, "RailNetwork")                                 \
    F(CHILD, PedestrianNetworkElement, PedestrianNetwork, "PedestrianNetwork")                       \
    F(CHILD, GeneratedTerrainMaterialElement, GeneratedTerrainMaterialElement, "GeneratedTerrainMaterial")

class SubNetworkElement : public NamedElement {
    RUVEX_FIELDS(SubNetworkElement, NamedElement, RUVEX_SUB_NETWORK_TABLE)
};

}  // namespace Ruvex
