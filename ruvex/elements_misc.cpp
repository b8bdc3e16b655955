#include <orvia/ruvex/elements/misc.h>

namespace Ruvex {

RUVEX_SCHEMA(AreaElement, NamedElement, "Area", RUVEX_AREA_TABLE)
RUVEX_SCHEMA(ConcentricZoneElement, NamedElement, "ConcentricZone", RUVEX_CONCENTRIC_ZONE_TABLE)
RUVEX_SCHEMA(ParkingLotElement, NamedElement, "ParkingLot", RUVEX_PARKING_LOT_TABLE)
RUVEX_SCHEMA(ParkingSpotSkinElement, Element, "ParkingSpotSkin", RUVEX_PARKING_SPOT_SKIN_TABLE)
RUVEX_SCHEMA(ParkingSpotElement, NamedElement, "ParkingSpot", RUVEX_PARKING_SPOT_TABLE)
RUVEX_SCHEMA(ExternalEntityElement, Element, "ExternalEntity", RUVEX_EXTERNAL_ENTITY_TABLE)
RUVEX_SCHEMA(EntitiesGenerationElement, NamedElement, "EntitiesGeneration", RUVEX_ENTITIES_GENERATION_TABLE)
RUVEX_SCHEMA(TrajectoryPartElement, NamedElement, "TrajectoryPart", RUVEX_TRAJECTORY_PART_TABLE)
RUVEX_SCHEMA(TrajectoryPieceElement, Element, "TrajectoryElement", RUVEX_TRAJECTORY_PIECE_TABLE)
RUVEX_SCHEMA(TrajectoryElement, NamedElement, "Trajectory", RUVEX_TRAJECTORY_TABLE)
RUVEX_SCHEMA(SubPartsElement, Element, "SubParts", RUVEX_SUB_PARTS_TABLE)
RUVEX_SCHEMA(LinearElement, Element, "Linear", RUVEX_LINEAR_TABLE)
RUVEX_SCHEMA(ScaleElement, Element, "Scale", RUVEX_SCALE_TABLE)
RUVEX_SCHEMA(CompositeObjectElement, NamedElement, "CompositeObject", RUVEX_COMPOSITE_OBJECT_TABLE)
RUVEX_SCHEMA(SurfaceModifierElement, Element, "SurfaceModifier", RUVEX_SURFACE_MODIFIER_TABLE)
RUVEX_SCHEMA(RollingSurfacePropsElement, Element, "RollingSurfaceProps", RUVEX_KEPT_AS_READ_TABLE)
RUVEX_SCHEMA(Export3DLayersElement, Element, "Export3DLayers", RUVEX_KEPT_AS_READ_TABLE)
RUVEX_SCHEMA(Generate3DRoadsElement, Element, "Generate3DRoads", RUVEX_KEPT_AS_READ_TABLE)
RUVEX_SCHEMA(SolExportOptionsElement, Element, "SolExportOptions", RUVEX_KEPT_AS_READ_TABLE)
RUVEX_SCHEMA(PedestrianNetworkElement, Element, "PedestrianNetwork", RUVEX_KEPT_AS_READ_TABLE)
RUVEX_SCHEMA(LegacyElement, Element, "Legacy", RUVEX_LEGACY_TABLE)
RUVEX_SCHEMA(LegacySZCurveElement, Element, "LegacySZCurve", RUVEX_KEPT_AS_READ_TABLE)
RUVEX_SCHEMA(VersionElement, Element, "Version", RUVEX_KEPT_AS_READ_TABLE)

}  // namespace Ruvex
