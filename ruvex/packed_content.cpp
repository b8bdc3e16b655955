#include "packed_content.h"

#include <cstdint>
#include <vector>

namespace Ruvex::detail {

namespace {

enum Record : char { kEnd = 0, kAttribute, kElement, kText, kCData, kComment, kInstruction };

void PutText(std::string& out, std::string_view text) {
    size_t n = text.size();
    while (n >= 0x80) {
        out.push_back(static_cast<char>(0x80 | (n & 0x7F)));
        n >>= 7;
    }
    out.push_back(static_cast<char>(n));
    out.append(text.data(), text.size());
}

void PutText(std::string& out, const char* text) {
    PutText(out, std::string_view(text));
}

// Reads the packed block front to back. The block is ours: it is well formed by construction.
class Reader {
public:
    explicit Reader(std::string_view packed) : m_at(packed.data()), m_end(packed.data() + packed.size()) {}

    bool AtEnd() const { return m_at == m_end; }
    const char* Position() const { return m_at; }
    Record Next() { return static_cast<Record>(*m_at++); }
    std::string_view Text() {
        size_t n = 0;
        for (unsigned shift = 0;; shift += 7) {
            const auto byte = static_cast<unsigned char>(*m_at++);
            n |= static_cast<size_t>(byte & 0x7F) << shift;
            if (byte < 0x80) break;
        }
        std::string_view text(m_at, n);
        m_at += n;
        return text;
    }
    // Skips the content of an element whose tag was just read, its kEnd included.
    void SkipElement() {
        for (int open = 1; open > 0;) {
            switch (Next()) {
                case kEnd:
                    --open;
                    break;
                case kElement:
                    Text();
                    ++open;
                    break;
                case kAttribute:
                case kInstruction:
                    Text();
                    Text();
                    break;
                default:
                    Text();
                    break;
            }
        }
    }

private:
    const char* m_at;
    const char* m_end;
};

NodeKind KindOf(Record record) {
    switch (record) {
        case kCData:
            return NodeKind::CData;
        case kComment:
            return NodeKind::Comment;
        case kInstruction:
            return NodeKind::ProcessingInstruction;
        default:
            return NodeKind::Text;
    }
}

}  // namespace

struct PackedAccess {
    static void Set(GenericElement& element, std::string_view packed) {
        element.m_packed = std::string(packed);
    }
};

void PackContent(pugi::xml_node node, std::string& out) {
    for (pugi::xml_attribute a = node.first_attribute(); a; a = a.next_attribute()) {
        out.push_back(kAttribute);
        PutText(out, a.name());
        PutText(out, a.value());
    }
    for (pugi::xml_node n = node.first_child(); n; n = n.next_sibling()) {
        switch (n.type()) {
            case pugi::node_element:
                // Loading refuses documents nested deeper than a few hundred levels: the recursion is
                // bounded.
                out.push_back(kElement);
                PutText(out, n.name());
                PackContent(n, out);
                out.push_back(kEnd);
                break;
            case pugi::node_pcdata:
                out.push_back(kText);
                PutText(out, n.value());
                break;
            case pugi::node_cdata:
                out.push_back(kCData);
                PutText(out, n.value());
                break;
            case pugi::node_comment:
                out.push_back(kComment);
                PutText(out, n.value());
                break;
            case pugi::node_pi:
                out.push_back(kInstruction);
                PutText(out, n.name());
                PutText(out, n.value());
                break;
            default:
                break;
        }
    }
}

void UnpackContent(std::string_view packed, PreservedContent& into) {
    Reader reader(packed);
    while (!reader.AtEnd()) {
        const Record record = reader.Next();
        if (record == kAttribute) {
            std::string_view name = reader.Text();
            into.attributes.push_back({std::string(name), std::string(reader.Text())});
            continue;
        }
        PreservedNode node;
        node.kind = record == kElement ? NodeKind::Element : KindOf(record);
        if (record == kElement) {
            CountedPtr<GenericElement> element(new GenericElement(std::string(reader.Text())));
            const char* content = reader.Position();
            reader.SkipElement();
            // The element's own content, without its closing kEnd.
            PackedAccess::Set(
                *element, std::string_view(content, static_cast<size_t>(reader.Position() - content - 1)));
            node.element = element;
        } else {
            if (record == kInstruction) node.name = std::string(reader.Text());
            node.value = std::string(reader.Text());
        }
        into.nodes.push_back(std::move(node));
    }
}

void WritePackedContent(std::string_view packed, WriteDocument& document, WriteNode* element) {
    Reader reader(packed);
    std::vector<WriteNode*> open;
    WriteNode* current = element;
    while (!reader.AtEnd()) {
        const Record record = reader.Next();
        switch (record) {
            case kAttribute: {
                std::string_view name = reader.Text();
                current->SetRawAttributeView(name, reader.Text());
                break;
            }
            case kElement: {
                WriteNode* child = document.NewNodeView(WriteNode::Kind::Element, reader.Text());
                current->Insert(child, nullptr);
                open.push_back(current);
                current = child;
                break;
            }
            case kEnd:
                current = open.back();
                open.pop_back();
                break;
            default: {
                std::string_view name = record == kInstruction ? reader.Text() : std::string_view();
                WriteNode* node =
                    document.NewNodeView(record == kText      ? WriteNode::Kind::Text
                                         : record == kCData   ? WriteNode::Kind::CData
                                         : record == kComment ? WriteNode::Kind::Comment
                                                              : WriteNode::Kind::ProcessingInstruction,
                                         name);
                node->SetValueView(reader.Text());
                current->Insert(node, nullptr);
                break;
            }
        }
    }
}

}  // namespace Ruvex::detail
