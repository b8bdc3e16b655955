#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Ruvex {

// Packs a format version so that packed values order like versions. Each part is kept to 0..255.
constexpr uint32_t MakeVersionID(int major, int minor, int revision) {
    auto part = [](int v) { return static_cast<uint32_t>(v < 0 ? 0 : (v > 255 ? 255 : v)); };
    return (part(major) << 16) | (part(minor) << 8) | part(revision);
}

// The version this library writes: above every layout change it knows how to read.
inline constexpr int kCurrentVersionMajor = 2;
inline constexpr int kCurrentVersionMinor = 5;
inline constexpr int kCurrentVersionRevision = 0;
inline constexpr uint32_t kCurrentVersion =
    MakeVersionID(kCurrentVersionMajor, kCurrentVersionMinor, kCurrentVersionRevision);

// How text is held in memory. Files are always UTF-8 (or Latin-1 when their declaration says so); in Latin1
// mode the model's strings are Latin-1 and are converted when they cross the DOM boundary.
namespace Encoding {
enum Mode { UTF8 = 0, Latin1 = 1 };
Mode GetMode();
void SetMode(Mode mode);
}  // namespace Encoding

// Outcome of reading a typed attribute: absent is not an error, a value that does not parse is.
enum class AttributeStatus { Absent, Ok, Malformed };

// Kinds of child nodes that a DOM element can hold.
enum class NodeKind { Element, Text, CData, Comment, ProcessingInstruction, Other };

class IDOMParser;

// One element of the document being read or written: reads see the file being loaded, writes build the one
// being saved. Objects are owned by their parser and live as long as it does.
class IDOMElement {
public:
    virtual std::string_view GetTagName() const = 0;

    virtual bool HasAttribute(std::string_view name) const = 0;
    // Typed reads: the status says whether the attribute was there and parsed; `value` is only written on Ok.
    // Numbers must use the whole text and be finite; a malformed value is reported to the parser as a
    // warning.
    virtual AttributeStatus ReadAttribute(std::string_view name, std::string& value) const = 0;
    virtual AttributeStatus ReadAttribute(std::string_view name, bool& value) const = 0;
    virtual AttributeStatus ReadAttribute(std::string_view name, int32_t& value) const = 0;
    virtual AttributeStatus ReadAttribute(std::string_view name, uint32_t& value) const = 0;
    virtual AttributeStatus ReadAttribute(std::string_view name, int64_t& value) const = 0;
    virtual AttributeStatus ReadAttribute(std::string_view name, uint64_t& value) const = 0;
    virtual AttributeStatus ReadAttribute(std::string_view name, double& value) const = 0;
    // True when the attribute was present and valid.
    template <class T>
    bool GetAttribute(std::string_view name, T& value) const {
        return ReadAttribute(name, value) == AttributeStatus::Ok;
    }
    // Visits the attributes in document order; names and values are the raw file text (UTF-8).
    virtual void VisitAttributes(void* context, void (*visit)(void* context, std::string_view name,
                                                              std::string_view value)) const = 0;

    // Writes are for the elements of a save, which BuildXMLElement makes through the parser it is given; an
    // element being loaded is only read. They replace an existing attribute of the same name or append a new
    // one. Numbers are written in the shortest form that reads back identical, whatever the locale.
    void SetAttribute(std::string_view name, std::string_view value);
    void SetAttribute(std::string_view name, const char* value) {
        SetAttribute(name, std::string_view(value));
    }
    void SetAttribute(std::string_view name, const std::string& value) {
        SetAttribute(name, std::string_view(value));
    }
    void SetAttribute(std::string_view name, bool value);
    void SetAttribute(std::string_view name, int32_t value);
    void SetAttribute(std::string_view name, uint32_t value);
    void SetAttribute(std::string_view name, int64_t value);
    void SetAttribute(std::string_view name, uint64_t value);
    void SetAttribute(std::string_view name, double value);
    // Sets an attribute from text that is already in file encoding (no conversion); used for preserved data.
    void SetRawAttribute(std::string_view name, std::string_view value);

    // Element children in document order; null at the end.
    virtual IDOMElement* GetFirstChild() const = 0;
    virtual IDOMElement* GetNextSibling() const = 0;
    virtual size_t GetChildCount() const = 0;
    // Child nodes of every kind in document order (elements, text, comments, processing instructions).
    virtual IDOMElement* GetFirstNode() const = 0;
    virtual IDOMElement* GetNextNode() const = 0;
    virtual NodeKind GetNodeKind() const = 0;
    // Text of a text, comment or processing-instruction node; an element's own text content.
    virtual std::string_view GetValue() const = 0;

    // Moves `child` (created by the same parser) to the end of this element's children.
    void AppendChild(IDOMElement* child);
    // Appends a node of another kind (comment, text, processing instruction with name and value).
    void AppendNode(NodeKind kind, std::string_view name, std::string_view value);

    // Position in the source text, 1-based; 0 when unknown (built elements).
    virtual size_t GetLine() const = 0;
    virtual size_t GetColumn() const = 0;

protected:
    ~IDOMElement() = default;
};

// The document being read or written.
class IDOMParser {
public:
    // A new element of a save, not yet attached anywhere (see IDOMElement's writes).
    IDOMElement* CreateElement(std::string_view tag);
    // Packed version (MakeVersionID) of the document being read; the current version while writing.
    virtual uint32_t GetVersion() const = 0;
    // Records a problem found while reading `where` (may be null); loading fails when any was recorded.
    virtual void ReportProblem(const IDOMElement* where, std::string message) = 0;
    // Records something the reader had to overlook (a value that does not parse and was left at its default);
    // loading goes on.
    virtual void ReportWarning(const IDOMElement* where, std::string message) = 0;

protected:
    ~IDOMParser() = default;
};

}  // namespace Ruvex
