#include "xml_writer.h"

#include <orvia/ruvex/schema.h>

#include "pugi_dom.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace Ruvex::detail {

namespace {

// Output in 64 KiB pieces: appending every few bytes to the string would check its capacity each time.
class Output {
public:
    Output(std::string& text, bool latin1) : m_text(text), m_latin1(latin1) {}
    ~Output() { Flush(); }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void Put(char c) {
        if (m_used == kSize) Flush();
        m_buffer[m_used++] = c;
    }
    void Put(std::string_view text) {
        if (text.empty()) return;  // an empty view may hold no pointer, which memcpy must not see
        if (text.size() > kSize - m_used) {
            Flush();
            if (text.size() > kSize) {
                m_text.append(text.data(), text.size());
                return;
            }
        }
        std::memcpy(m_buffer + m_used, text.data(), text.size());
        m_used += text.size();
    }
    void Indent(unsigned depth) {
        for (unsigned i = 0; i < depth; ++i)
            Put("  ");
    }
    void Flush() {
        m_text.append(m_buffer, m_used);
        m_used = 0;
    }
    void Discard() { m_used = 0; }
    // Whether the text becomes Latin-1, where escapable characters above U+00FF are written as references.
    bool latin1() const { return m_latin1; }

private:
    static constexpr size_t kSize = 64 * 1024;
    std::string& m_text;
    bool m_latin1;
    size_t m_used = 0;
    char m_buffer[kSize];
};

// What pugixml escapes: in attribute values '&', '<', '"' and every control character; in text '&', '<', '>'
// and the control characters other than tab, line feed and carriage return. Control characters are written
// as two-digit references.
constexpr bool EscapedInAttribute(unsigned char c) {
    return c < 32 || c == '&' || c == '<' || c == '"';
}
constexpr bool EscapedInText(unsigned char c) {
    return (c < 32 && c != '\t' && c != '\n' && c != '\r') || c == '&' || c == '<' || c == '>';
}

// The code point of the well-formed UTF-8 sequence of 2 to 4 bytes at text[i] and its length, or a length of
// 0 when there is none.
unsigned DecodeMultibyte(std::string_view text, size_t i, size_t& length) {
    const auto byte = [&](size_t k) { return static_cast<unsigned char>(text[i + k]); };
    const unsigned char lead = byte(0);
    length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC0 || lead >= 0xF8 || i + length > text.size()) return length = 0;
    unsigned code = lead & (0x7Fu >> length);
    for (size_t k = 1; k < length; ++k) {
        if ((byte(k) & 0xC0) != 0x80) return length = 0;
        code = (code << 6) | (byte(k) & 0x3Fu);
    }
    return code;
}

// Leads of sequences above U+00FF.
constexpr bool BeyondLatin1(unsigned char c) {
    return c >= 0xC4;
}

template <bool (*Escaped)(unsigned char)>
void PutEscaped(Output& out, std::string_view text) {
    size_t start = 0;
    const bool latin1 = out.latin1();  // a local: the output's writes could alias the member
    for (size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (latin1 && BeyondLatin1(c)) {
            // Latin-1 cannot hold it; a character reference keeps it.
            size_t length = 0;
            const unsigned code = DecodeMultibyte(text, i, length);
            if (length == 0) continue;  // malformed: dropped with the conversion
            out.Put(text.substr(start, i - start));
            char reference[16];
            const int size = std::snprintf(reference, sizeof reference, "&#%u;", code);
            out.Put(std::string_view(reference, static_cast<size_t>(size)));
            i += length - 1;
            start = i + 1;
            continue;
        }
        if (!Escaped(c)) continue;
        out.Put(text.substr(start, i - start));
        start = i + 1;
        switch (c) {
            case '&':
                out.Put("&amp;");
                break;
            case '<':
                out.Put("&lt;");
                break;
            case '>':
                out.Put("&gt;");
                break;
            case '"':
                out.Put("&quot;");
                break;
            default: {
                const char reference[] = {'&', '#', static_cast<char>('0' + c / 10),
                                          static_cast<char>('0' + c % 10), ';'};
                out.Put(std::string_view(reference, sizeof reference));
            }
        }
    }
    out.Put(text.substr(start));
}

