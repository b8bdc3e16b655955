// Every registered data class, driven by its own schema: each attribute and each child slot set alone
// survives a save and a reload, in its own place, and nothing else moves.

#include <orvia/ruvex/factory.h>
#include <orvia/ruvex/schema.h>

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>
#include <vector>

using namespace Ruvex;

namespace {

std::vector<std::string> Attributes(const Element& element) {
    FormatBuffer buffer;
    std::vector<std::string> values;
    for (const AttributeField& field : element.GetSchema().attributes)
        values.emplace_back(field.format(element, buffer, field));
    return values;
}

// The tags of the children held in each child field, in order.
std::vector<std::vector<std::string>> Children(const Element& element) {
    std::vector<std::vector<std::string>> tags;
    for (const ChildField& field : element.GetSchema().children) {
        tags.emplace_back();
        field.forEach(element, &tags.back(), [](void* context, Element* child) {
            static_cast<std::vector<std::string>*>(context)->push_back(child->GetTagName());
        });
    }
    return tags;
}

// Tags of the elements from `element` down that kept something of the file unread.
void CollectLeftovers(const Element& element, std::vector<std::string>& out) {
    const PreservedContent* kept = element.GetPreserved();
    if (kept && (!kept->attributes.empty() || !kept->nodes.empty() || !kept->containers.empty()))
        out.push_back(element.GetTagName());
    for (const ChildField& field : element.GetSchema().children)
        field.forEach(element, &out, [](void* context, Element* child) {
            CollectLeftovers(*child, *static_cast<std::vector<std::string>*>(context));
        });
}

// A value of the field's type, different from its default and from every other field's value.
std::string Distinctive(const AttributeField& field, const std::string& current, size_t index) {
    std::string n = std::to_string(index + 2);
    if (n == current) n = std::to_string(index + 3);
    if (field.typeName == "text") return "v" + n + " & <x>";
    if (field.typeName == "bool") return current == "true" ? "false" : "true";
    if (field.typeName == "double" || field.typeName == "float") return n + ".5";
    if (field.typeName == "list of numbers") return "0.5 -" + n;
    if (field.typeName == "list of points (x y pairs)") return "1 -2 " + n + " 0.25";
    return n;  // integers and enumerations
}

// Saves `object`, loads the text back and checks that it reads as the same class with the same content and
// that nothing was left unread.
CountedPtr<Element> Reloaded(Element& object, const std::string& where) {
    const std::string text = SaveToString(&object);
    CountedPtr<Element> back(Load(text.c_str(), true));
    EXPECT_TRUE(back) << where << "\n" << text;
    if (!back) return back;
    EXPECT_TRUE(GetLastProblems().empty()) << where << ": " << ToString(GetLastProblems()[0]);
    EXPECT_EQ(typeid(*back), typeid(object)) << where;
    std::vector<std::string> leftovers;
    CollectLeftovers(*back, leftovers);
    EXPECT_TRUE(leftovers.empty()) << where << ": unread content in <" << leftovers[0] << ">\n" << text;
    return back;
}

}  // namespace

TEST(DataClasses, EachAttributeRoundTripsAlone) {
    ASSERT_GT(DataClasses().size(), 100u);
    for (const DataClassInfo& info : DataClasses()) {
        const std::string tag(info.tag);
        CountedPtr<Element> blank(info.create());
        ASSERT_EQ(&blank->GetSchema(), &info.schema()) << tag;
        EXPECT_EQ(blank->GetTagName(), tag);
        const std::vector<std::string> defaults = Attributes(*blank);
        CountedPtr<Element> back = Reloaded(*blank, tag);
        ASSERT_TRUE(back);
        EXPECT_EQ(Attributes(*back), defaults) << tag;

        const std::vector<AttributeField>& fields = info.schema().attributes;
        for (size_t i = 0; i < fields.size(); ++i) {
            const std::string where = tag + "@" + std::string(fields[i].name);
            CountedPtr<Element> object(info.create());
            std::vector<std::string> expected = defaults;
            expected[i] = Distinctive(fields[i], defaults[i], i);
            ASSERT_EQ(fields[i].read(*object, expected[i], fields[i]), AttributeStatus::Ok) << where;
            // No other attribute shares the member, and the codec writes back what it read.
            EXPECT_EQ(Attributes(*object), expected) << where;
            back = Reloaded(*object, where);
            ASSERT_TRUE(back);
            EXPECT_EQ(Attributes(*back), expected) << where;
        }
    }
}

TEST(DataClasses, EachChildSlotRoundTripsAlone) {
    for (const DataClassInfo& info : DataClasses()) {
        const std::vector<ChildField>& fields = info.schema().children;
        for (size_t i = 0; i < fields.size(); ++i) {
            for (std::string_view childTag : fields[i].tags) {
                const std::string tag(childTag);
                const std::string where =
                    std::string(info.tag) + "/" + std::string(fields[i].member) + "/" + tag;
                CountedPtr<Element> object(info.create());
                std::vector<std::vector<std::string>> expected(fields.size());
                // Single slots for the same tags are told apart by order: the earlier ones are filled first.
                for (size_t j = 0; j <= i; ++j) {
                    if (j < i && !(fields[j].kind == ChildKind::Single && fields[j].tags == fields[i].tags))
                        continue;
                    CountedPtr<Element> child(CreateElement(tag));
                    ASSERT_TRUE(fields[j].accept(*object, child.Get())) << where << ": refused its own tag";
                    expected[j].push_back(tag);
                }
                EXPECT_EQ(Children(*object), expected) << where;
                CountedPtr<Element> back = Reloaded(*object, where);
                ASSERT_TRUE(back);
                EXPECT_EQ(Children(*back), expected) << where;
            }
        }
    }
}
