#pragma once

// The declaration of a tag's data: one table per class lists its attributes (name in the file, member, type,
// default) and its child lists. The same table generates the members, the accessors and the schema that the
// generic load and save walk, so the two directions cannot drift apart.

#include <orvia/ruvex/element.h>
#include <orvia/ruvex/factory.h>
#include <orvia/ruvex/hash_vector.h>
#include <orvia/vek/vector.h>

#include <array>
#include <atomic>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace Ruvex {

// Scratch space for formatting one attribute value.
struct FormatBuffer {
    std::array<char, 64> digits{};
    std::string text;
};

struct AttributeField {
    std::string_view name;
    std::string_view typeName;
    std::string_view defaultText;
    // Parses file text (UTF-8) into the member; Malformed leaves the member as it was.
    AttributeStatus (*read)(Element& object, std::string_view text, const AttributeField& field);
    // The same for text that ends at a NUL (a parser's buffer), which numbers need not measure first.
    AttributeStatus (*readTerminated)(Element& object, const char* text, const AttributeField& field);
    // The member as file text (UTF-8); the view may point into the buffer.
    std::string_view (*format)(const Element& object, FormatBuffer& buffer, const AttributeField& field);
    // Extra word for codecs that need it (component index of vector members).
    int component = 0;
};

enum class ChildKind { Single, List, NamedList };

// The creators that the installed factory fixes for the tags of one child field (Factory::FindCreator), asked
// the first time the field loads a child under that factory.
class FactoryCreators {
public:
    explicit FactoryCreators(size_t count) : m_creators(new std::atomic<Element* (*)()>[count]) {}
    // The creator for tags[index], or null when the factory must be asked each time.
    Element* (*Get(const Factory& factory, const std::vector<std::string_view>& tags, size_t index))();

private:
    std::atomic<uint64_t> m_epoch{0};  // FactoryEpoch() of the factory the creators are for; 0 for none
    std::unique_ptr<std::atomic<Element* (*)()>[]> m_creators;
};

struct ChildField {
    ChildKind kind = ChildKind::List;
    std::string_view member;     // accessor name, for the format reference
    std::string_view container;  // wrapper tag, empty when the items sit directly in the element
    std::vector<std::string_view> tags;
    std::string_view typeName;
    // Stores a loaded child; false when the object is not of the member's type.
    bool (*accept)(Element& object, Element* child);
    // Calls `visit` for each stored child, in order.
    void (*forEach)(const Element& object, void* context, void (*visit)(void* context, Element* child));
    // The data class registered for each tag (null when none is), which a load with no factory installed
    // creates without looking the tag up.
    std::vector<Element* (*)()> creators;
    // Lists only (null for a single slot): the number of items, and room made for `count` of them.
    size_t (*size)(const Element& object) = nullptr;
    void (*reserve)(Element& object, size_t count) = nullptr;
    // What the installed factory creates for each tag, asked once per installed factory (shared by the copies
    // of this field in derived schemas).
    std::shared_ptr<FactoryCreators> factoryCreators;

    bool Accepts(std::string_view tag) const {
        for (std::string_view t : tags)
            if (t == tag) return true;
        return false;
    }
};

struct Schema {
    std::string tag;
    std::string className;
    const Schema* base = nullptr;
    std::vector<AttributeField> attributes;  // base class fields first
    std::vector<ChildField> children;
    // No two attributes share a file name (a table that repeats one writes its last value in the first
    // place).
    bool distinctAttributeNames = true;
    // Some child is a single slot (CHILD row): loads then track which slots are filled.
    bool hasSingleChildren = false;

