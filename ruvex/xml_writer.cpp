#include "xml_writer.h"

#include <orvia/ruvex/schema.h>

#include "unicode.h"

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

    // What could not be written as it stood, for the warnings.
    struct Losses {
        size_t replaced = 0;       // malformed UTF-8 and characters XML does not allow, written as U+FFFD
        size_t questionMarks = 0;  // characters beyond Latin-1 where no reference can stand
        size_t attributes = 0;     // duplicate attributes and attributes without a valid name, dropped
        size_t instructions = 0;   // processing instructions without a valid target, dropped
    } losses;

private:
    static constexpr size_t kSize = 64 * 1024;
    std::string& m_text;
    bool m_latin1;
    size_t m_used = 0;
    char m_buffer[kSize];
};

// What pugixml escapes: in attribute values '&', '<', '"' and the tab and line breaks; in text '&', '<', '>'.
// Those are written as two-digit references. Other control characters cannot be written at all (XML 1.0 has
// no reference for them either); bytes from 0x80 on start sequences that are checked.
constexpr bool EscapedInAttribute(unsigned char c) {
    return c < 32 || c >= 0x80 || c == '&' || c == '<' || c == '"';
}
constexpr bool EscapedInText(unsigned char c) {
    return c < 32 || c >= 0x80 || c == '&' || c == '<' || c == '>';
}

constexpr std::string_view kReplacementUtf8 = "\xEF\xBF\xBD";

// Writes the character reference for `code`.
void PutReference(Output& out, uint32_t code) {
    char reference[16];
    const int size = std::snprintf(reference, sizeof reference, "&#%u;", code);
    out.Put(std::string_view(reference, static_cast<size_t>(size)));
}

// The character starting at text[i] (a byte from 0x80 on): the bytes written for it and their count in the
// text. Malformed sequences and characters XML does not allow become U+FFFD.
size_t PutMultibyte(Output& out, std::string_view text, size_t i) {
    size_t length = 1;
    const uint32_t code =
        DecodeUtf8(reinterpret_cast<const unsigned char*>(text.data()) + i, text.size() - i, length);
    if (code == kInvalidSequence || !IsXmlCharacter(code)) {
        ++out.losses.replaced;
        if (out.latin1())
            PutReference(out, kReplacementCharacter);
        else
            out.Put(kReplacementUtf8);
        return length;
    }
    // Latin-1 cannot hold it; a character reference keeps it.
    if (out.latin1() && code > 0xFF)
        PutReference(out, code);
    else
        out.Put(text.substr(i, length));
    return length;
}

template <bool (*Escaped)(unsigned char)>
void PutEscaped(Output& out, std::string_view text) {
    size_t start = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (!Escaped(c)) continue;
        out.Put(text.substr(start, i - start));
        if (c >= 0x80) {
            i += PutMultibyte(out, text, i) - 1;
            start = i + 1;
            continue;
        }
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
            case '\t':
            case '\n':
            case '\r': {
                if (Escaped == EscapedInText) {
                    out.Put(static_cast<char>(c));
                    break;
                }
                const char reference[] = {'&', '#', static_cast<char>('0' + c / 10),
                                          static_cast<char>('0' + c % 10), ';'};
                out.Put(std::string_view(reference, sizeof reference));
                break;
            }
            default:
                ++out.losses.replaced;
                if (out.latin1())
                    PutReference(out, kReplacementCharacter);
                else
                    out.Put(kReplacementUtf8);
        }
    }
    out.Put(text.substr(start));
}

// `text` where no markup can stand (comments, CDATA sections, instructions, the doctype): malformed UTF-8 and
// characters XML does not allow become U+FFFD, and for a Latin-1 text what it cannot hold becomes '?'. Most
// texts need nothing and are returned as they are.
std::string_view Checked(Output& out, std::string_view text, std::string& scratch) {
    size_t i = 0;
    for (; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c < 0x20 ? !(c == '\t' || c == '\n' || c == '\r') : c >= 0x80) break;
    }
    if (i == text.size()) return text;
    scratch.assign(text.substr(0, i));
    while (i < text.size()) {
        size_t length = 1;
        uint32_t code =
            DecodeUtf8(reinterpret_cast<const unsigned char*>(text.data()) + i, text.size() - i, length);
        if (code == kInvalidSequence || !IsXmlCharacter(code)) {
            ++out.losses.replaced;
            code = kReplacementCharacter;
        }
        if (out.latin1() && code > 0xFF) {
            ++out.losses.questionMarks;
            code = '?';
        }
        AppendUtf8(code, scratch);
        i += length;
    }
    return scratch;
}