// Writes `text` with every occurrence of `stop` broken by `breaker`: "--" and a final '-' in comments, "?>"
// in processing instructions.
void PutComment(Output& out, std::string_view text) {
    size_t start = 0;
    for (size_t i = 0; i < text.size(); ++i)
        if (text[i] == '-' && (i + 1 == text.size() || text[i + 1] == '-')) {
            out.Put(text.substr(start, i - start));
            out.Put("- ");
            start = i + 1;
        }
    out.Put(text.substr(start));
}

void PutInstruction(Output& out, std::string_view text) {
    size_t start = 0;
    for (size_t i = 0; i + 1 < text.size(); ++i)
        if (text[i] == '?' && text[i + 1] == '>') {
            out.Put(text.substr(start, i - start));
            out.Put("? ");
            start = i + 1;
        }
    out.Put(text.substr(start));
}

// "]]>" cannot sit inside a CDATA section: the section is closed after "]]" and reopened before ">".
void PutCData(Output& out, std::string_view text) {
    out.Put("<![CDATA[");
    size_t start = 0;
    for (size_t i = 0; i + 2 < text.size(); ++i)
        if (text[i] == ']' && text[i + 1] == ']' && text[i + 2] == '>') {
            out.Put(text.substr(start, i + 2 - start));
            out.Put("]]><![CDATA[");
            start = i + 2;
            ++i;
        }
    out.Put(text.substr(start));
    out.Put("]]>");
}

void PutAttributes(Output& out, const WriteNode& node) {
    for (const WriteNode::Attribute* a = node.firstAttribute(); a; a = a->next) {
        out.Put(' ');
        out.Put(a->name);
        out.Put("=\"");
        PutEscaped<EscapedInAttribute>(out, a->value);
        out.Put('"');
    }
}

// Nodes other than elements and the document.
void PutSimple(Output& out, const WriteNode& node) {
    switch (node.kind()) {
        case WriteNode::Kind::Text:
            PutEscaped<EscapedInText>(out, node.value());
            break;
        case WriteNode::Kind::CData:
            PutCData(out, node.value());
            break;
        case WriteNode::Kind::Comment:
            out.Put("<!--");
            PutComment(out, node.value());
            out.Put("-->");
            break;
        case WriteNode::Kind::ProcessingInstruction:
            out.Put("<?");
            out.Put(node.name());
            if (!node.value().empty()) {
                out.Put(' ');
                PutInstruction(out, node.value());
            }
            out.Put("?>");
            break;
        case WriteNode::Kind::Declaration:
            out.Put("<?");
            out.Put(node.name());
            PutAttributes(out, node);
            out.Put("?>");
            break;
        case WriteNode::Kind::Doctype:
            out.Put("<!DOCTYPE");
            if (!node.value().empty()) {
                out.Put(' ');
                out.Put(node.value());
            }
            out.Put('>');
            break;
        default:
            break;
    }
}

// The UTF-8 text as Latin-1, decoding as pugixml does.
std::string ToLatin1(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    const auto* data = reinterpret_cast<const unsigned char*>(text.data());
    size_t size = text.size();
    auto continuation = [](unsigned char c) { return (c & 0xC0) == 0x80; };
    while (size) {
        const unsigned char lead = data[0];
        if (lead < 0x80) {
            out.push_back(static_cast<char>(lead));
            data += 1;
            size -= 1;
        } else if (static_cast<unsigned>(lead - 0xC0) < 0x20 && size >= 2 && continuation(data[1])) {
            const unsigned code = ((lead & 0x1Fu) << 6) | (data[1] & 0x3Fu);
            out.push_back(code > 0xFF ? '?' : static_cast<char>(code));
            data += 2;
            size -= 2;
        } else if (static_cast<unsigned>(lead - 0xE0) < 0x10 && size >= 3 && continuation(data[1]) &&
                   continuation(data[2])) {
            out.push_back('?');
            data += 3;
            size -= 3;
        } else if (static_cast<unsigned>(lead - 0xF0) < 0x08 && size >= 4 && continuation(data[1]) &&
                   continuation(data[2]) && continuation(data[3])) {
            out.push_back('?');
            data += 4;
            size -= 4;
        } else {
            data += 1;
            size -= 1;
        }
    }
    return out;
}

}  // namespace

