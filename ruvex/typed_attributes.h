// Typed attribute reads and writes over a node's raw text, shared by the reading DOM and the writing one:
// parsing, formatting and the problems they raise are written once.

#pragma once

#include <orvia/ruvex/dom.h>
#include <orvia/ruvex/schema.h>

#include <cmath>
#include <string>
#include <string_view>
#include <type_traits>

namespace Ruvex::detail {

inline std::string Describe(const IDOMElement* element) {
    if (!element) return "the document";
    return "<" + std::string(element->GetTagName()) + ">";
}

// Node provides: bool RawValue(std::string_view name, std::string_view& text) const (false when absent),
// SetRawAttribute, document() (an IDOMParser*), and kWarnsOnMalformed (whether a malformed read is reported).
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

    using IDOMElement::SetAttribute;
    void SetAttribute(std::string_view name, std::string_view value) final {
        FormatBuffer buffer;
        const std::string text(value);
        self().SetRawAttribute(name, Codec<std::string>::Format(text, buffer));
    }
    void SetAttribute(std::string_view name, bool value) final {
        self().SetRawAttribute(name, value ? "true" : "false");
    }
    void SetAttribute(std::string_view name, int32_t value) final { Write(name, value); }
    void SetAttribute(std::string_view name, uint32_t value) final { Write(name, value); }
    void SetAttribute(std::string_view name, int64_t value) final { Write(name, value); }
    void SetAttribute(std::string_view name, uint64_t value) final { Write(name, value); }
    void SetAttribute(std::string_view name, double value) final {
        if (!std::isfinite(value))
            self().document()->ReportProblem(this, "attribute \"" + std::string(name) + "\" of " +
                                                       Describe(this) + " is not a finite number");
        FormatBuffer buffer;
        self().SetRawAttribute(name, FormatDouble(value, buffer));
    }

private:
    const Node& self() const { return static_cast<const Node&>(*this); }
    Node& self() { return static_cast<Node&>(*this); }

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

    template <class T>
    void Write(std::string_view name, T value) {
        FormatBuffer buffer;
        self().SetRawAttribute(name, FormatInteger(value, buffer));
    }
};

}  // namespace Ruvex::detail
