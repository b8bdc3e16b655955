#pragma once

// Extra elements that ride along inside model elements (tracks, road pieces, clipped data): a host puts any
// element of its own there and gets it back after a save and a load.

#include <orvia/ruvex/element.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvia {

// A user datum: an element identified by its tag. Subclasses say how they load, save, copy and compare.
class UserData : public Ruvex::Element {
public:
    UserData() = default;
    UserData(const UserData&) = default;
    UserData& operator=(const UserData&) = default;

    const std::string& GetTagName() const override = 0;
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override = 0;
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override = 0;
    // Copies the content of `other` when it is of the same kind; otherwise leaves this datum unchanged.
    virtual void CopyFrom(const UserData* other) = 0;
    // True when `other` holds the same content (false for null or another kind).
    virtual bool IsEqual(UserData* other) const = 0;

    // A new datum made by the installed factory for this tag, holding a copy of this one (count 0; the caller
    // owns it). Null when the factory makes no user datum for the tag.
    UserData* Clone() const;
};

// Mix-in holding an ordered list of user data. Several data may share a tag; look-ups by tag take the first.
class UserDataContainer {
public:
    // Appends `data` (taking a reference); null is ignored.
    void AddUserData(UserData* data);
    // Inserts `data` before `index` (index == count appends). False, and no change, when index > count or
    // data is null.
    bool InsertUserData(size_t index, UserData* data);
    // The datum at `index`, or null when out of range (borrowed).
    UserData* GetUserData(size_t index) const;
    size_t GetUserDataCount() const { return m_userData.size(); }
    // The first datum whose tag is `tag` exactly, or null.
    UserData* GetUserData(const std::string& tag) const;
    // Removes the first datum whose tag is `tag`, keeping the order of the rest; nothing when none matches.
    void RemoveUserData(const std::string& tag);
    void ClearUserData();
    // Replaces the list with deep copies of `other`'s data, each made by the installed factory for its tag. A
    // datum whose tag the factory does not make as a user datum leaves an empty (null) place. Null `other`
    // clears.
    void CopyFrom(const UserDataContainer* other);

protected:
    UserDataContainer() = default;
    UserDataContainer(const UserDataContainer& other) { CopyFrom(&other); }
    UserDataContainer& operator=(const UserDataContainer& other) {
        if (this != &other) CopyFrom(&other);
        return *this;
    }
    virtual ~UserDataContainer() = default;

    // True when both lists have the same length and the data compare equal pair by pair (two empty places are
    // equal).
    bool IsEqual(const UserDataContainer* other) const;
    // Makes the object for `element`'s tag through the factory. When it is a user datum: loads it, keeps it
    // whatever the load answered, and returns true. Otherwise discards it and returns false.
    bool TryToLoadElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser);
    // Appends each datum's element to `parent`, in order; true.
    bool ToElement(Ruvex::IDOMElement* parent, Ruvex::IDOMParser* parser);

private:
    std::vector<Ruvex::CountedPtr<UserData>> m_userData;
};

// The general-purpose user datum: numbered text lines, saved as <QuenbelData><Line
// value="..."/>...</QuenbelData>. Whatever else a file puts in the element is kept and written back.
class QuenbelDataElement : public UserData {
public:
    static const std::string kTag;       // "QuenbelData"
    static const std::string kLineTag;   // "Line"
    static const std::string kValueTag;  // "value"

    const std::string& GetTagName() const override { return kTag; }
    // Reads the "Line" children in order (a line without "value" is empty). False when there is none, when an
    // argument is null, or when an attribute is malformed.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;
    Ruvex::IDOMElement* BuildXMLElement(Ruvex::IDOMParser* parser) override;
    // Copies the value, the lines and the kept file content of another QuenbelDataElement.
    void CopyFrom(const UserData* other) override;
    // Compares the lines only.
    bool IsEqual(UserData* other) const override;

    // A value of the host's; copied with the datum, not saved.
    uint64_t GetValue() const { return m_value; }
    void SetValue(uint64_t value) { m_value = value; }

    const std::vector<std::string>& GetLines() const { return m_lines; }
    std::vector<std::string>& EditLines() { return m_lines; }

private:
    uint64_t m_value = 0;
    std::vector<std::string> m_lines;
};

}  // namespace Orvia
