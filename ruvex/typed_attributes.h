// Typed attribute reads over a node's raw text, shared by the reading DOM and the writing one: parsing and
// the problems it raises are written once.

#pragma once

#include <orvia/ruvex/dom.h>
#include <orvia/ruvex/schema.h>

#include <string>
#include <string_view>
#include <type_traits>

namespace Ruvex::detail {

inline std::string Describe(const IDOMElement* element) {
    if (!element) return "the document";
    return "<" + std::string(element->GetTagName()) + ">";
}

// Node provides: bool RawValue(std::string_view name, std::string_view& text) const (false when absent),
// document() (an IDOMParser*), and kWarnsOnMalformed (whether a malformed read is reported).
template <class Node>
class TypedAttributes : public IDOMElement {
public:
    AttributeStatus ReadAttribute(std::string_view name, std::string& value) const final {
        std::string_view text;
        if (!self().RawValue(name, text)) return AttributeStatus::Absent;
        return Codec<std::string>::Read(text, value);
    }
    AttributeStatus ReadAttribute(std::string_view name, bool& value) const final {
        return Read(name, value);
    }
    AttributeStatus ReadAttribute(std::string_view name, int32_t& value) const final {
        return Read(name, value);
    }
    AttributeStatus ReadAttribute(std::string_view name, uint32_t& value) const final {
        return Read(name, value);
    }
    AttributeStatus ReadAttribute(std::string_view name, int64_t& value) const final {
        return Read(name, value);
    }
    AttributeStatus ReadAttribute(std::string_view name, uint64_t& value) const final {
        return Read(name, value);
    }
    AttributeStatus ReadAttribute(std::string_view name, double& value) const final {
        return Read(name, value);
    }

private:
    const Node& self() const { return static_cast<const Node&>(*this); }

    template <class T>
    AttributeStatus Read(std::string_view name, T& value) const {
        std::string_view text;
        if (!self().RawValue(name, text)) return AttributeStatus::Absent;
        AttributeStatus status;
        if constexpr (std::is_same_v<T, double>)
            status = ParseDouble(text, value);
        else if constexpr (std::is_same_v<T, bool>)
            status = ParseBool(text, value);
        else
            status = ParseInteger(text, value);
        if (Node::kWarnsOnMalformed && status == AttributeStatus::Malformed)
            self().document()->ReportWarning(this, "attribute \"" + std::string(name) + "\" of " +
                                                       Describe(this) + ": expected " + Expected<T>() +
                                                       ", found \"" + std::string(text) + "\"");
        return status;
    }

    template <class T>
    static const char* Expected() {
        if constexpr (std::is_same_v<T, double>)
            return "a finite number";
        else if constexpr (std::is_same_v<T, bool>)
            return "true or false";
        else if constexpr (std::is_signed_v<T>)
            return "an integer";
        else
            return "a non-negative integer";
    }
};

}  // namespace Ruvex::detail
