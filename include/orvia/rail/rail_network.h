#pragma once

// The rail description: railroad tracks laid on axes of their own, the switches and crossings that join them,
// mileage systems, typed properties along the line, and equipment on it. Objects refer to each other by name
// in the file; a rail network resolves those names when it is loaded (RailNetwork::PostLoad) and reports each
// name that resolves to nothing as a warning of the load, at the place of the reference.

#include <orvia/core/reference.h>
#include <orvia/geometry/axis.h>
#include <orvia/ruvex/elements/rail.h>

#include <string>

namespace Orvia {
class CartesianCurve;
class Curve2D;
}  // namespace Orvia

namespace Rail {

class RailroadTrack;

// Enumerated texts: the element keeps the text as read (so that a file round-trips unchanged); the runtime
// class reads it as a value on demand. A text that is no value's reads as value 0; a value that has no text
// writes the value-0 text (the circulation way writes "unknown").

class Switch : public SwitchElement {
public:
    // A fixed underlying type, so that any integer is a value (ToText answers for all of them).
    enum EType : int { eOrdinary = 0, eCurved = 1, eOutsideCurved = 2, eThreeWay = 3 };
    static const std::string& ToText(EType type);
    static EType ToSwitchType(const std::string& text);

    ~Switch() override;

    EType GetType() const { return ToSwitchType(m_Type); }
    void SetType(EType type) { m_Type = ToText(type); }
    // GetNormalPosition / SetNormalPosition (and the model word) are the record's, stored as written.
};

class Crossing : public CrossingElement {
public:
    enum EType : int { eSimple = 0, eSimpleSwitch = 1, eDoubleSwitch = 2 };
    static const std::string& ToText(EType type);
    static EType ToCrossingType(const std::string& text);

    ~Crossing() override;

    EType GetType() const { return ToCrossingType(m_Type); }
    void SetType(EType type) { m_Type = ToText(type); }
};

// The reference from a connection point to its switch or crossing; saved as "ConnectionReference".
class ConnectionReference : public Orvia::ReferenceElement {
public:
    ConnectionReference();
    ~ConnectionReference() override;

    // The switch or crossing named (a switch first when both bear the name); null until resolved, or when
    // nothing bears the name.
    ConnectionElement* GetConnection() const { return m_connection; }

private:
    friend class RailNetwork;
    ConnectionElement* m_connection = nullptr;
};

class MileageSystem : public MileageSystemElement {
public:
    enum EUsage : int { eNoInterpolation = 0, eLinearInterpolation = 1 };
    static const std::string& ToText(EUsage usage);
    static EUsage ToUsage(const std::string& text);

    ~MileageSystem() override;

    EUsage GetUsage() const { return ToUsage(m_Usage); }
    void SetUsage(EUsage usage) { m_Usage = ToText(usage); }
};

class DoubleProperty : public DoublePropertyElement {
public:
    ~DoubleProperty() override;
};

// A property whose values are the texts of its entries; its default is one of them, by text.
class EnumProperty : public EnumPropertyElement {
public:
    ~EnumProperty() override;

    // Appends an entry.
    void AddEnum(const std::string& name);
    // False when the index is out of range, or no entry bears the name (the first one that does is removed).
    bool RemoveEnum(size_t index);
    bool RemoveEnum(const std::string& name);
    size_t GetEnumCount() const { return m_Enums.size(); }
    // Empty beyond the count.
    const std::string& GetEnumName(size_t index) const;
    // The first entry whose text equals name exactly; -1 when there is none.
    int GetEnumIndex(const std::string& name) const;
    const std::string& GetDefaultEnumName() const { return m_DefaultValue; }
    void SetDefaultEnumName(const std::string& name) { m_DefaultValue = name; }
    // GetEnumIndex of the default's text.
    int GetDefaultEnumIndex() const { return GetEnumIndex(m_DefaultValue); }
};

// A number taken by a double property; saved as "DoublePropertyValue".
class DoublePropertyValue : public PropertyValueElement {
public:
    DoublePropertyValue();
    ~DoublePropertyValue() override;

    // The value text as a number; 0 when it is not one.
    double GetValue() const;
    // Writes the shortest text that reads back as value.
    void SetValue(double value);

    // Records the property this value belongs to (null: none).
    void PostLoad(DoubleProperty* property) { m_property = property; }
    DoubleProperty* GetProperty() const { return m_property; }

private:
    DoubleProperty* m_property = nullptr;
};

// An entry of an enumerated property, by text; saved as "EnumPropertyValue".
class EnumPropertyValue : public PropertyValueElement {
public:
    EnumPropertyValue();
    ~EnumPropertyValue() override;

    const std::string& GetEnumName() const { return m_Value; }
    // Also sets the index from the property when the value has one (else -1).
    void SetEnumName(const std::string& name);
    // -1 until resolved, or when the property lacks the entry.
    int GetEnumIndex() const { return m_index; }
    // Also sets the text when the property has that entry.
    void SetEnumIndex(int index);

    // The index becomes the property's index of the stored text (-1 for null or an entry it lacks).
    void PostLoad(EnumProperty* property);
    EnumProperty* GetProperty() const { return m_property; }

private:
    EnumProperty* m_property = nullptr;
    int m_index = -1;
};

class PropertyChange : public PropertyChangeElement {
public:
    // The circulation way the change holds for.
    enum EDirection : int { eNone = 0, eDirect = 1, eInverse = 2, eBoth = 3 };
    static const std::string& ToText(EDirection direction);
    static EDirection ToDirection(const std::string& text);

