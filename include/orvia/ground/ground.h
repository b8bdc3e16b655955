#pragma once

// Grounds: the surface type lanes drive on, its roughness, and the soft-ground models of deformable terrain.

#include <orvia/ruvex/elements/ground.h>

#include <string>

namespace Orvia {

class Ground : public Ruvex::GroundElement {
public:
    ~Ground() override;
};

class Roughness : public Ruvex::RoughnessElement {
public:
    ~Roughness() override;
};

// Read from and saved as "RoughnessAnalytic".
class Analytic : public Ruvex::RoughnessAnalyticElement {
public:
    ~Analytic() override;
};

// Five plain values of a roughness description, saved under the tag it was made for ("Point2x2D",
// "Scale2x2DPoints", "Offset2x2DPoints").
class Point2x2D : public Ruvex::Point2x2DElement {
public:
    Point2x2D() = default;
    // A scale ("Scale2x2DPoints") starts with every value at 1, any other tag at 0.
    explicit Point2x2D(const std::string& tag) : Ruvex::Point2x2DElement(tag) {}
    Point2x2D(double value0, double value1, double value2, double value3, double value4,
              const std::string& tag);
    ~Point2x2D() override;
};

class SoftGroundPropertiesElement : public Ruvex::SoftGroundPropertiesElement {
public:
    ~SoftGroundPropertiesElement() override;
};

// The functional soft-ground model; read from and saved as "FunctionalModel".
class FunctionalGroundElement : public Ruvex::FunctionalModelElement {
public:
    ~FunctionalGroundElement() override;
};

// The Bekker-Grahn soft-ground model; read from and saved as "TerraMecanicsModel".
class TerramecanicsGroundElement : public Ruvex::TerraMecanicsModelElement {
public:
    ~TerramecanicsGroundElement() override;
};

}  // namespace Orvia
