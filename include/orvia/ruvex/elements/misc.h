#pragma once

// Data of the smaller families: zones, parking, entity generation, trajectories, linear and composite
// objects, surface and export settings, material channels, and the records that the converter of older files
// reads. Most of these carry only what the rest of the model refers to; whatever else a file holds is kept
// as it stands.

#include <orvia/ruvex/elements/curves.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/schema.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Ruvex {

// ---------------------------------------------------------------------------------------------------------------
// Zones

// A named area bounded by a polygon (sub-network coordinates, metres; closed implicitly).
#define RUVEX_AREA_TABLE(F) F(ATTR, std::vector<::vek::Vector2>, Points, "points", {})

class AreaElement : public NamedElement {
    RUVEX_FIELDS(AreaElement, NamedElement, RUVEX_AREA_TABLE)
};

// Rings around a centre (metres), innermost radius first.
#define RUVEX_CONCENTRIC_ZONE_TABLE(F) \
    F(XY, Center, "x", "y", 0.0, 0.0)  \
    F(ATTR, std::vector<double>, Radii, "radii", {})

class ConcentricZoneElement : public NamedElement {
    RUVEX_FIELDS(ConcentricZoneElement, NamedElement, RUVEX_CONCENTRIC_ZONE_TABLE)
};

// ---------------------------------------------------------------------------------------------------------------
// Parking

// A row of spots laid along the track of the clipped data that carries it: spot size (metres) and the
// angle of the spots to the track direction (radians).
#define RUVEX_PARKING_LOT_TABLE(F)                 \
    F(ATTR, double, SpotWidth, "spotWidth", 2.5)   \
    F(ATTR, double, SpotLength, "spotLength", 5.0) \
    F(ATTR, double, Angle, "angle", 1.5707963267948966)

class ParkingLotElement : public NamedElement {
    RUVEX_FIELDS(ParkingLotElement, NamedElement, RUVEX_PARKING_LOT_TABLE)
};

// How a spot is drawn: the texture that fills it.
#define RUVEX_PARKING_SPOT_SKIN_TABLE(F) F(ATTR, std::string, FillingTexture, "fillingTexture", "")

class ParkingSpotSkinElement : public Element {
    RUVEX_FIELDS(ParkingSpotSkinElement, Element, RUVEX_PARKING_SPOT_SKIN_TABLE)
};

// One spot: the centre of its rectangle (sub-network coordinates, metres), its heading (radians from +x)
// and its size (metres).
#define RUVEX_PARKING_SPOT_TABLE(F)                \
    F(XYZ, Position, "x", "y", "z", 0.0, 0.0, 0.0) \
    F(ATTR, double, Heading, "heading", 0.0)       \
    F(ATTR, double, Width, "width", 2.5)           \
    F(ATTR, double, Length, "length", 5.0)         \
    F(CHILD, ParkingSpotSkinElement, Skin, "ParkingSpotSkin")

class ParkingSpotElement : public NamedElement {
    RUVEX_FIELDS(ParkingSpotElement, NamedElement, RUVEX_PARKING_SPOT_TABLE)
};

// ---------------------------------------------------------------------------------------------------------------
// Entity generation

// A model file of entities to generate.
#define RUVEX_EXTERNAL_ENTITY_TABLE(F) F(ATTR, std::string, FilePath, "filePath", "")

class ExternalEntityElement : public Element {
    RUVEX_FIELDS(ExternalEntityElement, Element, RUVEX_EXTERNAL_ENTITY_TABLE)
};

// A rule that fills an area (by name) with entities: the algorithm as its text and the entity files.
#define RUVEX_ENTITIES_GENERATION_TABLE(F)                   \
    F(ATTR, std::string, AlgorithmType, "algorithmType", "") \
    F(ATTR, std::string, AreaName, "area", "")               \
    F(LIST, ExternalEntityElement, ExternalEntities, "ExternalEntity")

class EntitiesGenerationElement : public NamedElement {
    RUVEX_FIELDS(EntitiesGenerationElement, NamedElement, RUVEX_ENTITIES_GENERATION_TABLE)
};

// ---------------------------------------------------------------------------------------------------------------
// Trajectories and objects laid along an axis

// A stretch of a path with its own axis; "TrajectoryCurve" is an optional y = f(s) chain along it.
#define RUVEX_TRAJECTORY_PART_TABLE(F)                            \
    F(CHILD, XYCurveElement, XYCurve, "XYCurve")                  \
    F(CHILD, CartesianCurveElement, SZCurve, "SZCurve")           \
    F(CHILD, CartesianCurveElement, BankingCurve, "BankingCurve") \
    F(CHILD, CartesianCurveElement, TrajectoryCurve, "TrajectoryCurve")

class TrajectoryPartElement : public NamedElement {
    RUVEX_FIELDS(TrajectoryPartElement, NamedElement, RUVEX_TRAJECTORY_PART_TABLE)
};

// One piece of a trajectory: a trajectory part of the same sub-network, by name, run along or against its
// direction.
#define RUVEX_TRAJECTORY_PIECE_TABLE(F)                            \
    F(ATTR, std::string, TrajectoryPartName, "trajectoryPart", "") \
    F(ATTR, bool, Inverted, "inverted", false)