// ---- Arena
// ------------------------------------------------------------------------------------------------------

void* Arena::Grow(size_t size, size_t alignment) {
    // Blocks double up to 1 MiB; a request larger than a block gets one of its own.
    const size_t need = size + alignment;
    const size_t blockSize = std::max(need, m_blockSize);
    m_blockSize = std::min<size_t>(m_blockSize * 2, 1024 * 1024);
    m_blocks.emplace_back(new char[blockSize]);
    m_next = m_blocks.back().get();
    m_end = m_next + blockSize;
    return Allocate(size, alignment);
}

// ---- WriteNode
// --------------------------------------------------------------------------------------------------

WriteNode::Attribute* WriteNode::Find(std::string_view name) const {
    for (Attribute* a = m_firstAttribute; a; a = a->next)
        if (a->name == name) return a;
    return nullptr;
}

bool WriteNode::RawValue(std::string_view name, std::string_view& text) const {
    const Attribute* a = Find(name);
    if (!a) return false;
    text = a->value;
    return true;
}

void WriteNode::VisitAttributes(void* context,
                                void (*visit)(void*, std::string_view, std::string_view)) const {
    for (const Attribute* a = m_firstAttribute; a; a = a->next)
        visit(context, a->name, a->value);
}

void WriteNode::AppendView(std::string_view name, std::string_view value) {
    auto* a = static_cast<Attribute*>(m_document->arena().Allocate(sizeof(Attribute), alignof(Attribute)));
    *a = Attribute{name, value, nullptr};
    m_document->AddToTextSize(name.size() + value.size() + 4);
    if (m_lastAttribute)
        m_lastAttribute->next = a;
    else
        m_firstAttribute = a;
    m_lastAttribute = a;
}

void WriteNode::AppendNewAttribute(std::string_view staticName, std::string_view value) {
    AppendView(staticName, m_document->arena().Copy(value));
}

void WriteNode::AppendAttribute(std::string_view name, std::string_view value) {
    AppendNewAttribute(m_document->arena().Copy(name), value);
}

void WriteNode::SetRawAttribute(std::string_view name, std::string_view value) {
    if (Attribute* a = Find(name)) {
        a->value = m_document->arena().Copy(value);
        return;
    }
    AppendAttribute(name, value);
}

IDOMElement* WriteNode::GetFirstChild() const {
    for (WriteNode* n = m_firstChild; n; n = n->m_next)
        if (n->m_kind == Kind::Element) return n;
    return nullptr;
}
IDOMElement* WriteNode::GetNextSibling() const {
    for (WriteNode* n = m_next; n; n = n->m_next)
        if (n->m_kind == Kind::Element) return n;
    return nullptr;
}
size_t WriteNode::GetChildCount() const {
    size_t count = 0;
    for (WriteNode* n = m_firstChild; n; n = n->m_next)
        count += n->m_kind == Kind::Element;
    return count;
}

NodeKind WriteNode::GetNodeKind() const {
    switch (m_kind) {
        case Kind::Element:
            return NodeKind::Element;
        case Kind::Text:
            return NodeKind::Text;
        case Kind::CData:
            return NodeKind::CData;
        case Kind::Comment:
            return NodeKind::Comment;
        case Kind::ProcessingInstruction:
            return NodeKind::ProcessingInstruction;
        default:
            return NodeKind::Other;
    }
}

std::string_view WriteNode::GetValue() const {
    if (m_kind != Kind::Element) return m_value;
    for (WriteNode* n = m_firstChild; n; n = n->m_next)
        if (n->m_kind == Kind::Text || n->m_kind == Kind::CData) return n->m_value;
    return {};
}

