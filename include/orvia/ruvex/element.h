#pragma once

#include <orvia/ruvex/counted.h>
#include <orvia/ruvex/dom.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Ruvex {

struct Schema;
class Element;
namespace detail {
struct PackedAccess;
}

// What a file held that the element's class does not know: attributes, child nodes and, inside list
// containers, the same again. It is written back unchanged, so load -> save -> load loses nothing.
struct PreservedNode {
    NodeKind kind = NodeKind::Element;
    // Number of element children the class itself took before this node: where it goes back on save when
    // `after` is empty.
    uint32_t anchor = 0;
    // Otherwise it goes back right after the `afterCount`-th taken child named `after`: a save may write
    // children the file did not hold (defaults) or in another order, and counts alone would then move it.
    std::string after;
    uint32_t afterCount = 0;
    std::string name;   // processing-instruction target
    std::string value;  // text, comment or processing-instruction body (file encoding)
    CountedPtr<Element> element;
};

struct PreservedAttribute {
    std::string name;
    std::string value;  // file encoding
};

struct PreservedContainer {
    std::string tag;
    std::vector<PreservedAttribute> attributes;
    std::vector<PreservedNode> nodes;
};

struct PreservedContent {
    std::vector<PreservedAttribute> attributes;
    std::vector<PreservedNode> nodes;
    std::vector<PreservedContainer> containers;
    // Only on the object a document was loaded into: what surrounded it in the file.
    struct Document;
    std::shared_ptr<Document> document;

    bool empty() const { return attributes.empty() && nodes.empty() && containers.empty() && !document; }
    PreservedContainer& Container(std::string_view tag);
    const PreservedContainer* FindContainer(std::string_view tag) const;
};

// Base of every persistent object. The default load and save are generic over the class's schema (its
// declared attributes and child lists); whatever the schema does not cover is preserved.
class Element : public CountedObject {
public:
    Element();
    Element(const Element& other);
    Element& operator=(const Element& other);
    ~Element() override;

    // The XML tag this object is saved under.
    virtual const std::string& GetTagName() const;
    // Reads attributes, then hands every child element to LoadChild in document order. False only when an
    // argument is null: a malformed attribute is reported to the parser as a warning and left at its default.
    virtual bool LoadFromXMLElement(IDOMElement* element, IDOMParser* parser);
    // A new DOM element for this object, children included.
    virtual IDOMElement* BuildXMLElement(IDOMParser* parser);

    static const Schema& StaticSchema();
    const Schema& GetSchema() const { return *m_schema; }

    // Content of the file that no class took; null when there is none. Not for concurrent readers: an unknown
    // element read from a file opens its packed content here on first use.
    const PreservedContent* GetPreserved() const;
    PreservedContent& EditPreserved();
    void ClearPreserved();

protected:
    explicit Element(const Schema* schema);

    // Called once per child element while loading. True when the child was taken; a child nobody takes is
    // preserved as it stands.
    virtual bool LoadChild(IDOMElement* child, IDOMParser* parser);

    // The pieces of the generic load and save, for classes that override one slot but keep the rest generic.
    bool LoadAttributes(IDOMElement* element, IDOMParser* parser);
    void LoadChildren(IDOMElement* element, IDOMParser* parser);
    // Builds the element with its declared attributes and children and the preserved content.
    IDOMElement* BuildGenericXMLElement(IDOMParser* parser);
    // Keeps a child verbatim (used by overrides of LoadChild that decline a child they recognise).
    void PreserveChild(IDOMElement* child, IDOMParser* parser, uint32_t anchor);

private:
    friend class DocumentAccess;
    friend class GenericElement;
    const Schema* m_schema;
    std::unique_ptr<PreservedContent> m_preserved;
};

// An element that bears a name: the ones kept in name-indexed lists.
class NamedElement : public Element {
public:
    NamedElement();
    static const Schema& StaticSchema();

    virtual const std::string& GetName() const { return m_name; }
    virtual void SetName(const std::string& name);
    // Names an element that no name-searchable list holds yet (one just made): no index can know it, so none
    // is marked stale, and a run of such namings costs the lists nothing.
    void NameUnlisted(const std::string& name) { m_name = name; }

protected:
    explicit NamedElement(const Schema* schema) : Element(schema) {}
    std::string m_name;
};

// A tag that no class stands for. Everything it holds is kept and written back as read. Read from a file, it
// keeps that content packed in one block (about the size of its text), opened into preserved content when
// GetPreserved or EditPreserved is first called.
class GenericElement : public Element {
public:
    explicit GenericElement(std::string tag) : m_tag(std::move(tag)) {}
    const std::string& GetTagName() const override { return m_tag; }
    bool LoadFromXMLElement(IDOMElement* element, IDOMParser* parser) override;
    IDOMElement* BuildXMLElement(IDOMParser* parser) override;

protected:
    bool LoadChild(IDOMElement*, IDOMParser*) override { return false; }

private:
    friend class Element;
    friend struct detail::PackedAccess;
    // Moves the packed content into the preserved content.
    void Unpack();

    std::string m_tag;
    std::string m_packed;
};

}  // namespace Ruvex
