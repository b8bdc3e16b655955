#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/elements/subnetwork.h>

namespace Ruvex {

RUVEX_SCHEMA(ExternalFileElement, Element, "ExternalElement", RUVEX_EXTERNAL_FILE_TABLE)
RUVEX_SCHEMA(GeolocalisationElement, Element, "Geolocalisation", RUVEX_GEOLOCALISATION_TABLE)
RUVEX_SCHEMA(MaterialElement, NamedElement, "Material", RUVEX_MATERIAL_TABLE)
RUVEX_SCHEMA(GeneratedTerrainMaterialElement, Element, "GeneratedTerrainMaterial",
             RUVEX_GENERATED_TERRAIN_MATERIAL_TABLE)
RUVEX_SCHEMA(SubNetworkExitElement, Element, "SubNetworkExit", RUVEX_SUB_NETWORK_EXIT_TABLE)
RUVEX_SCHEMA(TrackConnectorElement, NamedElement, "TrackConnector", RUVEX_TRACK_CONNECTOR_TABLE)
RUVEX_SCHEMA(SubNetworkJunctionElement, TrackConnectorElement, "SubNetworkJunction",
             RUVEX_SUB_NETWORK_JUNCTION_TABLE)
RUVEX_SCHEMA(RoadPieceElement, Element, "RoadElement", RUVEX_ROAD_PIECE_TABLE)
RUVEX_SCHEMA(RoadElement, NamedElement, "Road", RUVEX_ROAD_TABLE)
RUVEX_SCHEMA(NetworkElement, NamedElement, "Network", RUVEX_NETWORK_TABLE)
RUVEX_SCHEMA(SubNetworkElement, NamedElement, "SubNetwork", RUVEX_SUB_NETWORK_TABLE)

MaterialElement* NetworkElement::GetGeneratedTerrainMaterial() const {
    return m_GeneratedTerrainMaterialElement ? m_GeneratedTerrainMaterialElement->GetMaterial() : nullptr;
}

}  // namespace Ruvex
