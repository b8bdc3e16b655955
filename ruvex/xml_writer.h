#pragma once

// The DOM that documents are saved through, the only one a save builds. Nodes, attributes and their text live
// in one arena owned by the document (no heap block per node or per value); attribute names from the schemas
// and the packed content of unknown elements are referred to, not copied; and the serialiser writes the text
// straight into a string with a two-space indent. The text is well-formed XML whatever the tree holds: what
// cannot be written as it stands is replaced or left out, with a warning (see Serialize).

#include <orvia/ruvex/element.h>
#include <orvia/ruvex/factory.h>

#include "typed_attributes.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Ruvex::detail {

// Bump allocation in blocks; everything is released with the arena, nothing is destroyed one by one.
class Arena {
public:
    Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    void* Allocate(size_t size, size_t alignment) {
        auto at = (reinterpret_cast<uintptr_t>(m_next) + alignment - 1) & ~(uintptr_t(alignment) - 1);
        if (m_next && at + size <= reinterpret_cast<uintptr_t>(m_end)) {
            m_next = reinterpret_cast<char*>(at + size);
            return reinterpret_cast<void*>(at);
        }
        return Grow(size, alignment);
    }
    std::string_view Copy(std::string_view text) {
        if (text.empty()) return {};
        auto* to = static_cast<char*>(Allocate(text.size(), 1));
        std::char_traits<char>::copy(to, text.data(), text.size());
        return {to, text.size()};
    }

private:
    void* Grow(size_t size, size_t alignment);

    std::vector<std::unique_ptr<char[]>> m_blocks;
    char* m_next = nullptr;
    char* m_end = nullptr;
    size_t m_blockSize = 64 * 1024;
};

class WriteDocument;

// Nesting level of the element being built on this thread (the "Ruvex" root is level 1). It bounds the
// recursion of saving a tree made in memory, which no bound on reading protects.
size_t& BuildDepth();

class WriteNode final : public TypedAttributes<WriteNode> {
public:
    enum class Kind : uint8_t {
        Document,
        Declaration,
        Element,
        Text,
        CData,
        Comment,
        ProcessingInstruction,
        Doctype
    };

    struct Attribute {
        std::string_view name;
        std::string_view value;
        Attribute* next;
    };

    WriteNode(WriteDocument* document, Kind kind, std::string_view name)
        : m_document(document), m_name(name), m_kind(kind) {}

    std::string_view GetTagName() const override { return m_name; }
    bool HasAttribute(std::string_view name) const override { return Find(name) != nullptr; }
    void VisitAttributes(void* context,
                         void (*visit)(void*, std::string_view, std::string_view)) const override;

    // The implementations of IDOMElement's writes.
    void SetRawAttribute(std::string_view name, std::string_view value);

    IDOMElement* GetFirstChild() const override;
    IDOMElement* GetNextSibling() const override;
    size_t GetChildCount() const override;
    IDOMElement* GetFirstNode() const override { return m_firstChild; }
    IDOMElement* GetNextNode() const override { return m_next; }
    NodeKind GetNodeKind() const override;
    std::string_view GetValue() const override;

    void AppendChild(IDOMElement* child);
    void AppendNode(NodeKind kind, std::string_view name, std::string_view value);

    size_t GetLine() const override { return 0; }
    size_t GetColumn() const override { return 0; }

    // For the layer itself. Appends without looking for an attribute of the same name; both texts are copied.
    void AppendAttribute(std::string_view name, std::string_view value);
    // The same for a name that outlives the document (a schema's), which is not copied.
    void AppendNewAttribute(std::string_view staticName, std::string_view value);
    // Links `child` (a node of this document, not in any tree) before `before` (a child of this node), or at
    // the end when `before` is null.
    void Insert(WriteNode* child, WriteNode* before);
    void SetValue(std::string_view value);
    // The same as SetRawAttribute and SetValue for texts that outlive the document, which are not copied.
    void SetRawAttributeView(std::string_view name, std::string_view value);
    void SetValueView(std::string_view value);

    Kind kind() const { return m_kind; }
    std::string_view name() const { return m_name; }
    std::string_view value() const { return m_value; }
    const Attribute* firstAttribute() const { return m_firstAttribute; }
    WriteNode* parent() const { return m_parent; }
    WriteNode* firstChild() const { return m_firstChild; }
    WriteNode* next() const { return m_next; }
    WriteDocument* document() const { return m_document; }

