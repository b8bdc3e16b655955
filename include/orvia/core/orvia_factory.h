#pragma once

#include <orvia/ruvex/factory.h>

#include <string>

namespace Orvia {

// Makes the library's runtime object for each tag met while loading; tags it does not map go to the element
// layer's factory. Tags are compared exactly (case included).
class OrviaFactory : public Ruvex::Factory {
public:
    // A new element (count 0) for `tag`; never null.
    Ruvex::Element* Create(const std::string& tag) override;
};

}  // namespace Orvia
