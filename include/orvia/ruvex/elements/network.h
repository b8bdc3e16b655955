#pragma once

// Data of the network root and of what it holds directly: junctions between sub-networks, roads, external
// files, geolocalisation and materials.

#include <orvia/ruvex/schema.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace Ruvex {

class SubNetworkElement;

// A reference to a file outside the document; saved under the tag it was created with.
#define RUVEX_EXTERNAL_FILE_TABLE(F)               \
    F(ATTR, std::string, FilePath, "filePath", "") \
    F(ATTR, bool, Flipped, "flipped", false)

class ExternalFileElement : public Element {
    RUVEX_FIELDS(ExternalFileElement, Element, RUVEX_EXTERNAL_FILE_TABLE)
    RUVEX_TAGGED(ExternalFileElement)
};

// The projected position of the local origin (centre), the projection and the geographic position it implies.
#define RUVEX_GEOLOCALISATION_TABLE(F)               \
    F(ATTR, double, Latitude, "latitude", 0.0)       \
    F(ATTR, double, Longitude, "longitude", 0.0)     \
    F(ATTR, double, Elevation, "elevation", 0.0)     \
    F(ATTR, double, Azimuth, "azimuth", 0.0)         \
    F(ATTR, double, TimeOffset, "timeOffset", 0.0)   \
    F(ATTR, double, ScaleFactor, "scaleFactor", 1.0) \
    F(ATTR, uint32_t, Epsg, "epsg", 0u)              \
    F(ATTR, std::string, Wkt, "wkt", "")             \
    F(XYZ, Centering, "centerX", "centerY", "centerZ", 0.0, 0.0, 0.0)

class GeolocalisationElement : public Element {
    RUVEX_FIELDS(GeolocalisationElement, Element, RUVEX_GEOLOCALISATION_TABLE)
};

// One channel of a material: a colour (components in [0, 1], alpha 1 opaque) and an optional texture file.
// Saved under the tag it was created with: "Diffuse", "Ambient", "Specular", "Emissive", "Bump", "Opacity",
// "Reflection", "Shininess".
#define RUVEX_MATERIAL_CHANEL_TABLE(F)   \
    F(ATTR, float, Red, "red", 1.0f)     \
    F(ATTR, float, Green, "green", 1.0f) \
    F(ATTR, float, Blue, "blue", 1.0f)   \
    F(ATTR, float, Alpha, "alpha", 1.0f) \
    F(ATTR, std::string, FilePath, "filePath", "")

class MaterialChanelElement : public Element {
    RUVEX_FIELDS(MaterialChanelElement, Element, RUVEX_MATERIAL_CHANEL_TABLE)
    RUVEX_TAGGED(MaterialChanelElement)
};

// A named material: its texture file, specular exponent (>= 0), transparency (0 opaque .. 1 invisible) and
// eight optional channels, in this stored order.
#define RUVEX_MATERIAL_TABLE(F)                               \
    F(ATTR, std::string, FilePath, "filePath", "")            \
    F(ATTR, float, Shininess, "shininess", 0.0f)              \
    F(ATTR, float, Transparency, "transparency", 0.0f)        \
    F(CHILD, MaterialChanelElement, Diffuse, "Diffuse")       \
    F(CHILD, MaterialChanelElement, Ambient, "Ambient")       \
    F(CHILD, MaterialChanelElement, Specular, "Specular")     \
    F(CHILD, MaterialChanelElement, Emissive, "Emissive")     \
    F(CHILD, MaterialChanelElement, Bump, "Bump")             \
    F(CHILD, MaterialChanelElement, Opacity, "Opacity")       \
    F(CHILD, MaterialChanelElement, Reflection, "Reflection") \
    F(CHILD, MaterialChanelElement, ShininessChanel, "Shininess")

class MaterialElement : public NamedElement {
    RUVEX_FIELDS(MaterialElement, NamedElement, RUVEX_MATERIAL_TABLE)

public:
    static constexpr size_t kChanelCount = 8;
    // The channels in their stored order (Diffuse, Ambient, Specular, Emissive, Bump, Opacity, Reflection,
    // Shininess); absent ones are null.
    std::array<MaterialChanelElement*, kChanelCount> GetChanels() const;
};

#define RUVEX_GENERATED_TERRAIN_MATERIAL_TABLE(F) F(CHILD, MaterialElement, Material, "Material")

class GeneratedTerrainMaterialElement : public Element {
    RUVEX_FIELDS(GeneratedTerrainMaterialElement, Element, RUVEX_GENERATED_TERRAIN_MATERIAL_TABLE)
};

