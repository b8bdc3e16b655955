#include <orvia/core/element_copy.h>

#include <orvia/ruvex/factory.h>
#include <orvia/ruvex/schema.h>

#include <string>
#include <vector>

namespace Orvia {

bool CopyElementContent(const Ruvex::Element& source, Ruvex::Element& target) {
    const Ruvex::Schema& schema = source.GetSchema();
    if (&schema != &target.GetSchema()) return false;
    Ruvex::FormatBuffer buffer;
    for (const Ruvex::AttributeField& field : schema.attributes)
        field.read(target, field.format(source, buffer, field), field);
    for (const Ruvex::ChildField& field : schema.children) {
        struct Context {
            Ruvex::Element* target;
            const Ruvex::ChildField* field;
        } context{&target, &field};
        field.forEach(source, &context, [](void* opaque, Ruvex::Element* child) {
            auto& c = *static_cast<Context*>(opaque);
            Ruvex::CountedPtr<Ruvex::Element> copy(CloneElement(*child));
            if (copy) c.field->accept(*c.target, copy.Get());
        });
    }
    if (const Ruvex::PreservedContent* kept = source.GetPreserved())
        target.EditPreserved() = *kept;
    else
        target.ClearPreserved();
    return true;
}

Ruvex::Element* CloneElement(const Ruvex::Element& source) {
    Ruvex::Element* copy = Ruvex::CreateElement(source.GetTagName());
    if (!copy) return nullptr;
    if (!CopyElementContent(source, *copy)) {
        copy->Release();  // never referenced: destroyed
        return nullptr;
    }
    return copy;
}

bool ElementContentEquals(const Ruvex::Element& a, const Ruvex::Element& b) {
    if (&a == &b) return true;
    const Ruvex::Schema& schema = a.GetSchema();
    if (&schema != &b.GetSchema() || a.GetTagName() != b.GetTagName()) return false;
    Ruvex::FormatBuffer bufferA;
    Ruvex::FormatBuffer bufferB;
    for (const Ruvex::AttributeField& field : schema.attributes)
        if (field.format(a, bufferA, field) != field.format(b, bufferB, field)) return false;
    for (const Ruvex::ChildField& field : schema.children) {
        std::vector<const Ruvex::Element*> left;
        std::vector<const Ruvex::Element*> right;
        auto collect = [](void* context, Ruvex::Element* child) {
            static_cast<std::vector<const Ruvex::Element*>*>(context)->push_back(child);
        };
        field.forEach(a, &left, collect);
        field.forEach(b, &right, collect);
        if (left.size() != right.size()) return false;
        for (size_t i = 0; i < left.size(); ++i)
            if (!ElementContentEquals(*left[i], *right[i])) return false;
    }
    const Ruvex::PreservedContent* keptA = a.GetPreserved();
    const Ruvex::PreservedContent* keptB = b.GetPreserved();
    const size_t countA = keptA ? keptA->attributes.size() : 0;
    const size_t countB = keptB ? keptB->attributes.size() : 0;
    if (countA != countB) return false;
    for (size_t i = 0; i < countA; ++i)
        if (keptA->attributes[i].name != keptB->attributes[i].name ||
            keptA->attributes[i].value != keptB->attributes[i].value)
            return false;
    return true;
}

}  // namespace Orvia