void WriteNode::SetValue(std::string_view value) {
    SetValueView(m_document->arena().Copy(value));
}

void WriteNode::SetValueView(std::string_view value) {
    m_value = value;
    m_document->AddToTextSize(value.size());
}

void WriteNode::SetRawAttributeView(std::string_view name, std::string_view value) {
    if (Attribute* a = Find(name))
        a->value = value;
    else
        AppendView(name, value);
}

void WriteNode::Unlink() {
    if (!m_parent) return;
    (m_previous ? m_previous->m_next : m_parent->m_firstChild) = m_next;
    (m_next ? m_next->m_previous : m_parent->m_lastChild) = m_previous;
    m_parent = m_previous = m_next = nullptr;
}

void WriteNode::Insert(WriteNode* child, WriteNode* before) {
    child->Unlink();
    child->m_parent = this;
    child->m_next = before;
    child->m_previous = before ? before->m_previous : m_lastChild;
    (child->m_previous ? child->m_previous->m_next : m_firstChild) = child;
    (before ? before->m_previous : m_lastChild) = child;
}

void WriteNode::AppendChild(IDOMElement* child) {
    auto* node = static_cast<WriteNode*>(child);
    if (!node || node == this) return;
    // A node cannot go under itself or one of its descendants.
    for (const WriteNode* up = m_parent; up; up = up->m_parent)
        if (up == node) return;
    Insert(node, nullptr);
}

void WriteNode::AppendNode(NodeKind kind, std::string_view name, std::string_view value) {
    if (kind == NodeKind::Element) {
        Insert(m_document->NewNode(Kind::Element, name), nullptr);
        return;
    }
    Insert(m_document->NewNode(kind, name, value), nullptr);
}

// ---- WriteDocument
// ----------------------------------------------------------------------------------------------

WriteDocument::WriteDocument(std::string fileName)
    : m_fileName(std::move(fileName)), m_root(this, WriteNode::Kind::Document, {}) {}

WriteNode* WriteDocument::NewNodeView(WriteNode::Kind kind, std::string_view name) {
    // Start and end tag, line breaks, and the indent of a typical depth.
    constexpr size_t kMarkupPerNode = 24;
    m_textSize += 2 * name.size() + kMarkupPerNode;
    void* at = m_arena.Allocate(sizeof(WriteNode), alignof(WriteNode));
    return new (at) WriteNode(this, kind, name);
}

WriteNode* WriteDocument::NewNode(NodeKind kind, std::string_view name, std::string_view value) {
    WriteNode::Kind type = WriteNode::Kind::Text;
    switch (kind) {
        case NodeKind::CData:
            type = WriteNode::Kind::CData;
            break;
        case NodeKind::Comment:
            type = WriteNode::Kind::Comment;
            break;
        case NodeKind::ProcessingInstruction:
            type = WriteNode::Kind::ProcessingInstruction;
            break;
        case NodeKind::Other:
            type = WriteNode::Kind::Doctype;
            break;
        default:
            break;
    }
    WriteNode* node =
        NewNode(type, type == WriteNode::Kind::ProcessingInstruction ? name : std::string_view());
    node->SetValue(value);
    return node;
}

void WriteDocument::ReportProblem(const IDOMElement* where, std::string message) {
    (void)where;  // built elements have no place in a file
    m_problems.push_back(Problem{m_fileName, 0, 0, std::move(message)});
}

void WriteDocument::ReportWarning(const IDOMElement* where, std::string message) {
    ReportProblem(where, std::move(message));
    m_problems.back().warning = true;
}

bool WriteDocument::HasErrors() const {
    for (const Problem& problem : m_problems)
        if (!problem.warning) return true;
    return false;
}

void WriteDocument::ApplyDeferred() {
    // Building a preserved element may defer more: walk by index while the list grows.
    size_t& depth = BuildDepth();
    const size_t outer = depth;
    for (size_t i = 0; i < m_deferred.size(); ++i) {
        const Deferred deferred = m_deferred[i];
        depth = deferred.depth;
        MergePreservedNodes(*this, deferred.node, deferred.content->nodes);
    }
    depth = outer;
    m_deferred.clear();
}