// One extremity of a track joined by a sub-network junction.
#define RUVEX_SUB_NETWORK_EXIT_TABLE(F)                    \
    F(ATTR, std::string, SubNetworkName, "subNetwork", "") \
    F(ATTR, std::string, TrackName, "track", "")           \
    F(ATTR, std::string, Extremity, "extremity", "start")

class SubNetworkExitElement : public Element {
    RUVEX_FIELDS(SubNetworkExitElement, Element, RUVEX_SUB_NETWORK_EXIT_TABLE)
};

// What every node that track extremities meet at keeps: its position (metres), altitude (the default
// elevation of the tracks ending there), its outline and how its surface is dressed. The outline is a planar
// polygon; contourInterpolations holds, per stretch from point i to point i + 1, 1 for a spline and 0 for a
// straight line. Material and ground are named; the texture heading is in radians.
#define RUVEX_TRACK_CONNECTOR_TABLE(F)                                               \
    F(XYZ, Position, "x", "y", "z", 0.0, 0.0, 0.0)                                   \
    F(ATTR, double, Altitude, "altitude", 0.0)                                       \
    F(ATTR, std::vector<::vek::Vector2>, ContourPoints, "contourPoints", {})         \
    F(ATTR, std::vector<double>, ContourInterpolations, "contourInterpolations", {}) \
    F(ATTR, std::string, MaterialName, "material", "")                               \
    F(ATTR, std::string, GroundName, "groundName", "")                               \
    F(XY, ConnectorUVScale, "uVScaleX", "uVScaleY", 1.0, 1.0)                        \
    F(XY, ConnectorUVOffset, "uVOffsetX", "uVOffsetY", 0.0, 0.0)                     \
    F(ATTR, double, ConnectorUVHeading, "uVHeading", 0.0)

class TrackConnectorElement : public NamedElement {
    RUVEX_FIELDS(TrackConnectorElement, NamedElement, RUVEX_TRACK_CONNECTOR_TABLE)
};

#define RUVEX_SUB_NETWORK_JUNCTION_TABLE(F) F(LIST, SubNetworkExitElement, Exits, "SubNetworkExit")

class SubNetworkJunctionElement : public TrackConnectorElement {
    RUVEX_FIELDS(SubNetworkJunctionElement, TrackConnectorElement, RUVEX_SUB_NETWORK_JUNCTION_TABLE)
};

// A piece of a road: a track of a sub-network, run along or against the track's direction.
#define RUVEX_ROAD_PIECE_TABLE(F)                          \
    F(ATTR, std::string, SubNetworkName, "subNetwork", "") \
    F(ATTR, std::string, TrackName, "track", "")           \
    F(ATTR, bool, Inverted, "inverted", false)

class RoadPieceElement : public Element {
    RUVEX_FIELDS(RoadPieceElement, Element, RUVEX_ROAD_PIECE_TABLE)
};

#define RUVEX_ROAD_TABLE(F)                                                                 \
    F(ATTR, uint64_t, PriorityLevel, "priorityLevel", std::numeric_limits<uint64_t>::max()) \
    F(LIST, RoadPieceElement, Pieces, "RoadElement")

class RoadElement : public NamedElement {
    RUVEX_FIELDS(RoadElement, NamedElement, RUVEX_ROAD_TABLE)
};

#define RUVEX_NETWORK_TABLE(F)                                                                             \
    F(ATTR, std::string, TrafficHand, "trafficHand", "right-hand")                                         \
    F(CHILD, GeolocalisationElement, Geolocalisation, "Geolocalisation")                                   \
    F(CHILD, ExternalFileElement, GlobalTerrainElement, "ExternalTerrain")                                 \
    F(CHILD, ExternalFileElement, RollingSurfaceElement, "ExternalSurface")                                \
    F(CHILD, ExternalFileElement, PhysicalSurfaceElement, "ExternalPhysicSurface")                         \
    F(CHILD, GeneratedTerrainMaterialElement, GeneratedTerrainMaterialElement, "GeneratedTerrainMaterial") \
    F(NAMED_LIST_IN, SubNetworkElement, SubNetworks, "SubNetworks", "SubNetwork")                          \
    F(NAMED_LIST_IN, SubNetworkJunctionElement, SubNetworkJunctions, "SubNetworkJunctions",                \
      "SubNetworkJunction")                                                                                \
    F(NAMED_LIST_IN, RoadElement, Roads, "Roads", "Road")

class NetworkElement : public NamedElement {
    RUVEX_FIELDS(NetworkElement, NamedElement, RUVEX_NETWORK_TABLE)

public:
    // The material of the generated terrain, or null.
    virtual MaterialElement* GetGeneratedTerrainMaterial() const;
};

}  // namespace Ruvex
