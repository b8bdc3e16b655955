#pragma once

// Grounds: the surface type lanes drive on, its roughness, and the soft-ground models of deformable terrain.

#include <orvia/ruvex/elements/ground.h>

#include <cstdint>
#include <string>

namespace Orvia {

class FunctionalGroundElement;
class SoftGroundPropertiesElement;
class TerramecanicsGroundElement;

// Surface types, with their texts ("asphalt", "concrete", "grass", "cobblestone").
enum GroundType : uint32_t {
    eGroundAsphalt = 0,
    eGroundConcrete = 1,
    eGroundGrass = 2,
    eGroundCobblestone = 3
};

// A named surface (element record). Its type is kept as its text too; a new ground is "asphalt" and hard.
class Ground : public Ruvex::GroundElement {
public:
    Ground() = default;
    Ground(const Ground& other);
    Ground& operator=(const Ground& other);
    ~Ground() override;

    // Reads the record, then the type from its text; a text outside the table reads as asphalt and is
    // reported as a warning (the text is kept and saved as read).
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    GroundType GetTypeId() const { return m_type; }
    // Stores the type and its text.
    void SetTypeId(GroundType type);
    // Setting it on gives the ground soft-ground properties when it has none (functional model active).
    void SetIsSoftGround(bool soft);
    // Make the terramechanics (functional) model the active one and the other inactive; the soft-ground
    // properties and both models are created when missing.
    void SetIsTerramecanicsSoftGroundModel();
    void SetIsFunctionnalSoftGroundModel();
    // Null when absent or a plain record.
    SoftGroundPropertiesElement* GetSoftGround() const;

    // Every stored value compared exactly (name, type text, flag, roughness, soft-ground properties and their
    // models, content kept as read). False for null.
    bool IsEqual(const Ground* other) const;
    // Takes a deep copy of other's content; nothing for null.
    void CopyFrom(const Ground* other);
    Ground* Clone() const;

    // A ground file: the ground directly under the document root. Load gives null when the file does not load
    // or holds no ground (count 0; the caller owns it); Save false when the file cannot be written.
    static Ground* Load(const char* path);
    bool Save(const char* path);

    // "asphalt", "concrete", "grass", "cobblestone"; "asphalt" for any other value.
    static const char* ToText(GroundType type);
    // The type of an exact text; asphalt for any other (and for null).
    static GroundType ToEType(const char* text);

private:
    GroundType m_type = eGroundAsphalt;
};

class Roughness : public Ruvex::RoughnessElement {
public:
    ~Roughness() override;
    bool IsEqual(const Roughness* other) const;
    void CopyFrom(const Roughness* other);
};

// Read from and saved as "RoughnessAnalytic"; its parameters are kept as they were read.
class Analytic : public Ruvex::RoughnessAnalyticElement {
public:
    ~Analytic() override;
    bool IsEqual(const Analytic* other) const;
    void CopyFrom(const Analytic* other);
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
    bool IsEqual(const Point2x2D* other) const;
    void CopyFrom(const Point2x2D* other);
};

// Soil description of a deformable ground with its two alternative models. A new one holds both models,
// the functional one active; a loaded one holds the models its file holds.
class SoftGroundPropertiesElement : public Ruvex::SoftGroundPropertiesElement {
public:
    SoftGroundPropertiesElement();
    ~SoftGroundPropertiesElement() override;

    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    // Null when absent or a plain record.
    TerramecanicsGroundElement* GetTerramecanicsModel() const;
    FunctionalGroundElement* GetFunctionalModel() const;
    // Creates the missing models; the active flags are then set as named.
    void SetIsTerramecanicsSoftGroundModel();
    void SetIsFunctionnalSoftGroundModel();

    bool IsEqual(const SoftGroundPropertiesElement* other) const;
};

// The functional soft-ground model; read from and saved as "FunctionalModel".
class FunctionalGroundElement : public Ruvex::FunctionalModelElement {
public:
    ~FunctionalGroundElement() override;
    bool IsEqual(const FunctionalGroundElement* other) const;
};

// The Bekker-Grahn soft-ground model; read from and saved as "TerraMecanicsModel".
class TerramecanicsGroundElement : public Ruvex::TerraMecanicsModelElement {
public:
    ~TerramecanicsGroundElement() override;
    bool IsEqual(const TerramecanicsGroundElement* other) const;
};

}  // namespace Orvia