// Whether `name` can name an element, attribute or instruction: a letter, '_', ':' or a character from
// U+0080 on first (up to U+00FF in a Latin-1 text), then also digits, '-' and '.'.
bool IsXmlName(std::string_view name, bool latin1) {
    if (name.empty()) return false;
    for (size_t i = 0; i < name.size();) {
        const auto c = static_cast<unsigned char>(name[i]);
        if (c >= 0x80) {
            size_t length = 1;
            const uint32_t code =
                DecodeUtf8(reinterpret_cast<const unsigned char*>(name.data()) + i, name.size() - i, length);
            if (code == kInvalidSequence || !IsXmlCharacter(code) || code == 0xD7 || code == 0xF7 ||
                (latin1 && code > 0xFF))
                return false;
            i += length;
            continue;
        }
        const bool start = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
        const bool later = (c >= '0' && c <= '9') || c == '-' || c == '.';
        if (!start && !(later && i > 0)) return false;
        ++i;
    }
    return true;
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
        // A name written twice would make the text unreadable: the last value stands, in the first place.
        bool repeated = false;
        for (const WriteNode::Attribute* b = node.firstAttribute(); b != a && !repeated; b = b->next)
            repeated = b->name == a->name;
        if (repeated || !IsXmlName(a->name, out.latin1())) {
            ++out.losses.attributes;
            continue;
        }
        std::string_view value = a->value;
        for (const WriteNode::Attribute* b = a->next; b; b = b->next)
            if (b->name == a->name) value = b->value;
        out.Put(' ');
        out.Put(a->name);
        out.Put("=\"");
        PutEscaped<EscapedInAttribute>(out, value);
        out.Put('"');
    }
}

// Whether an instruction named `target` can be written: "xml" in any case is the declaration's.
bool IsInstructionTarget(std::string_view target, bool latin1) {
    return IsXmlName(target, latin1) && !(target.size() == 3 && (target[0] | 0x20) == 'x' &&
                                          (target[1] | 0x20) == 'm' && (target[2] | 0x20) == 'l');
}