    // `hint` is the index after the previous match: attributes usually come in table order.
    const AttributeField* FindAttribute(std::string_view name, size_t& hint) const {
        const size_t n = attributes.size();
        for (size_t k = 0; k < n; ++k) {
            size_t i = hint + k;
            if (i >= n) i -= n;
            if (attributes[i].name == name) {
                hint = i + 1;
                return &attributes[i];
            }
        }
        return nullptr;
    }
    // The same for a name that ends at a NUL, compared without measuring it first.
    const AttributeField* FindAttributeTerminated(const char* name, size_t& hint) const {
        auto matches = [name](std::string_view candidate) {
            return !candidate.empty() && name[0] == candidate[0] &&
                   std::strncmp(name, candidate.data(), candidate.size()) == 0 &&
                   name[candidate.size()] == '\0';
        };
        const size_t n = attributes.size();
        if (hint < n && matches(attributes[hint].name)) return &attributes[hint++];
        for (size_t i = 0; i < n; ++i)
            if (matches(attributes[i].name)) {
                hint = i + 1;
                return &attributes[i];
            }
        return nullptr;
    }
    const ChildField* FindItem(std::string_view tag) const {
        size_t tagIndex = 0;
        return FindItem(tag, tagIndex);
    }
    // The same, with the position of the tag among the field's tags.
    const ChildField* FindItem(std::string_view tag, size_t& tagIndex) const {
        for (const ChildField& c : children) {
            if (!c.container.empty()) continue;
            for (size_t i = 0; i < c.tags.size(); ++i)
                if (c.tags[i] == tag) {
                    tagIndex = i;
                    return &c;
                }
        }
        return nullptr;
    }
    const ChildField* FindContainer(std::string_view tag) const {
        for (const ChildField& c : children)
            if (!c.container.empty() && c.container == tag) return &c;
        return nullptr;
    }
};

// ---------------------------------------------------------------------------------------------------------------
// Value codecs: file text <-> member. Numbers go through from_chars/to_chars, so no locale ever plays a part.

