#pragma once

// Modifiers that bend the lane borders of a profile inside a portion.

#include <orvia/ruvex/elements/portion.h>

namespace Orvia {

class ProfileModifier : public Ruvex::ProfileModifierElement {
public:
    ~ProfileModifier() override;
};

class BorderModifier : public Ruvex::BorderModifierElement {
public:
    ~BorderModifier() override;
};

class BorderOffset : public Ruvex::BorderOffsetElement {
public:
    ~BorderOffset() override;
};

}  // namespace Orvia
