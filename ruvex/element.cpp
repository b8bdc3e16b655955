#include <orvia/ruvex/element.h>
#include <orvia/ruvex/factory.h>
#include <orvia/ruvex/schema.h>

#include "packed_content.h"
#include "pugi_dom.h"
#include "xml_writer.h"

#include <array>
#include <utility>

namespace Ruvex {

namespace {

std::string_view Expected(std::string_view typeName) {
    if (typeName == "double" || typeName == "float") return "a finite number";
    if (typeName == "bool") return "true or false";
    if (typeName == "unsigned integer") return "a non-negative integer";
    return "an integer";
}

PreservedNode CopyNode(IDOMElement* node, IDOMParser* parser, uint32_t anchor) {
    PreservedNode kept;
    kept.kind = node->GetNodeKind();
    kept.anchor = anchor;
    if (kept.kind == NodeKind::Element) {
        CountedPtr<GenericElement> copy(new GenericElement(std::string(node->GetTagName())));
        copy->LoadFromXMLElement(node, parser);
        kept.element = copy;
    } else {
        if (kept.kind == NodeKind::ProcessingInstruction) kept.name = std::string(node->GetTagName());
        kept.value = std::string(node->GetValue());
    }
    return kept;
}

// The element whose children are being loaded on this thread, with the single-child slots that a child of
// this load has filled already.
struct LoadFrame {
    const Element* self;
    uint64_t filled;
};
// Initial-exec: read on every child, it must not cost a call into the dynamic linker.
thread_local LoadFrame* t_loadFrame __attribute__((tls_model("initial-exec"))) = nullptr;

// The bit of a single-child slot in the load frame of `self`; 0 for lists, or outside a load of `self`.
uint64_t SlotBit(const Element& self, const ChildField& field) {
    if (field.kind != ChildKind::Single) return 0;  // before the thread-local, which costs a call here
    const LoadFrame* frame = t_loadFrame;
    if (!frame || frame->self != &self) return 0;
    const auto index = static_cast<size_t>(&field - self.GetSchema().children.data());
    return index < 64 ? uint64_t(1) << index : 0;
}

// True when a child of the current load of `self` already went into this single slot: a second one would
// replace the first and lose it.
bool SlotTaken(const Element& self, const ChildField& field) {
    const uint64_t bit = SlotBit(self, field);
    return bit != 0 && (t_loadFrame->filled & bit) != 0;
}

// Creates, loads and stores one child of a declared list. False when the object could not be made, did not
// load, or is not of the list's type: the caller then keeps the child verbatim.
// With no factory installed, the field knows the data class of its tag (field.tags[tagIndex]): what the base
// factory would create, without a lookup.
// With a factory whose creator for the tag is fixed, the creator is asked for once per factory.
Element* CreateItem(const ChildField& field, size_t tagIndex, std::string_view tag) {
    Factory* factory = GetFactory();
    if (!factory)
        return field.creators[tagIndex] ? field.creators[tagIndex]() : new GenericElement(std::string(tag));
    if (Element * (*create)() = field.factoryCreators->Get(*factory, field.tags, tagIndex)) return create();
    thread_local std::string name;
    name.assign(tag);
    return factory->Create(name);
}

// Elements from `child` on among its siblings: room for the list's items that likely follow.
size_t ElementsFrom(IDOMElement* child) {
    size_t count = 0;
    for (pugi::xml_node n = detail::Loaded(child)->node(); n; n = n.next_sibling())
        count += n.type() == pugi::node_element;
    return count;
}

bool LoadItem(Element& self, const ChildField& field, size_t tagIndex, IDOMElement* child,
              IDOMParser* parser) {
    CountedPtr<Element> object(CreateItem(field, tagIndex, field.tags[tagIndex]));
    if (!object || !object->LoadFromXMLElement(child, parser)) return false;
    // A list that starts gets room for its siblings at once, rather than growing item by item.
    if (field.reserve && field.size(self) == 0) field.reserve(self, ElementsFrom(child));
    if (!field.accept(self, object.Get())) return false;
    if (const uint64_t bit = SlotBit(self, field)) t_loadFrame->filled |= bit;
    return true;
}

// The next item field after `field` that takes `tag` (at `tagIndex` among its tags), or null.
const ChildField* NextItem(const Schema& schema, const ChildField* field, std::string_view tag,
                           size_t& tagIndex) {
    for (const ChildField* end = schema.children.data() + schema.children.size(); ++field != end;) {
        if (!field->container.empty()) continue;
        for (size_t i = 0; i < field->tags.size(); ++i)
            if (field->tags[i] == tag) {
                tagIndex = i;
                return field;
            }
    }
    return nullptr;
}

}  // namespace

PreservedContainer& PreservedContent::Container(std::string_view tag) {
    for (PreservedContainer& c : containers)
        if (c.tag == tag) return c;
    containers.push_back(PreservedContainer{std::string(tag), {}, {}});
    return containers.back();
}

const PreservedContainer* PreservedContent::FindContainer(std::string_view tag) const {
    for (const PreservedContainer& c : containers)
        if (c.tag == tag) return &c;
    return nullptr;
}

Element::Element() : m_schema(&Element::StaticSchema()) {}
Element::Element(const Schema* schema) : m_schema(schema ? schema : &Element::StaticSchema()) {}
Element::Element(const Element& other)
    : CountedObject(other),
      m_schema(other.m_schema),
      m_preserved(other.m_preserved ? std::make_unique<PreservedContent>(*other.m_preserved) : nullptr) {}
Element& Element::operator=(const Element& other) {
    if (this != &other)
        m_preserved = other.m_preserved ? std::make_unique<PreservedContent>(*other.m_preserved) : nullptr;
    return *this;
}
Element::~Element() = default;

const Schema& Element::StaticSchema() {
    static const Schema schema = SchemaBuilder("", "Element", nullptr).Build();
    return schema;
}

const std::string& Element::GetTagName() const {
    return m_schema->tag;
}

const PreservedContent* Element::GetPreserved() const {
    if (auto* generic = dynamic_cast<const GenericElement*>(this); generic && !generic->m_packed.empty())
        const_cast<GenericElement*>(generic)->Unpack();
    return m_preserved.get();
}

PreservedContent& Element::EditPreserved() {
    if (auto* generic = dynamic_cast<GenericElement*>(this); generic && !generic->m_packed.empty())
        generic->Unpack();
    if (!m_preserved) m_preserved = std::make_unique<PreservedContent>();
    return *m_preserved;
}

void Element::ClearPreserved() {
    m_preserved.reset();
    if (auto* generic = dynamic_cast<GenericElement*>(this)) generic->m_packed = std::string();
}

bool Element::LoadFromXMLElement(IDOMElement* element, IDOMParser* parser) {
    if (!element || !parser) return false;
    bool ok = LoadAttributes(element, parser);
    LoadChildren(element, parser);
    return ok;
}

namespace {

void ReportMalformed(IDOMParser* parser, IDOMElement* element, const AttributeField& field,
                     std::string_view value) {
    parser->ReportWarning(element, "attribute \"" + std::string(field.name) + "\" of <" +
                                       std::string(element->GetTagName()) + ">: expected " +
                                       std::string(Expected(field.typeName)) + ", found \"" +
                                       std::string(value) + "\"; left at its default");
}

}  // namespace

bool Element::LoadAttributes(IDOMElement* element, IDOMParser* parser) {
    if (!element || !parser) return false;
    if (m_preserved) m_preserved->attributes.clear();
    // Straight from pugixml's buffer, where names and values end at a NUL: nothing is measured that the
    // value's type does not need.
    size_t hint = 0;
    const pugi::xml_node node = detail::Loaded(element)->node();
    for (pugi::xml_attribute a = node.first_attribute(); a; a = a.next_attribute()) {
        const char* name = a.name();
        const char* value = a.value();
        const AttributeField* field = m_schema->FindAttributeTerminated(name, hint);
        if (!field)
            EditPreserved().attributes.push_back({name, value});
        else if (field->readTerminated(*this, value, *field) == AttributeStatus::Malformed)
            ReportMalformed(parser, element, *field, value);
    }
    return true;
}

void Element::LoadChildren(IDOMElement* element, IDOMParser* parser) {
    if (!element || !parser) return;
    if (m_preserved) {
        m_preserved->nodes.clear();
        m_preserved->containers.clear();
    }
    // Taken children counted per tag, for the anchors of what is kept; the same tag usually repeats, so the
    // last entry is tried first. Past kMaxTags distinct tags, kept nodes fall back to plain counts.
    static constexpr size_t kMaxTags = 16;
    struct TagCount {
        std::string_view tag;
        uint32_t count;
    };
    struct Context {
        Element* self;
        IDOMParser* parser;
        uint32_t taken;
        size_t last;
        size_t tags;
        bool overflow;
        std::array<TagCount, kMaxTags> counts;
        void Took(std::string_view tag) {
            ++taken;
            if (tags && counts[last].tag == tag) {
                ++counts[last].count;
                return;
            }
            for (size_t i = 0; i < tags; ++i)
                if (counts[i].tag == tag) {
                    last = i;
                    ++counts[i].count;
                    return;
                }
            if (tags == kMaxTags) {
                overflow = true;
                return;
            }
            last = tags++;
            counts[last] = {tag, 1};
        }
    } context{this, parser, 0, 0, 0, false, {}};
    // Only a class with single slots needs its frame (the thread-local costs a call each way).
    struct Frame {
        LoadFrame frame;
        LoadFrame* outer = nullptr;
        bool pushed;
        Frame(const Element* self, bool needed) : frame{self, 0}, pushed(needed) {
            if (pushed) outer = std::exchange(t_loadFrame, &frame);
        }
        ~Frame() {
            if (pushed) t_loadFrame = outer;
        }
        Frame(const Frame&) = delete;
        Frame& operator=(const Frame&) = delete;
    } frame(this, m_schema->hasSingleChildren);
    detail::ForEachNode(element, &context, [](void* opaque, IDOMElement* node) {
        auto& c = *static_cast<Context*>(opaque);
        NodeKind kind = node->GetNodeKind();
        if (kind == NodeKind::Other) return;
        if (kind == NodeKind::Element && c.self->LoadChild(node, c.parser)) {
            c.Took(node->GetTagName());
            return;
        }
        PreservedNode& kept = c.self->EditPreserved().nodes.emplace_back(CopyNode(node, c.parser, c.taken));
        if (c.tags && !c.overflow) {
            // A child repeating a taken one's tag goes behind that one, so that a reload takes the same
            // child.
            const TagCount* anchor = &c.counts[c.last];
            if (kind == NodeKind::Element)
                for (size_t i = 0; i < c.tags; ++i)
                    if (c.counts[i].tag == node->GetTagName()) anchor = &c.counts[i];
            kept.after = std::string(anchor->tag);
            kept.afterCount = anchor->count;
        }
    });
}

void Element::PreserveChild(IDOMElement* child, IDOMParser* parser, uint32_t anchor) {
    if (!child || !parser) return;
    EditPreserved().nodes.push_back(CopyNode(child, parser, anchor));
}

bool Element::LoadChild(IDOMElement* child, IDOMParser* parser) {
    if (!child || !parser) return false;
    const std::string_view tag = child->GetTagName();
    size_t tagIndex = 0;
    if (const ChildField* item = m_schema->FindItem(tag, tagIndex)) {
        // A single slot filled earlier in this load passes the child on to the next slot that takes its tag;
        // with none left, the child is kept as read.
        while (item && SlotTaken(*this, *item))
            item = NextItem(*m_schema, item, tag, tagIndex);
        return item && LoadItem(*this, *item, tagIndex, child, parser);
    }
    const ChildField* field = m_schema->FindContainer(tag);
    if (!field) return false;

    // The wrapper's own leftovers are recorded only when there are some.
    struct Context {
        Element* self;
        const ChildField* field;
        IDOMParser* parser;
        PreservedContainer* kept;
        uint32_t taken;
        PreservedContainer& Kept() {
            if (!kept) kept = &self->EditPreserved().Container(field->container);
            return *kept;
        }
    } context{this, field, parser, nullptr, 0};
    child->VisitAttributes(&context, [](void* opaque, std::string_view name, std::string_view value) {
        static_cast<Context*>(opaque)->Kept().attributes.push_back({std::string(name), std::string(value)});
    });
    detail::ForEachNode(child, &context, [](void* opaque, IDOMElement* node) {
        auto& c = *static_cast<Context*>(opaque);
        NodeKind kind = node->GetNodeKind();
        if (kind == NodeKind::Other) return;
        if (kind == NodeKind::Element) {
            const std::string_view tag = node->GetTagName();
            for (size_t i = 0; i < c.field->tags.size(); ++i)
                if (c.field->tags[i] == tag) {
                    if (!LoadItem(*c.self, *c.field, i, node, c.parser)) break;
                    ++c.taken;
                    return;
                }
        }
        c.Kept().nodes.push_back(CopyNode(node, c.parser, c.taken));
    });
    return true;
}

IDOMElement* Element::BuildXMLElement(IDOMParser* parser) {
    return BuildGenericXMLElement(parser);
}

IDOMElement* Element::BuildGenericXMLElement(IDOMParser* parser) {
    if (!parser) return nullptr;
    IDOMElement* element = parser->CreateElement(GetTagName());
    // A tree made in memory may nest without end (a file may not: loading refuses it); stop before the stack
    // does, with an element of no content, and fail the save.
    size_t& depth = detail::BuildDepth();
    if (depth >= kMaxNestingDepth) {
        parser->ReportProblem(nullptr, "<" + GetTagName() + "> is nested deeper than " +
                                           std::to_string(kMaxNestingDepth) + " levels");
        return element;
    }
    struct Level {
        size_t& depth;
        explicit Level(size_t& d) : depth(d) { ++depth; }
        ~Level() { --depth; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
    } level(depth);
    // The schema's names are distinct and outlive the document: the writer appends them without a search.
    detail::WriteDocument* writer = detail::Writer(parser);
    auto* written = m_schema->distinctAttributeNames ? detail::Written(element) : nullptr;
    FormatBuffer buffer;
    for (const AttributeField& field : m_schema->attributes) {
        std::string_view text = field.format(*this, buffer, field);
        if ((field.typeName == "double" || field.typeName == "float") &&
            text.find('n') != std::string_view::npos)
            parser->ReportProblem(element, "attribute \"" + std::string(field.name) + "\" of <" +
                                               GetTagName() + "> is not a finite number");
        if (written)
            written->AppendNewAttribute(field.name, text);
        else
            element->SetRawAttribute(field.name, text);
    }
    if (m_preserved)
        for (const PreservedAttribute& a : m_preserved->attributes)
            element->SetRawAttribute(a.name, a.value);

    struct Context {
        IDOMElement* parent;
        IDOMParser* parser;
        bool any;
    };
    auto append = [](void* opaque, Element* child) {
        auto& c = *static_cast<Context*>(opaque);
        if (IDOMElement* built = child->BuildXMLElement(c.parser)) {
            c.parent->AppendChild(built);
            c.any = true;
        }
    };
    for (const ChildField& field : m_schema->children) {
        if (field.container.empty()) {
            Context context{element, parser, false};
            field.forEach(*this, &context, append);
            continue;
        }
        const PreservedContainer* kept = m_preserved ? m_preserved->FindContainer(field.container) : nullptr;
        IDOMElement* container = parser->CreateElement(field.container);
        if (kept)
            for (const PreservedAttribute& a : kept->attributes)
                container->SetRawAttribute(a.name, a.value);
        Context context{container, parser, false};
        Level inContainer(depth);
        field.forEach(*this, &context, append);
        if (kept) detail::MergePreservedNodes(*writer, detail::Written(container), kept->nodes);
        // An empty list leaves no trace unless the file had something of its own in the wrapper.
        if (context.any || kept) element->AppendChild(container);
    }
    if (m_preserved && !m_preserved->nodes.empty())
        writer->Defer(detail::Written(element), m_preserved.get(), depth);
    return element;
}

bool GenericElement::LoadFromXMLElement(IDOMElement* element, IDOMParser* parser) {
    if (!element || !parser) return false;
    // What an earlier load kept goes, as it would in the generic load; the document around stays.
    if (m_preserved) {
        m_preserved->attributes.clear();
        m_preserved->nodes.clear();
        m_preserved->containers.clear();
    }
    thread_local std::string packed;
    packed.clear();
    detail::PackContent(detail::Loaded(element)->node(), packed);
    m_packed = std::string(packed);  // no room to spare
    return true;
}

IDOMElement* GenericElement::BuildXMLElement(IDOMParser* parser) {
    detail::WriteDocument* writer = detail::Writer(parser);
    if (m_packed.empty() || !writer || m_preserved) {
        Unpack();
        return BuildGenericXMLElement(parser);
    }
    detail::WriteNode* element = writer->NewNodeView(detail::WriteNode::Kind::Element, m_tag);
    detail::WritePackedContent(m_packed, *writer, element);
    return element;
}

void GenericElement::Unpack() {
    if (m_packed.empty()) return;
    if (!m_preserved) m_preserved = std::make_unique<PreservedContent>();
    detail::UnpackContent(m_packed, *m_preserved);
    m_packed = std::string();
}

NamedElement::NamedElement() : Element(&NamedElement::StaticSchema()) {}

const Schema& NamedElement::StaticSchema() {
    static const Schema schema = SchemaBuilder("", "NamedElement", &Element::StaticSchema())
                                     .Attribute<&NamedElement::m_name>("name", "\"\"")
                                     .Build();
    return schema;
}

void NamedElement::SetName(const std::string& name) {
    if (name == m_name) return;
    m_name = name;
    BumpNameGeneration();
}

}  // namespace Ruvex