    // For TypedAttributes: values here were formatted by the model, so a malformed one is the caller's to
    // judge.
    static constexpr bool kWarnsOnMalformed = false;
    bool RawValue(std::string_view name, std::string_view& text) const;

private:
    Attribute* Find(std::string_view name) const;
    void AppendView(std::string_view name, std::string_view value);
    void Unlink();

    WriteDocument* m_document;
    std::string_view m_name;
    std::string_view m_value;
    Attribute* m_firstAttribute = nullptr;
    Attribute* m_lastAttribute = nullptr;
    WriteNode* m_parent = nullptr;
    WriteNode* m_firstChild = nullptr;
    WriteNode* m_lastChild = nullptr;
    WriteNode* m_previous = nullptr;
    WriteNode* m_next = nullptr;
    Kind m_kind;
};

class WriteDocument final : public IDOMParser {
public:
    explicit WriteDocument(std::string fileName);

    IDOMElement* CreateElement(std::string_view tag) { return NewNode(WriteNode::Kind::Element, tag); }
    uint32_t GetVersion() const override { return kCurrentVersion; }
    void ReportProblem(const IDOMElement* where, std::string message) override;
    void ReportWarning(const IDOMElement* where, std::string message) override;
    bool HasErrors() const;

    // A node of `kind`, in no tree yet; `name` is copied.
    WriteNode* NewNode(WriteNode::Kind kind, std::string_view name) {
        return NewNodeView(kind, m_arena.Copy(name));
    }
    // The same with a name that outlives the document, which is not copied.
    WriteNode* NewNodeView(WriteNode::Kind kind, std::string_view name);
    // A node for a preserved one (text, comment, processing instruction or doctype).
    WriteNode* NewNode(NodeKind kind, std::string_view name, std::string_view value);
    WriteNode& root() { return m_root; }
    Arena& arena() { return m_arena; }
    // Bytes that the text will take, about: the string is reserved once instead of growing by copies.
    void AddToTextSize(size_t bytes) { m_textSize += bytes; }

    // Preserved content is put back once the whole tree is built, so that the children a runtime class
    // appends after the generic part count too. `depth` is the nesting level of `node`.
    void Defer(WriteNode* node, const PreservedContent* content, size_t depth) {
        m_deferred.push_back(Deferred{node, content, depth});
    }
    void ApplyDeferred();

    // The document text, well-formed XML 1.0 whatever the tree holds: malformed UTF-8 and characters XML does
    // not allow are written as U+FFFD, and attributes named twice (the last value stands) or not named as XML
    // names, and instructions without a valid target, are left out, each kind with one warning. `latin1`
    // writes ISO-8859-1, where characters beyond it are written as character references in attribute values
    // and text, and as '?' elsewhere (with a warning). False, with `text` empty and an error, when an element
    // is nested deeper than `maxDepth` levels (the root element being level 1) or its name is no XML name.
    bool Serialize(std::string& text, bool latin1, size_t maxDepth = SIZE_MAX);

    const std::string& fileName() const { return m_fileName; }
    std::vector<Problem>& problems() { return m_problems; }

private:
    struct Deferred {
        WriteNode* node;
        const PreservedContent* content;
        size_t depth;
    };

    std::string m_fileName;
    Arena m_arena;
    size_t m_textSize = 0;
    WriteNode m_root;
    std::vector<Problem> m_problems;
    std::vector<Deferred> m_deferred;
};

// The parser of a save and the elements it made: always these, as saving builds no other DOM.
inline WriteDocument* Writer(IDOMParser* parser) {
    assert(!parser || dynamic_cast<WriteDocument*>(parser));
    return static_cast<WriteDocument*>(parser);
}
inline WriteNode* Written(IDOMElement* element) {
    assert(!element || dynamic_cast<WriteNode*>(element));
    return static_cast<WriteNode*>(element);
}

// Inserts preserved nodes among the element children of `node` at their anchors.
void MergePreservedNodes(WriteDocument& document, WriteNode* node, const std::vector<PreservedNode>& nodes);

}  // namespace Ruvex::detail