namespace detail {

bool Latin1Mode();
std::string ToFileText(std::string_view modelText);   // model encoding -> UTF-8
std::string FromFileText(std::string_view fileText);  // UTF-8 -> model encoding

std::string_view FormatDouble(double value, FormatBuffer& buffer);
AttributeStatus ParseDouble(std::string_view text, double& value);
// The same for text ending at a NUL.
AttributeStatus ParseDoubleTerminated(const char* text, double& value);
AttributeStatus ParseBool(std::string_view text, bool& value);

template <class T>
AttributeStatus ParseInteger(std::string_view text, T& value) {
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    T parsed{};
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (error != std::errc() || end != text.data() + text.size() || text.empty())
        return AttributeStatus::Malformed;
    value = parsed;
    return AttributeStatus::Ok;
}

template <class T>
std::string_view FormatInteger(T value, FormatBuffer& buffer) {
    auto [end, error] =
        std::to_chars(buffer.digits.data(), buffer.digits.data() + buffer.digits.size(), value);
    (void)error;
    return std::string_view(buffer.digits.data(), static_cast<size_t>(end - buffer.digits.data()));
}

// Enumerations are stored as their integer value.
template <class T, class Enable = void>
struct Codec;

template <>
struct Codec<std::string> {
    static constexpr std::string_view kType = "text";
    static AttributeStatus Read(std::string_view text, std::string& value) {
        if (Latin1Mode())
            value = FromFileText(text);
        else
            value.assign(text.data(), text.size());
        return AttributeStatus::Ok;
    }
    static std::string_view Format(const std::string& value, FormatBuffer& buffer) {
        if (!Latin1Mode()) return value;
        buffer.text = ToFileText(value);
        return buffer.text;
    }
};

template <>
struct Codec<bool> {
    static constexpr std::string_view kType = "bool";
    static AttributeStatus Read(std::string_view text, bool& value) { return ParseBool(text, value); }
    static std::string_view Format(bool value, FormatBuffer&) { return value ? "true" : "false"; }
};

template <>
struct Codec<double> {
    static constexpr std::string_view kType = "double";
    static AttributeStatus Read(std::string_view text, double& value) { return ParseDouble(text, value); }
    static std::string_view Format(double value, FormatBuffer& buffer) { return FormatDouble(value, buffer); }
};

template <>
struct Codec<float> {
    static constexpr std::string_view kType = "float";
    static AttributeStatus Read(std::string_view text, float& value) {
        double d = 0;
        AttributeStatus status = ParseDouble(text, d);
        if (status == AttributeStatus::Ok) value = static_cast<float>(d);
        return status;
    }
    static std::string_view Format(float value, FormatBuffer& buffer) {
        auto [end, error] =
            std::to_chars(buffer.digits.data(), buffer.digits.data() + buffer.digits.size(), value);
        (void)error;
        return std::string_view(buffer.digits.data(), static_cast<size_t>(end - buffer.digits.data()));
    }
};

template <class T>
struct Codec<T, std::enable_if_t<std::is_integral_v<T> && !std::is_same_v<T, bool>>> {
    static constexpr std::string_view kType = std::is_signed_v<T> ? "integer" : "unsigned integer";
    static AttributeStatus Read(std::string_view text, T& value) { return ParseInteger(text, value); }
    static std::string_view Format(T value, FormatBuffer& buffer) { return FormatInteger(value, buffer); }
};

template <class T>
struct Codec<T, std::enable_if_t<std::is_enum_v<T>>> {
    using U = std::underlying_type_t<T>;
    static constexpr std::string_view kType = "enumeration (integer)";
    static AttributeStatus Read(std::string_view text, T& value) {
        U raw{};
        AttributeStatus status = ParseInteger(text, raw);
        if (status == AttributeStatus::Ok) value = static_cast<T>(raw);
        return status;
    }
    static std::string_view Format(T value, FormatBuffer& buffer) {
        return FormatInteger(static_cast<U>(value), buffer);
    }
};

// Lists of numbers and of points sit in one attribute, whitespace separated ("x0 y0 x1 y1 ...").
AttributeStatus ParseNumberList(std::string_view text, std::vector<double>& values);
// The same in pairs; malformed when the count is odd.
AttributeStatus ParsePointList(std::string_view text, std::vector<vek::Vector2>& points);
std::string_view FormatNumberList(const double* values, size_t count, FormatBuffer& buffer);

template <>
struct Codec<std::vector<double>> {
    static constexpr std::string_view kType = "list of numbers";
    static AttributeStatus Read(std::string_view text, std::vector<double>& value) {
        return ParseNumberList(text, value);
    }
    static std::string_view Format(const std::vector<double>& value, FormatBuffer& buffer) {
        return FormatNumberList(value.data(), value.size(), buffer);
    }
};

template <>
struct Codec<std::vector<vek::Vector2>> {
    static constexpr std::string_view kType = "list of points (x y pairs)";
    static AttributeStatus Read(std::string_view text, std::vector<vek::Vector2>& value) {
        return ParsePointList(text, value);
    }
    static std::string_view Format(const std::vector<vek::Vector2>& value, FormatBuffer& buffer) {
        static_assert(sizeof(vek::Vector2) == 2 * sizeof(double));
        return FormatNumberList(value.empty() ? nullptr : &value[0].x, value.size() * 2, buffer);
    }
};

// Reads text ending at a NUL: numbers without measuring it, the rest as a view.
template <class T>
AttributeStatus ReadTerminated(const char* text, T& value) {
    if constexpr (std::is_same_v<T, double>) {
        return ParseDoubleTerminated(text, value);
    } else if constexpr (std::is_same_v<T, float>) {
        double d = 0;
        AttributeStatus status = ParseDoubleTerminated(text, d);
        if (status == AttributeStatus::Ok) value = static_cast<float>(d);
        return status;
    } else {
        return Codec<T>::Read(std::string_view(text), value);
    }
}

template <class M>
struct MemberTraits;
template <class C, class T>
struct MemberTraits<T C::*> {
    using Class = C;
    using Type = T;
};

template <auto Member>
struct AttributeOps {
    using Class = typename MemberTraits<decltype(Member)>::Class;
    using Type = typename MemberTraits<decltype(Member)>::Type;
    static AttributeStatus Read(Element& object, std::string_view text, const AttributeField&) {
        return Codec<Type>::Read(text, static_cast<Class&>(object).*Member);
    }
    static AttributeStatus ReadTerminated(Element& object, const char* text, const AttributeField&) {
        return detail::ReadTerminated(text, static_cast<Class&>(object).*Member);
    }
    static std::string_view Format(const Element& object, FormatBuffer& buffer, const AttributeField&) {
        return Codec<Type>::Format(static_cast<const Class&>(object).*Member, buffer);
    }
};

// One component of a vek vector member, saved as its own attribute.
template <auto Member>
struct ComponentOps {
    using Class = typename MemberTraits<decltype(Member)>::Class;
    static AttributeStatus Read(Element& object, std::string_view text, const AttributeField& field) {
        return ParseDouble(text, (static_cast<Class&>(object).*Member)[field.component]);
    }
    static AttributeStatus ReadTerminated(Element& object, const char* text, const AttributeField& field) {
        return ParseDoubleTerminated(text, (static_cast<Class&>(object).*Member)[field.component]);
    }
    static std::string_view Format(const Element& object, FormatBuffer& buffer, const AttributeField& field) {
        return FormatDouble((static_cast<const Class&>(object).*Member)[field.component], buffer);
    }
};

// `child` as an Item, or null when it is not one. The exact type, and the last class seen to derive from Item
// (the runtime class a factory makes for the tag, nearly always), are recognised without a search of the
// hierarchy.
template <class Item>
Item* AsItem(Element* child) {
    static std::atomic<const std::type_info*> derived{&typeid(Item)};
    const std::type_info& type = typeid(*child);
    if (type == typeid(Item) || type == *derived.load(std::memory_order_relaxed))
        return static_cast<Item*>(child);
    Item* item = dynamic_cast<Item*>(child);
    if (item) derived.store(&type, std::memory_order_relaxed);
    return item;
}

template <class P>
struct PointerTraits;
template <class T>
struct PointerTraits<CountedPtr<T>> {
    using Type = T;
};

template <auto Member>
struct SingleOps {
    using Class = typename MemberTraits<decltype(Member)>::Class;
    using Item = typename PointerTraits<typename MemberTraits<decltype(Member)>::Type>::Type;
    static bool Accept(Element& object, Element* child) {
        Item* item = AsItem<Item>(child);
        if (!item) return false;
        static_cast<Class&>(object).*Member = item;
        return true;
    }
    static void ForEach(const Element& object, void* context, void (*visit)(void*, Element*)) {
        if (Item* item = (static_cast<const Class&>(object).*Member).Get()) visit(context, item);
    }
};

template <auto Member>
struct ListOps {
    using Class = typename MemberTraits<decltype(Member)>::Class;
    using Container = typename MemberTraits<decltype(Member)>::Type;
    using Item = typename PointerTraits<std::decay_t<decltype(std::declval<Container>()[0])>>::Type;
    static bool Accept(Element& object, Element* child) {
        Item* item = AsItem<Item>(child);
        if (!item) return false;
        (static_cast<Class&>(object).*Member).push_back(CountedPtr<Item>(item));
        return true;
    }
    static void ForEach(const Element& object, void* context, void (*visit)(void*, Element*)) {
        for (const auto& item : static_cast<const Class&>(object).*Member)
            if (item) visit(context, item.Get());
    }
    static size_t Size(const Element& object) { return (static_cast<const Class&>(object).*Member).size(); }
    static void Reserve(Element& object, size_t count) {
        (static_cast<Class&>(object).*Member).reserve(count);
    }
};

std::vector<std::string_view> SplitTags(std::string_view tags);
// The creator of the data class registered for each tag, null where none is.
std::vector<Element* (*)()> DataClassCreators(const std::vector<std::string_view>& tags);

}  // namespace detail