bool WriteDocument::Serialize(std::string& text, bool latin1, size_t maxDepth) const {
    text.clear();
    text.reserve(m_textSize + m_textSize / 8);
    {
        Output out(text, latin1);
        const WriteNode* top = &m_root;
        const WriteNode* node = top;
        enum : unsigned { kNewline = 1, kIndent = 2 };
        unsigned flags = kIndent;
        unsigned depth = 0;
        do {
            const WriteNode::Kind kind = node->kind();
            if (kind == WriteNode::Kind::Text || kind == WriteNode::Kind::CData) {
                // Text is written as it stands: no line break or indent around it.
                PutSimple(out, *node);
                flags = 0;
            } else {
                if (flags & kNewline) out.Put('\n');
                if (flags & kIndent) out.Indent(depth);
                if (kind == WriteNode::Kind::Element) {
                    if (depth >= maxDepth) {
                        out.Discard();
                        text.clear();
                        return false;
                    }
                    flags = kNewline | kIndent;
                    out.Put('<');
                    out.Put(node->name());
                    PutAttributes(out, *node);
                    if (node->firstChild()) {
                        out.Put('>');
                        node = node->firstChild();
                        ++depth;
                        continue;
                    }
                    out.Put(" />");
                } else if (kind == WriteNode::Kind::Document) {
                    flags = kIndent;
                    if (node->firstChild()) {
                        node = node->firstChild();
                        continue;
                    }
                } else {
                    PutSimple(out, *node);
                    flags = kNewline | kIndent;
                }
            }
            // On to the next node, closing the elements left behind.
            while (node != top) {
                if (node->next()) {
                    node = node->next();
                    break;
                }
                node = node->parent();
                if (node->kind() == WriteNode::Kind::Element) {
                    --depth;
                    if (flags & kNewline) out.Put('\n');
                    if (flags & kIndent) out.Indent(depth);
                    out.Put("</");
                    out.Put(node->name());
                    out.Put('>');
                    flags = kNewline | kIndent;
                }
            }
        } while (node != top);
        if (flags & kNewline) out.Put('\n');
    }
    if (latin1) text = ToLatin1(text);
    return true;
}

void MergePreservedNodes(WriteDocument& document, WriteNode* node, const std::vector<PreservedNode>& nodes) {
    if (nodes.empty()) return;
    auto element = [](WriteNode* n) {
        while (n && n->kind() != WriteNode::Kind::Element)
            n = n->next();
        return n;
    };
    // Anchors count the element children there were before any insertion. Loading records them in order,
    // and then one walk finds every place (what is inserted goes before the walk's position); nodes put in
    // another order take their places from a list made first.
    const bool ordered =
        std::is_sorted(nodes.begin(), nodes.end(),
                       [](const PreservedNode& a, const PreservedNode& b) { return a.anchor < b.anchor; });
    std::vector<WriteNode*> elements;
    if (!ordered)
        for (WriteNode* n = element(node->firstChild()); n; n = element(n->next()))
            elements.push_back(n);
    WriteNode* cursor = element(node->firstChild());
    uint32_t index = 0;
    for (const PreservedNode& p : nodes) {
        WriteNode* before = nullptr;
        if (ordered) {
            for (; cursor && index < p.anchor; ++index)
                cursor = element(cursor->next());
            before = cursor;
        } else if (p.anchor < elements.size()) {
            before = elements[p.anchor];
        }
        if (p.kind == NodeKind::Element) {
            if (!p.element) continue;
            if (auto* built = static_cast<WriteNode*>(p.element->BuildXMLElement(&document)))
                node->Insert(built, before);
            continue;
        }
        node->Insert(document.NewNode(p.kind == NodeKind::Other ? NodeKind::Text : p.kind, p.name, p.value),
                     before);
    }
}

}  // namespace Ruvex::detail
