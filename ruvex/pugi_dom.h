#pragma once

// The DOM over pugixml, which loading reads. It is only read: saves build xml_writer.h's DOM.

#include <orvia/ruvex/element.h>
#include <orvia/ruvex/factory.h>

#include <pugixml.hpp>

#include "input_text.h"
#include "typed_attributes.h"

#include <cassert>
#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Ruvex::detail {

class PugiDocument;

// The whole file, read straight into a buffer (not filled with zeros first); false when it cannot be read. A
// file that grows meanwhile is read to its end all the same.
bool ReadDocumentFile(const char* path, ParseBuffer& buffer);

class PugiNode final : public TypedAttributes<PugiNode> {
public:
    PugiNode(pugi::xml_node node, PugiDocument* document) : m_node(node), m_document(document) {}

    std::string_view GetTagName() const override { return m_node.name(); }
    bool HasAttribute(std::string_view name) const override;
    void VisitAttributes(void* context,
                         void (*visit)(void*, std::string_view, std::string_view)) const override;

    IDOMElement* GetFirstChild() const override;
    IDOMElement* GetNextSibling() const override;
    size_t GetChildCount() const override;
    IDOMElement* GetFirstNode() const override;
    IDOMElement* GetNextNode() const override;
    NodeKind GetNodeKind() const override;
    std::string_view GetValue() const override;

    size_t GetLine() const override;
    size_t GetColumn() const override;

    // For TypedAttributes: a malformed value read from a file is reported.
    static constexpr bool kWarnsOnMalformed = true;
    bool RawValue(std::string_view name, std::string_view& text) const;

    pugi::xml_node node() const { return m_node; }
    PugiDocument* document() const { return m_document; }

private:
    pugi::xml_attribute FindAttribute(std::string_view name) const;

    pugi::xml_node m_node;
    PugiDocument* m_document;
};

class PugiDocument final : public IDOMParser {
public:
    explicit PugiDocument(std::string fileName);

    uint32_t GetVersion() const override { return m_version; }
    void ReportProblem(const IDOMElement* where, std::string message) override;
    void ReportWarning(const IDOMElement* where, std::string message) override;
    bool HasErrors() const;

    // Reading. `text` is kept (pugixml parses it in place). False when it cannot be read or is not
    // well-formed. Lines are counted first.
    bool Parse(std::string text);
    // The same for the bytes of a file that came from `origin`, where lines are counted if a problem needs
    // them.
    bool Parse(ParseBuffer buffer, TextOrigin origin);
    void SetVersion(uint32_t version) { m_version = version; }
    // One walk over the document before any object exists. An attribute given twice on one element makes no
    // well-formed text: the later ones go, with a warning. Returns the first element, in document order,
    // nested deeper than `maxDepth` levels (the document's children being level 1), where the walk stops;
    // empty when there is none.
    pugi::xml_node CheckElements(size_t maxDepth);
    PugiNode* Wrap(pugi::xml_node node);
    std::pair<size_t, size_t> LineColumn(ptrdiff_t offset) const;
    void ReportAt(ptrdiff_t offset, std::string message);

    pugi::xml_document& doc() { return m_doc; }
    const std::string& fileName() const { return m_fileName; }
    std::vector<Problem>& problems() { return m_problems; }
    const InputText& input() const { return m_input; }

private:
    std::string m_fileName;
    InputText m_input;
    pugi::xml_document m_doc;
    uint32_t m_version;
    std::deque<PugiNode> m_wrappers;
    std::vector<Problem> m_problems;
};

// An element handed to a load: always one of ours, as loading reads no other DOM.
inline PugiNode* Loaded(IDOMElement* element) {
    assert(dynamic_cast<PugiNode*>(element));
    return static_cast<PugiNode*>(element);
}

// Walks the child nodes of `element` without allocating a wrapper per node.
void ForEachNode(IDOMElement* element, void* context, void (*visit)(void* context, IDOMElement* node));

}  // namespace Ruvex::detail
