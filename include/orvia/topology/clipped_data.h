#pragma once

// Clipped data: objects placed on the network either relative to a track (in track coordinates, within a
// scope) or at a fixed mark under a parent element. Each carries user data.

#include <orvia/core/user_data.h>
#include <orvia/ruvex/elements/clipped.h>

#include <string>

namespace Orvia {

// What every kind of clipped data shares beside its record: the user data, and access to the record.
class ClippedData : public UserDataContainer {
public:
    // The record common to every kind: name, static flag and carried 3D object.
    virtual Ruvex::ClippedDataElement& GetClippedDataElement() = 0;
    virtual const Ruvex::ClippedDataElement& GetClippedDataElement() const = 0;

protected:
    ClippedData() = default;
    ClippedData(const ClippedData&) = default;
    ClippedData& operator=(const ClippedData&) = default;
    ~ClippedData() override;

    // Keeps a child that `record` does not declare as a user datum when it is one. True when taken.
    bool LoadUserDataChild(const Ruvex::Element& record, Ruvex::IDOMElement* child,
                           Ruvex::IDOMParser* parser);
};

// The part of a track an object applies to.
class TrackScope : public Ruvex::TrackScopeElement {
public:
    ~TrackScope() override;
};

// An object clipped onto a track; saved under the tag it was made for ("ClippedData" inside a track).
class TrackClippedData : public Ruvex::TrackClippedDataElement, public ClippedData {
public:
    TrackClippedData() = default;
    explicit TrackClippedData(const std::string& tag) : Ruvex::TrackClippedDataElement(tag) {}
    ~TrackClippedData() override;

    Ruvex::ClippedDataElement& GetClippedDataElement() override { return *this; }
    const Ruvex::ClippedDataElement& GetClippedDataElement() const override { return *this; }

    // The record's element followed by the user data.
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

protected:
    // Children the record does not declare are kept as user data when they are some.
    bool LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) override;
};

// An object placed at a fixed mark in its parent's frame.
class MarkClippedData : public Ruvex::MarkClippedDataElement, public ClippedData {
public:
    ~MarkClippedData() override;

    Ruvex::ClippedDataElement& GetClippedDataElement() override { return *this; }
    const Ruvex::ClippedDataElement& GetClippedDataElement() const override { return *this; }

    // The record's element followed by the user data.
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;

protected:
    // Children the record does not declare are kept as user data when they are some.
    bool LoadChild(Ruvex::IDOMElement* child, Ruvex::IDOMParser* parser) override;
};

}  // namespace Orvia