class TrajectoryPieceElement : public Element {
    RUVEX_FIELDS(TrajectoryPieceElement, Element, RUVEX_TRAJECTORY_PIECE_TABLE)
};

#define RUVEX_TRAJECTORY_TABLE(F) F(LIST, TrajectoryPieceElement, Pieces, "TrajectoryElement")

class TrajectoryElement : public NamedElement {
    RUVEX_FIELDS(TrajectoryElement, NamedElement, RUVEX_TRAJECTORY_TABLE)
};

// The sub-parts of a linear object. The record declares no field: whatever a file puts in it is kept as it
// stands.
#define RUVEX_SUB_PARTS_TABLE(F)

class SubPartsElement : public Element {
    RUVEX_FIELDS(SubPartsElement, Element, RUVEX_SUB_PARTS_TABLE)
};

// An object laid along a track by its own axis; the control points are the polygon the axis was made from
// (axis-owner coordinates, metres).
#define RUVEX_LINEAR_TABLE(F)                                                \
    F(CHILD, XYCurveElement, XYCurve, "XYCurve")                             \
    F(CHILD, CartesianCurveElement, SZCurve, "SZCurve")                      \
    F(CHILD, CartesianCurveElement, BankingCurve, "BankingCurve")            \
    F(ATTR, std::vector<::vek::Vector2>, ControlPoints, "controlPoints", {}) \
    F(CHILD, SubPartsElement, SubParts, "SubParts")

class LinearElement : public Element {
    RUVEX_FIELDS(LinearElement, Element, RUVEX_LINEAR_TABLE)
};

// Scale factors along x, y and z.
#define RUVEX_SCALE_TABLE(F) F(XYZ, Factors, "x", "y", "z", 1.0, 1.0, 1.0)

class ScaleElement : public Element {
    RUVEX_FIELDS(ScaleElement, Element, RUVEX_SCALE_TABLE)
};

// Several 3D object files placed together, with one scale.
#define RUVEX_COMPOSITE_OBJECT_TABLE(F)                      \
    F(LIST, ExternalFileElement, Objects, "ExternalElement") \
    F(CHILD, ScaleElement, Scale, "Scale")

class CompositeObjectElement : public NamedElement {
    RUVEX_FIELDS(CompositeObjectElement, NamedElement, RUVEX_COMPOSITE_OBJECT_TABLE)
};

// A change of the driven surface inside the box of the clipped data that carries it: the ground (by name)
// and a height offset (metres).
#define RUVEX_SURFACE_MODIFIER_TABLE(F)                \
    F(ATTR, std::string, GroundName, "groundName", "") \
    F(ATTR, double, HeightOffset, "heightOffset", 0.0)

class SurfaceModifierElement : public Element {
    RUVEX_FIELDS(SurfaceModifierElement, Element, RUVEX_SURFACE_MODIFIER_TABLE)
};

// ---------------------------------------------------------------------------------------------------------------
// Surface and export settings, pedestrian network: their content is kept as the file has it.

#define RUVEX_KEPT_AS_READ_TABLE(F)

class RollingSurfacePropsElement : public Element {
    RUVEX_FIELDS(RollingSurfacePropsElement, Element, RUVEX_KEPT_AS_READ_TABLE)
};

class Export3DLayersElement : public Element {
    RUVEX_FIELDS(Export3DLayersElement, Element, RUVEX_KEPT_AS_READ_TABLE)
};

class Generate3DRoadsElement : public Element {
    RUVEX_FIELDS(Generate3DRoadsElement, Element, RUVEX_KEPT_AS_READ_TABLE)
};

class SolExportOptionsElement : public Element {
    RUVEX_FIELDS(SolExportOptionsElement, Element, RUVEX_KEPT_AS_READ_TABLE)
};

class PedestrianNetworkElement : public Element {
    RUVEX_FIELDS(PedestrianNetworkElement, Element, RUVEX_KEPT_AS_READ_TABLE)
};

// ---------------------------------------------------------------------------------------------------------------
// Records of older files, read by the converter

// Two indices that an older file used instead of names: (sub-network, track) on a road piece, (start
// intersection, end intersection) on a track. -1 when absent.
#define RUVEX_LEGACY_TABLE(F)                      \
    F(ATTR, int64_t, FirstIndex, "firstIndex", -1) \
    F(ATTR, int64_t, SecondIndex, "secondIndex", -1)

class LegacyElement : public Element {
    RUVEX_FIELDS(LegacyElement, Element, RUVEX_LEGACY_TABLE)
};

class LegacySZCurveElement : public Element {
    RUVEX_FIELDS(LegacySZCurveElement, Element, RUVEX_KEPT_AS_READ_TABLE)
};

// Saved under the tag it was created with ("Version", "QorVersion").
class VersionElement : public Element {
    RUVEX_FIELDS(VersionElement, Element, RUVEX_KEPT_AS_READ_TABLE)
    RUVEX_TAGGED(VersionElement)
};

}  // namespace Ruvex