// Nodes other than elements and the document.
void PutSimple(Output& out, const WriteNode& node) {
    std::string scratch;
    switch (node.kind()) {
        case WriteNode::Kind::Text:
            PutEscaped<EscapedInText>(out, node.value());
            break;
        case WriteNode::Kind::CData:
            PutCData(out, Checked(out, node.value(), scratch));
            break;
        case WriteNode::Kind::Comment:
            out.Put("<!--");
            PutComment(out, Checked(out, node.value(), scratch));
            out.Put("-->");
            break;
        case WriteNode::Kind::ProcessingInstruction:
            out.Put("<?");
            out.Put(node.name());
            if (!node.value().empty()) {
                out.Put(' ');
                PutInstruction(out, Checked(out, node.value(), scratch));
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
                out.Put(Checked(out, node.value(), scratch));
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

size_t& BuildDepth() {
    thread_local size_t depth = 0;
    return depth;
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

bool WriteDocument::Serialize(std::string& text, bool latin1, size_t maxDepth) {
    text.clear();
    text.reserve(m_textSize + m_textSize / 8);
    Output::Losses losses;
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
            } else if (kind == WriteNode::Kind::ProcessingInstruction &&
                       !IsInstructionTarget(node->name(), latin1)) {
                ++out.losses.instructions;
            } else {
                if (flags & kNewline) out.Put('\n');
                if (flags & kIndent) out.Indent(depth);
                if (kind == WriteNode::Kind::Element) {
                    if (depth >= maxDepth) {
                        out.Discard();
                        text.clear();
                        ReportProblem(nullptr, "elements are nested deeper than " + std::to_string(maxDepth) +
                                                   " levels");
                        return false;
                    }
                    if (!IsXmlName(node->name(), latin1)) {
                        out.Discard();
                        text.clear();
                        ReportProblem(nullptr, "an element is named \"" + std::string(node->name()) +
                                                   "\", which is no XML name: it cannot be written");
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
        losses = out.losses;
    }
    if (latin1) text = ToLatin1(text);
    if (losses.replaced)
        ReportWarning(nullptr,
                      std::to_string(losses.replaced) +
                          " malformed UTF-8 sequences or characters XML does not allow were written as "
                          "U+FFFD");
    if (losses.questionMarks)
        ReportWarning(nullptr,
                      std::to_string(losses.questionMarks) +
                          " characters beyond ISO-8859-1 in comments, CDATA sections or instructions "
                          "were written as '?'");
    if (losses.attributes)
        ReportWarning(nullptr,
                      std::to_string(losses.attributes) +
                          " attributes named twice on one element, or with no XML name, were left out");
    if (losses.instructions)
        ReportWarning(nullptr, std::to_string(losses.instructions) +
                                   " processing instructions with no valid target were left out");
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
    // Children named by the anchors, found before anything is inserted (what is inserted may bear their
    // names).
    std::vector<WriteNode*> anchors(nodes.size(), nullptr);
    {
        std::string_view tag;
        uint32_t count = 0;
        WriteNode* at = nullptr;
        for (size_t i = 0; i < nodes.size(); ++i) {
            const PreservedNode& p = nodes[i];
            if (p.after.empty()) continue;
            if (tag != p.after || count > p.afterCount) {
                tag = p.after;
                count = 0;
                at = nullptr;
            }
            for (WriteNode* n = at ? element(at->next()) : element(node->firstChild());
                 n && count < p.afterCount; n = element(n->next()))
                if (n->name() == p.after) {
                    ++count;
                    at = n;
                }
            if (count == p.afterCount) anchors[i] = at;
        }
    }
    const WriteNode* lastAnchor = nullptr;
    WriteNode* lastInserted = nullptr;
    for (size_t i = 0; i < nodes.size(); ++i) {
        const PreservedNode& p = nodes[i];
        WriteNode* before = nullptr;
        WriteNode* after = anchors[i];
        if (after) {
            // Right behind the child, or behind what was already put there for it.
            before = (after == lastAnchor && lastInserted) ? lastInserted->next() : after->next();
        } else if (ordered) {
            for (; cursor && index < p.anchor; ++index)
                cursor = element(cursor->next());
            before = cursor;
        } else if (p.anchor < elements.size()) {
            before = elements[p.anchor];
        }
        WriteNode* inserted = nullptr;
        if (p.kind == NodeKind::Element) {
            if (!p.element) continue;
            inserted = static_cast<WriteNode*>(p.element->BuildXMLElement(&document));
        } else {
            inserted = document.NewNode(p.kind == NodeKind::Other ? NodeKind::Text : p.kind, p.name, p.value);
        }
        if (!inserted) continue;
        node->Insert(inserted, before);
        if (after) {
            lastAnchor = after;
            lastInserted = inserted;
        }
    }
}

}  // namespace Ruvex::detail

namespace Ruvex {

// The writes of the DOM interface are the writer's: saves build no other DOM.

void IDOMElement::SetRawAttribute(std::string_view name, std::string_view value) {
    detail::Written(this)->SetRawAttribute(name, value);
}
void IDOMElement::SetAttribute(std::string_view name, std::string_view value) {
    FormatBuffer buffer;
    const std::string text(value);
    SetRawAttribute(name, detail::Codec<std::string>::Format(text, buffer));
}
void IDOMElement::SetAttribute(std::string_view name, bool value) {
    SetRawAttribute(name, value ? "true" : "false");
}
void IDOMElement::SetAttribute(std::string_view name, int32_t value) {
    FormatBuffer buffer;
    SetRawAttribute(name, detail::FormatInteger(value, buffer));
}
void IDOMElement::SetAttribute(std::string_view name, uint32_t value) {
    FormatBuffer buffer;
    SetRawAttribute(name, detail::FormatInteger(value, buffer));
}
void IDOMElement::SetAttribute(std::string_view name, int64_t value) {
    FormatBuffer buffer;
    SetRawAttribute(name, detail::FormatInteger(value, buffer));
}
void IDOMElement::SetAttribute(std::string_view name, uint64_t value) {
    FormatBuffer buffer;
    SetRawAttribute(name, detail::FormatInteger(value, buffer));
}
void IDOMElement::SetAttribute(std::string_view name, double value) {
    if (!std::isfinite(value))
        detail::Written(this)->document()->ReportProblem(this, "attribute \"" + std::string(name) + "\" of " +
                                                                   detail::Describe(this) +
                                                                   " is not a finite number");
    FormatBuffer buffer;
    SetRawAttribute(name, detail::FormatDouble(value, buffer));
}
void IDOMElement::AppendChild(IDOMElement* child) {
    detail::Written(this)->AppendChild(child);
}
void IDOMElement::AppendNode(NodeKind kind, std::string_view name, std::string_view value) {
    detail::Written(this)->AppendNode(kind, name, value);
}
IDOMElement* IDOMParser::CreateElement(std::string_view tag) {
    return detail::Writer(this)->CreateElement(tag);
}

}  // namespace Ruvex