// Assembles a schema; used by RUVEX_SCHEMA.
class SchemaBuilder {
public:
    SchemaBuilder(std::string_view tag, std::string_view className, const Schema* base) {
        m_schema.tag = std::string(tag);
        m_schema.className = std::string(className);
        m_schema.base = base;
        if (base) {
            m_schema.attributes = base->attributes;
            m_schema.children = base->children;
        }
    }

    template <auto Member>
    SchemaBuilder& Attribute(std::string_view name, std::string_view defaultText) {
        using Ops = detail::AttributeOps<Member>;
        m_schema.attributes.push_back({name, detail::Codec<typename Ops::Type>::kType, defaultText,
                                       &Ops::Read, &Ops::ReadTerminated, &Ops::Format, 0});
        return *this;
    }
    template <auto Member>
    SchemaBuilder& Components(std::initializer_list<std::string_view> names, std::string_view defaultText) {
        using Ops = detail::ComponentOps<Member>;
        int component = 0;
        for (std::string_view name : names)
            m_schema.attributes.push_back(
                {name, "double", defaultText, &Ops::Read, &Ops::ReadTerminated, &Ops::Format, component++});
        return *this;
    }
    template <auto Member>
    SchemaBuilder& Single(std::string_view member, std::string_view tags, std::string_view typeName) {
        using Ops = detail::SingleOps<Member>;
        std::vector<std::string_view> split = detail::SplitTags(tags);
        std::vector<Element* (*)()> creators = detail::DataClassCreators(split);
        auto factoryCreators = std::make_shared<FactoryCreators>(split.size());
        m_schema.children.push_back({ChildKind::Single,
                                     member,
                                     {},
                                     std::move(split),
                                     typeName,
                                     &Ops::Accept,
                                     &Ops::ForEach,
                                     std::move(creators),
                                     nullptr,
                                     nullptr,
                                     std::move(factoryCreators)});
        return *this;
    }
    template <auto Member>
    SchemaBuilder& List(std::string_view member, std::string_view container, std::string_view tags,
                        std::string_view typeName, ChildKind kind) {
        using Ops = detail::ListOps<Member>;
        std::vector<std::string_view> split = detail::SplitTags(tags);
        std::vector<Element* (*)()> creators = detail::DataClassCreators(split);
        auto factoryCreators = std::make_shared<FactoryCreators>(split.size());
        m_schema.children.push_back({kind, member, container, std::move(split), typeName, &Ops::Accept,
                                     &Ops::ForEach, std::move(creators), &Ops::Size, &Ops::Reserve,
                                     std::move(factoryCreators)});
        return *this;
    }

