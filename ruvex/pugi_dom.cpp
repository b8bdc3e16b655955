#include "pugi_dom.h"

#include <orvia/ruvex/schema.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

namespace Ruvex::detail {

namespace {

bool SameName(const pugi::char_t* a, std::string_view b) {
    size_t n = b.size();
    return std::strncmp(a, b.data(), n) == 0 && a[n] == '\0';
}

}  // namespace

// ---- PugiNode
// ---------------------------------------------------------------------------------------------------

pugi::xml_attribute PugiNode::FindAttribute(std::string_view name) const {
    for (pugi::xml_attribute a = m_node.first_attribute(); a; a = a.next_attribute())
        if (SameName(a.name(), name)) return a;
    return {};
}

bool PugiNode::HasAttribute(std::string_view name) const {
    return !FindAttribute(name).empty();
}

bool PugiNode::RawValue(std::string_view name, std::string_view& text) const {
    pugi::xml_attribute a = FindAttribute(name);
    if (!a) return false;
    text = a.value();
    return true;
}

void PugiNode::VisitAttributes(void* context,
                               void (*visit)(void*, std::string_view, std::string_view)) const {
    for (pugi::xml_attribute a = m_node.first_attribute(); a; a = a.next_attribute())
        visit(context, a.name(), a.value());
}

IDOMElement* PugiNode::GetFirstChild() const {
    for (pugi::xml_node n = m_node.first_child(); n; n = n.next_sibling())
        if (n.type() == pugi::node_element) return m_document->Wrap(n);
    return nullptr;
}
IDOMElement* PugiNode::GetNextSibling() const {
    for (pugi::xml_node n = m_node.next_sibling(); n; n = n.next_sibling())
        if (n.type() == pugi::node_element) return m_document->Wrap(n);
    return nullptr;
}
size_t PugiNode::GetChildCount() const {
    size_t count = 0;
    for (pugi::xml_node n = m_node.first_child(); n; n = n.next_sibling())
        count += n.type() == pugi::node_element;
    return count;
}
IDOMElement* PugiNode::GetFirstNode() const {
    pugi::xml_node n = m_node.first_child();
    return n ? m_document->Wrap(n) : nullptr;
}
IDOMElement* PugiNode::GetNextNode() const {
    pugi::xml_node n = m_node.next_sibling();
    return n ? m_document->Wrap(n) : nullptr;
}
NodeKind PugiNode::GetNodeKind() const {
    switch (m_node.type()) {
        case pugi::node_element:
            return NodeKind::Element;
        case pugi::node_pcdata:
            return NodeKind::Text;
        case pugi::node_cdata:
            return NodeKind::CData;
        case pugi::node_comment:
            return NodeKind::Comment;
        case pugi::node_pi:
            return NodeKind::ProcessingInstruction;
        default:
            return NodeKind::Other;
    }
}
std::string_view PugiNode::GetValue() const {
    if (m_node.type() == pugi::node_element) return m_node.child_value();
    return m_node.value();
}

size_t PugiNode::GetLine() const {
    return m_document->LineColumn(m_node.offset_debug()).first;
}
size_t PugiNode::GetColumn() const {
    return m_document->LineColumn(m_node.offset_debug()).second;
}

// ---- PugiDocument
// -----------------------------------------------------------------------------------------------

PugiDocument::PugiDocument(std::string fileName)
    : m_fileName(std::move(fileName)), m_version(kCurrentVersion) {}

PugiNode* PugiDocument::Wrap(pugi::xml_node node) {
    return &m_wrappers.emplace_back(node, this);
}

void PugiDocument::ReportProblem(const IDOMElement* where, std::string message) {
    Problem problem;
    problem.file = m_fileName;
    if (where) {
        problem.line = where->GetLine();
        problem.column = where->GetColumn();
    }
    problem.message = std::move(message);
    m_problems.push_back(std::move(problem));
}

void PugiDocument::ReportWarning(const IDOMElement* where, std::string message) {
    ReportProblem(where, std::move(message));
    m_problems.back().warning = true;
}

bool PugiDocument::HasErrors() const {
    for (const Problem& problem : m_problems)
        if (!problem.warning) return true;
    return false;
}

void PugiDocument::ReportAt(ptrdiff_t offset, std::string message) {
    auto [line, column] = LineColumn(offset);
    m_problems.push_back(Problem{m_fileName, line, column, std::move(message)});
}

bool ReadDocumentFile(const char* path, ParseBuffer& buffer) {
    std::FILE* in = std::fopen(path, "rb");
    if (!in) return false;
    size_t size = 0;
    if (std::fseek(in, 0, SEEK_END) == 0) {
        const long end = std::ftell(in);
        if (end > 0) size = static_cast<size_t>(end);
        std::rewind(in);
    }
    auto data = std::make_unique_for_overwrite<char[]>(size + 1);
    size_t filled = size ? std::fread(data.get(), 1, size, in) : 0;
    std::string more;
    char chunk[1 << 16];
    for (size_t n; (n = std::fread(chunk, 1, sizeof chunk, in)) > 0;)
        more.append(chunk, n);
    const bool ok = !std::ferror(in);
    std::fclose(in);
    if (!ok) return false;
    if (!more.empty()) {
        auto grown = std::make_unique_for_overwrite<char[]>(filled + more.size() + 1);
        std::memcpy(grown.get(), data.get(), filled);
        std::memcpy(grown.get() + filled, more.data(), more.size());
        data = std::move(grown);
        filled += more.size();
    }
    data[filled] = '\0';
    buffer = ParseBuffer{std::move(data), filled};
    return true;
}

bool PugiDocument::Parse(std::string text) {
    ParseBuffer buffer{std::make_unique_for_overwrite<char[]>(text.size() + 1), text.size()};
    std::memcpy(buffer.data.get(), text.c_str(), text.size() + 1);
    return Parse(std::move(buffer), TextOrigin{});
}

bool PugiDocument::Parse(ParseBuffer buffer, TextOrigin origin) {
    const bool readable = m_input.Prepare(std::move(buffer), origin);
    for (const TextProblem& problem : m_input.problems()) {
        auto [line, column] = m_input.PlaceOfDecoded(problem.offset);
        m_problems.push_back(Problem{m_fileName, line, column, problem.message, problem.warning});
    }
    if (!readable) return false;
    pugi::xml_parse_result result = m_doc.load_buffer_inplace(m_input.parseText(), m_input.parseSize(),
                                                              pugi::parse_full, pugi::encoding_utf8);
    if (!result) {
        ReportAt(result.offset, std::string("the document is not well-formed XML: ") + result.description());
        return false;
    }
    return true;
}

std::pair<size_t, size_t> PugiDocument::LineColumn(ptrdiff_t offset) const {
    if (offset < 0) return {0, 0};
    return m_input.PlaceOfParsed(static_cast<size_t>(offset));
}

namespace {

// The common case, no name given twice, answered with one call into pugixml per attribute and a first-letter
// test before any string compare; only a node that fails it is walked again to drop the repeats.
bool HasRepeatedName(pugi::xml_attribute first) {
    constexpr size_t kMostCompared = 32;
    const char* names[kMostCompared];
    size_t count = 0;
    for (pugi::xml_attribute a = first; a; a = a.next_attribute()) {
        if (count == kMostCompared) return true;
        const char* name = a.name();
        for (size_t i = 0; i < count; ++i)
            if (names[i][0] == name[0] && std::strcmp(names[i], name) == 0) return true;
        names[count++] = name;
    }
    return false;
}

}  // namespace

pugi::xml_node PugiDocument::CheckElements(size_t maxDepth) {
    // No recursion: down to the first child, else on to the next sibling of the nearest ancestor that has
    // one. `depth` is the level of `node`, the document's children being level 1.
    pugi::xml_node node = m_doc.first_child();
    size_t depth = 1;
    while (node) {
        if (depth > maxDepth && node.type() == pugi::node_element) return node;
        pugi::xml_attribute first = node.first_attribute();
        if (first && first.next_attribute() && HasRepeatedName(first)) {
            for (pugi::xml_attribute a = first.next_attribute(); a;) {
                pugi::xml_attribute next = a.next_attribute();
                for (pugi::xml_attribute b = first; b != a; b = b.next_attribute())
                    if (std::strcmp(a.name(), b.name()) == 0) {
                        PugiNode where(node, this);
                        ReportWarning(&where, "attribute \"" + std::string(a.name()) + "\" of <" +
                                                  node.name() + "> is given twice; the last value is kept");
                        b.set_value(a.value());
                        node.remove_attribute(a);
                        break;
                    }
                a = next;
            }
        }
        if (pugi::xml_node child = node.first_child()) {
            node = child;
            ++depth;
            continue;
        }
        while (node && !node.next_sibling()) {
            node = node.parent();
            --depth;
        }
        if (node) node = node.next_sibling();
    }
    return {};
}

void ForEachNode(IDOMElement* element, void* context, void (*visit)(void*, IDOMElement*)) {
    PugiNode* self = Loaded(element);
    for (pugi::xml_node n = self->node().first_child(); n; n = n.next_sibling()) {
        PugiNode child(n, self->document());
        visit(context, &child);
    }
}

}  // namespace Ruvex::detail
