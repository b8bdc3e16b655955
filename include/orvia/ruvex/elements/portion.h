#pragma once

// Data of the portions a track is cut into and of the modifiers that bend lane borders inside a portion.

#include <orvia/ruvex/schema.h>

#include <cstdint>
#include <string>

namespace Ruvex {

// A control point of a border's drift: t is the relative position along the portion (0 start, 1 end), yOffset
// the lateral displacement in metres (positive to the right), dirIn and dirOut the slopes dy/dx arriving and
// leaving.
#define RUVEX_BORDER_OFFSET_TABLE(F)         \
    F(ATTR, double, T, "t", 0.0)             \
    F(ATTR, double, YOffset, "yOffset", 0.0) \
    F(ATTR, double, DirIn, "dirIn", 0.0)     \
    F(ATTR, double, DirOut, "dirOut", 0.0)

class BorderOffsetElement : public Element {
    RUVEX_FIELDS(BorderOffsetElement, Element, RUVEX_BORDER_OFFSET_TABLE)
};

// The offsets of one border, in increasing t; id is the index of the border in the profile.
#define RUVEX_BORDER_MODIFIER_TABLE(F) \
    F(ATTR, uint64_t, Id, "id", 0u)    \
    F(LIST, BorderOffsetElement, BorderOffsets, "BorderOffset")

class BorderModifierElement : public Element {
    RUVEX_FIELDS(BorderModifierElement, Element, RUVEX_BORDER_MODIFIER_TABLE)
};

// At most one border modifier per border id.
#define RUVEX_PROFILE_MODIFIER_TABLE(F) F(LIST, BorderModifierElement, BorderModifiers, "BorderModifier")

class ProfileModifierElement : public Element {
    RUVEX_FIELDS(ProfileModifierElement, Element, RUVEX_PROFILE_MODIFIER_TABLE)
};

// A stretch of a track's axis up to endDistance (metres; it starts where the previous portion ends), with the
// profiles at its two ends named among the sub-network's profiles.
#define RUVEX_PORTION_TABLE(F)                                     \
    F(ATTR, double, EndDistance, "endDistance", 0.0)               \
    F(ATTR, std::string, StartProfileName, "startProfileName", "") \
    F(ATTR, std::string, EndProfileName, "endProfileName", "")     \
    F(CHILD, ProfileModifierElement, ProfileModifier, "ProfileModifier")

class PortionElement : public Element {
    RUVEX_FIELDS(PortionElement, Element, RUVEX_PORTION_TABLE)
};

}  // namespace Ruvex