    Schema Build() {
        for (size_t i = 0; i < m_schema.attributes.size(); ++i)
            for (size_t j = 0; j < i; ++j)
                if (m_schema.attributes[i].name == m_schema.attributes[j].name)
                    m_schema.distinctAttributeNames = false;
        for (const ChildField& child : m_schema.children)
            if (child.kind == ChildKind::Single) m_schema.hasSingleChildren = true;
        return std::move(m_schema);
    }

private:
    Schema m_schema;
};

// Every data class, for the base factory and the format reference.
struct DataClassInfo {
    std::string_view tag;
    const Schema& (*schema)();
    Element* (*create)();
};
const std::vector<DataClassInfo>& DataClasses();

}  // namespace Ruvex

// ---------------------------------------------------------------------------------------------------------------
// The table macros. A table is a macro taking one argument F and listing its rows as
//   F(ATTR, type, Name, "fileName", default)           attribute held in m_Name, Get/SetName
//   F(XY, Name, "fileX", "fileY", defX, defY)          vek::Vector2 saved as two attributes
//   F(XYZ, Name, "fileX", "fileY", "fileZ", dX, dY, dZ) vek::Vector3 saved as three attributes
//   F(CHILD, Type, Name, "Tag")                        one optional child (several tags: "A|B")
//   F(LIST, Type, Name, "Tag")                         children, in order
//   F(LIST_IN, Type, Name, "Container", "Tag")         children inside a wrapper element
//   F(NAMED_LIST, Type, Name, "Tag")                   children looked up by name (HashVector)
//   F(NAMED_LIST_IN, Type, Name, "Container", "Tag")
// In the class body: RUVEX_FIELDS(Class, Base, TABLE); in one source file: RUVEX_SCHEMA(Class, Base, "Tag",
// TABLE).

