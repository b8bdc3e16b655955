#pragma once

#include <orvia/ruvex/factory.h>

#include <string>
#include <string_view>

namespace Orvia {

// Makes the library's runtime object for each tag met while loading; tags it does not map go to the element
// layer's factory. Tags are compared exactly (case included).
class OrviaFactory : public Ruvex::Factory {
public:
    // A new element (count 0) for `tag`; never null.
    Ruvex::Element* Create(const std::string& tag) override;
    // The creator of the class Create makes for `tag`; null for a tag without a class (kept as read) or in a
    // class derived from this one (which may decide otherwise).
    Ruvex::Element* (*FindCreator(std::string_view tag) const)() override;
};

}  // namespace Orvia