    ~PropertyChange() override;

    EDirection GetDirection() const { return ToDirection(m_Direction); }
    void SetDirection(EDirection direction) { m_Direction = ToText(direction); }
};

// A property value holding between a start quote and an end quote (GetPropertyValue, GetStartQuote,
// GetEndQuote).
class PropertySpan : public PropertySpanElement {
public:
    ~PropertySpan() override;
};

// Equipment at one point of a track: the track its quote names, once resolved.
class TrackEquipment {
public:
    // Null until resolved, or when no track bears the name.
    RailroadTrack* GetTrack() const { return m_track; }

protected:
    ~TrackEquipment() = default;

private:
    friend class RailNetwork;
    RailroadTrack* m_track = nullptr;
};

class Signal : public SignalElement, public TrackEquipment {
public:
    ~Signal() override;
};

class Balise : public BaliseElement, public TrackEquipment {
public:
    ~Balise() override;
};

class TelegramCalculator : public TelegramCalculatorElement, public TrackEquipment {
public:
    ~TelegramCalculator() override;
};

// Detects trains at one point of a track, like the other track equipment.
class TrainDetection : public TrainDetectionElement, public TrackEquipment {
public:
    ~TrainDetection() override;
};

// A rail track: an axis over its own plan, elevation and banking curves (read as Orvia::Curve2D and
// Orvia::CartesianCurve whatever factory is installed), how it ends at either extremity, and what lies along
// it. Abscissas in metres from the start of the plan curve. Queries (GetMark and the like) need no
// validation; they fail (false) while the track has no plan curve.
class RailroadTrack : public RailroadTrackElement, public Orvia::Axis {
public:
    RailroadTrack();
    ~RailroadTrack() override;

protected:
    // The curve tags become runtime curves; every other child goes to the record.
    bool LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) override;

public:
    // The plan curve, the elevation curve and the banking curve; null when absent or set as plain records
    // through the element's setters.
    Orvia::Curve2D* GetXYCurve() const override;
    Orvia::CartesianCurve* GetSZCurve() const override;
    Orvia::CartesianCurve* GetBankingCurve() const override;
    // Both cached lengths become the plan curve's length (0 without one).
    void UpdateCacheData() override;
    bool Validate() override;
    // Chains the plan pieces from the curve's origin; false without a plan piece.
    bool ValidateAxis() override;
    // Runs the track backwards: the three curves (Axis::InvertCurves), the two ends swap, and each mileage
    // anchor moves to L - c so that it stays at the same place of the line.
    void InvertAxis() override;

    // The switch a "SwitchEnd" names, the linked end a "LinkedEnd" names; null for other ends, before
    // resolution, or when nothing bears the name.
    SwitchElement* GetStartSwitch() const { return m_startSwitch; }
    SwitchElement* GetEndSwitch() const { return m_endSwitch; }
    TrackLinkedEndElement* GetStartLink() const { return m_startLink; }
    TrackLinkedEndElement* GetEndLink() const { return m_endLink; }

private:
    friend class RailNetwork;
    SwitchElement* m_startSwitch = nullptr;
    SwitchElement* m_endSwitch = nullptr;
    TrackLinkedEndElement* m_startLink = nullptr;
    TrackLinkedEndElement* m_endLink = nullptr;
};

class RailNetwork : public RailNetworkElement {
public:
    ~RailNetwork() override;

    // Reads the tree, then resolves it (PostLoad); each reference that resolves to nothing is reported to
    // the parser as a warning at its place. False only when the record's reader fails.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    size_t GetTrackCount() const { return m_RailroadTracks.size(); }
    // Null beyond the count (or for a track that is a plain record).
    RailroadTrack* GetTrack(size_t index) const;

    // By name; null when nothing bears it (or it is a plain record).
    RailroadTrack* GetTrackByName(const std::string& name) const;
    Switch* GetSwitchByName(const std::string& name) const;
    Crossing* GetCrossingByName(const std::string& name) const;
    MileageSystem* GetMileageSystemByName(const std::string& name) const;
    TrackLinkedEndElement* GetTrackLinkedEndByName(const std::string& name) const;
    PropertyElement* GetSpannedPropertyByName(const std::string& name) const;
    PropertyElement* GetChangedPropertyByName(const std::string& name) const;

    // Updates every track's axis cache, in order, then turns every name reference into its object: track
    // ends, connection points, property values (against the spanned properties for spans, the changed ones
    // for changes), track quotes of equipment; quotes, mileage anchors and track spans, which keep no
    // pointer, are checked. Safe to run again after edits.
    void PostLoad();
    // References that resolved to nothing at the last PostLoad (a value naming an entry its property lacks
    // counts).
    size_t GetUnresolvedReferenceCount() const { return m_unresolved; }

    // Replaces the content with a small fixed example: one track, two mileage systems, electrification and
    // speed properties, a switch, two linked ends, objects on track spans, two stations, and two of each
    // equipment; every reference resolves.
    void BuildFake();
    // A span of `trackName` between two abscissas of the mileage system `systemName`, for the sample objects.
    static TrackSpanElement* BuildFakeTrackSpanElement(const std::string& trackName,
                                                       const std::string& systemName, double start,
                                                       double end);

private:
    size_t m_unresolved = 0;
};

}  // namespace Rail