#define RUVEX_DISPATCH_ACCESSOR(kind, ...) RUVEX_ACCESSOR_##kind(__VA_ARGS__)
#define RUVEX_DISPATCH_MEMBER(kind, ...) RUVEX_MEMBER_##kind(__VA_ARGS__)
#define RUVEX_DISPATCH_ENTRY(kind, ...) RUVEX_ENTRY_##kind(__VA_ARGS__)

#define RUVEX_ACCESSOR_ATTR(type, Name, file, def) \
    const type& Get##Name() const {                \
        return m_##Name;                           \
    }                                              \
    void Set##Name(const type& value) {            \
        m_##Name = value;                          \
    }
#define RUVEX_MEMBER_ATTR(type, Name, file, def) type m_##Name = def;
#define RUVEX_ENTRY_ATTR(type, Name, file, def) .Attribute<&Self::m_##Name>(file, #def)

#define RUVEX_ACCESSOR_XY(Name, fx, fy, dx, dy)   \
    const ::vek::Vector2& Get##Name() const {     \
        return m_##Name;                          \
    }                                             \
    void Set##Name(const ::vek::Vector2& value) { \
        m_##Name = value;                         \
    }
#define RUVEX_MEMBER_XY(Name, fx, fy, dx, dy) ::vek::Vector2 m_##Name{dx, dy};
#define RUVEX_ENTRY_XY(Name, fx, fy, dx, dy) .Components<&Self::m_##Name>({fx, fy}, "(" #dx ", " #dy ")")

#define RUVEX_ACCESSOR_XYZ(Name, fx, fy, fz, dx, dy, dz) \
    const ::vek::Vector3& Get##Name() const {            \
        return m_##Name;                                 \
    }                                                    \
    void Set##Name(const ::vek::Vector3& value) {        \
        m_##Name = value;                                \
    }
#define RUVEX_MEMBER_XYZ(Name, fx, fy, fz, dx, dy, dz) ::vek::Vector3 m_##Name{dx, dy, dz};
#define RUVEX_ENTRY_XYZ(Name, fx, fy, fz, dx, dy, dz) \
    .Components<&Self::m_##Name>({fx, fy, fz}, "(" #dx ", " #dy ", " #dz ")")

#define RUVEX_ACCESSOR_CHILD(Type, Name, tag) \
    Type* Get##Name() const {                 \
        return m_##Name.Get();                \
    }                                         \
    void Set##Name(Type* value) {             \
        m_##Name = value;                     \
    }
#define RUVEX_MEMBER_CHILD(Type, Name, tag) ::Ruvex::CountedPtr<Type> m_##Name;
#define RUVEX_ENTRY_CHILD(Type, Name, tag) .Single<&Self::m_##Name>(#Name, tag, #Type)

#define RUVEX_ACCESSOR_LIST(Type, Name, tag)                          \
    const std::vector<::Ruvex::CountedPtr<Type>>& Get##Name() const { \
        return m_##Name;                                              \
    }                                                                 \
    std::vector<::Ruvex::CountedPtr<Type>>& Edit##Name() {            \
        return m_##Name;                                              \
    }
