#pragma once

// Rules that fill an area with entities taken from model files.

#include <orvia/ruvex/elements/misc.h>

namespace Orvia {

class EntitiesGeneration : public Ruvex::EntitiesGenerationElement {
public:
    ~EntitiesGeneration() override;
};

class ExternalEntity : public Ruvex::ExternalEntityElement {
public:
    ~ExternalEntity() override;
};

}  // namespace Orvia
