#pragma once

// Data of the grounds that lanes drive on: the surface type, its roughness and the soft-ground models of
// deformable terrain.

#include <orvia/ruvex/schema.h>

#include <string>

namespace Ruvex {

// Five plain values of a roughness description; saved under the tag it was created with ("Point2x2D",
// "Scale2x2DPoints", "Offset2x2DPoints").
#define RUVEX_POINT_2X2D_TABLE(F)          \
    F(ATTR, double, Value0, "value0", 0.0) \
    F(ATTR, double, Value1, "value1", 0.0) \
    F(ATTR, double, Value2, "value2", 0.0) \
    F(ATTR, double, Value3, "value3", 0.0) \
    F(ATTR, double, Value4, "value4", 0.0)

class Point2x2DElement : public Element {
    RUVEX_FIELDS(Point2x2DElement, Element, RUVEX_POINT_2X2D_TABLE)

public:
    // Saved under `tag`. A scale ("Scale2x2DPoints") starts with every value at 1, so that an absent value
    // scales nothing.
    explicit Point2x2DElement(const std::string& tag);
    const std::string& GetTagName() const override { return m_tag.empty() ? GetSchema().tag : m_tag; }

protected:
    std::string m_tag;
};

// Parameters of an analytic roughness; the file's attributes are kept as they stand.
#define RUVEX_ROUGHNESS_ANALYTIC_TABLE(F)

class RoughnessAnalyticElement : public Element {
    RUVEX_FIELDS(RoughnessAnalyticElement, Element, RUVEX_ROUGHNESS_ANALYTIC_TABLE)
};

#define RUVEX_ROUGHNESS_TABLE(F)                                                     \
    F(ATTR, double, RoughnessLength, "RoughnessLength", 0.0)                         \
    F(ATTR, double, RoughnessLengthStdDeviation, "RoughnessLengthStdDeviation", 0.0) \
    F(LIST_IN, Point2x2DElement, Points, "Points2x2D", "Point2x2D")                  \
    F(CHILD, Point2x2DElement, Scale, "Scale2x2DPoints")                             \
    F(CHILD, Point2x2DElement, Offset, "Offset2x2DPoints")                           \
    F(CHILD, RoughnessAnalyticElement, Analytic, "RoughnessAnalytic")

class RoughnessElement : public Element {
    RUVEX_FIELDS(RoughnessElement, Element, RUVEX_ROUGHNESS_TABLE)
};

// Bekker-Grahn terramechanics model of a soft ground.
#define RUVEX_TERRA_MECANICS_MODEL_TABLE(F)                  \
    F(ATTR, bool, IsActive, "isActive", false)               \
    F(ATTR, double, SlipCoefficient, "slipCoefficient", 0.0) \
    F(ATTR, double, KcBekker, "kcBekker", 10000.0)           \
    F(ATTR, double, KphiBekker, "kphiBekker", 1000000.0)     \
    F(ATTR, double, NBekker, "nBekker", 1.0)                 \
    F(ATTR, double, MGrahn, "mGrahn", 0.05)                  \
    F(ATTR, double, RubberGrip, "rubberGrip", 1.0)           \
    F(ATTR, double, MetalGrip, "metalGrip", 0.3)

class TerraMecanicsModelElement : public Element {
    RUVEX_FIELDS(TerraMecanicsModelElement, Element, RUVEX_TERRA_MECANICS_MODEL_TABLE)
};

// Functional model of a soft ground: sinkage and resistive force from reference measurements.
#define RUVEX_FUNCTIONAL_MODEL_TABLE(F)                                         \
    F(ATTR, bool, IsActive, "isActive", false)                                  \
    F(ATTR, double, ReferenceSinkage, "referenceSinkage", 0.1)                  \
    F(ATTR, double, VerticalLoadForSinkage, "verticalLoadForSinkage", 30000.0)  \
    F(ATTR, double, ContactSurfaceForSinkage, "contactSurfaceForSinkage", 0.1)  \
    F(ATTR, double, ReferenceResistiveForce, "referenceResistiveForce", 5000.0) \
    F(ATTR, double, SinkageForForce, "sinkageForForce", 0.1)                    \
    F(ATTR, double, RutWidthForForce, "rutWidthForForce", 0.3)                  \
    F(ATTR, double, MaxGripNonSkid, "maxGripNonSkid", 0.3)                      \
    F(ATTR, double, MaxGripSkidding, "maxGripSkidding", 0.2)

class FunctionalModelElement : public Element {
    RUVEX_FIELDS(FunctionalModelElement, Element, RUVEX_FUNCTIONAL_MODEL_TABLE)
};

// Soil description of a deformable ground (humidity as a fraction, density in kg/m3) with its two
// alternative models.
#define RUVEX_SOFT_GROUND_PROPERTIES_TABLE(F)                                     \
    F(ATTR, bool, IsActive, "isActive", false)                                    \
    F(ATTR, double, Humidity, "humidity", 0.05)                                   \
    F(ATTR, double, VolumetricMass, "volumetricMass", 1000.0)                     \
    F(ATTR, double, ConeIndex, "coneIndex", 0.0)                                  \
    F(ATTR, double, Cohesion, "cohesion", 0.0)                                    \
    F(ATTR, double, FrictionAngle, "frictionAngle", 0.0)                          \
    F(CHILD, TerraMecanicsModelElement, TerraMecanicsModel, "TerraMecanicsModel") \
    F(CHILD, FunctionalModelElement, FunctionalModel, "FunctionalModel")

class SoftGroundPropertiesElement : public Element {
    RUVEX_FIELDS(SoftGroundPropertiesElement, Element, RUVEX_SOFT_GROUND_PROPERTIES_TABLE)
};

// A named surface: its type word ("asphalt", "concrete", "grass", "cobblestone"), whether it deforms, its
// roughness and its soft-ground properties.
#define RUVEX_GROUND_TABLE(F)                          \
    F(ATTR, std::string, Type, "type", "asphalt")      \
    F(ATTR, bool, IsSoftGround, "isSoftGround", false) \
    F(CHILD, RoughnessElement, Roughness, "Roughness") \
    F(CHILD, SoftGroundPropertiesElement, SoftGroundProperties, "SoftGroundProperties")

class GroundElement : public NamedElement {
    RUVEX_FIELDS(GroundElement, NamedElement, RUVEX_GROUND_TABLE)
};

}  // namespace Ruvex