#define RUVEX_MEMBER_LIST(Type, Name, tag) std::vector<::Ruvex::CountedPtr<Type>> m_##Name;
#define RUVEX_ENTRY_LIST(Type, Name, tag) \
    .List<&Self::m_##Name>(#Name, "", tag, #Type, ::Ruvex::ChildKind::List)

#define RUVEX_ACCESSOR_LIST_IN(Type, Name, container, tag) RUVEX_ACCESSOR_LIST(Type, Name, tag)
#define RUVEX_MEMBER_LIST_IN(Type, Name, container, tag) RUVEX_MEMBER_LIST(Type, Name, tag)
#define RUVEX_ENTRY_LIST_IN(Type, Name, container, tag) \
    .List<&Self::m_##Name>(#Name, container, tag, #Type, ::Ruvex::ChildKind::List)

#define RUVEX_ACCESSOR_NAMED_LIST(Type, Name, tag)                            \
    const ::Ruvex::HashVector<::Ruvex::CountedPtr<Type>>& Get##Name() const { \
        return m_##Name;                                                      \
    }                                                                         \
    ::Ruvex::HashVector<::Ruvex::CountedPtr<Type>>& Edit##Name() {            \
        return m_##Name;                                                      \
    }
#define RUVEX_MEMBER_NAMED_LIST(Type, Name, tag) ::Ruvex::HashVector<::Ruvex::CountedPtr<Type>> m_##Name;
#define RUVEX_ENTRY_NAMED_LIST(Type, Name, tag) \
    .List<&Self::m_##Name>(#Name, "", tag, #Type, ::Ruvex::ChildKind::NamedList)

#define RUVEX_ACCESSOR_NAMED_LIST_IN(Type, Name, container, tag) RUVEX_ACCESSOR_NAMED_LIST(Type, Name, tag)
#define RUVEX_MEMBER_NAMED_LIST_IN(Type, Name, container, tag) RUVEX_MEMBER_NAMED_LIST(Type, Name, tag)
#define RUVEX_ENTRY_NAMED_LIST_IN(Type, Name, container, tag) \
    .List<&Self::m_##Name>(#Name, container, tag, #Type, ::Ruvex::ChildKind::NamedList)

#define RUVEX_FIELDS(Class, Base, TABLE)           \
public:                                            \
    Class();                                       \
    ~Class() override;                             \
    static const ::Ruvex::Schema& StaticSchema();  \
    TABLE(RUVEX_DISPATCH_ACCESSOR)                 \
protected:                                         \
    explicit Class(const ::Ruvex::Schema* schema); \
    TABLE(RUVEX_DISPATCH_MEMBER)                   \
                                                   \
private:                                           \
    friend class ::Ruvex::SchemaBuilder;

// For data classes whose objects are saved under the tag they were created with.
#define RUVEX_TAGGED(Class)                             \
public:                                                 \
    explicit Class(const std::string& tag) : Class() {  \
        m_tag = tag;                                    \
    }                                                   \
    const std::string& GetTagName() const override {    \
        return m_tag.empty() ? GetSchema().tag : m_tag; \
    }                                                   \
                                                        \
protected:                                              \
    std::string m_tag;                                  \
                                                        \
private:

#define RUVEX_SCHEMA(Class, Base, tag, TABLE)                                                               \
    Class::Class() : Base(&Class::StaticSchema()) {}                                                        \
    Class::Class(const ::Ruvex::Schema* schema) : Base(schema) {}                                           \
    Class::~Class() = default;                                                                              \
    const ::Ruvex::Schema& Class::StaticSchema() {                                                          \
        using Self [[maybe_unused]] = Class; /* a table may be empty */                                     \
        static const ::Ruvex::Schema schema =                                                               \
            ::Ruvex::SchemaBuilder(tag, #Class, &Base::StaticSchema()) TABLE(RUVEX_DISPATCH_ENTRY).Build(); \
        return schema;                                                                                      \
    }
