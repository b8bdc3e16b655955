#pragma once

// Cross-section profiles: lanes from left to right separated by borders, the markings and decorations that
// borders carry, and the library files that keep a profile or a marking on its own.

#include <orvia/ruvex/elements/profile.h>

namespace Orvia {

class Profile : public Ruvex::ProfileElement {
public:
    ~Profile() override;
};

class Lane : public Ruvex::LaneElement {
public:
    ~Lane() override;
};

class LaneBorder : public Ruvex::LaneBorderElement {
public:
    ~LaneBorder() override;
};

class Decoration : public Ruvex::DecorationElement {
public:
    ~Decoration() override;
};

class Marking : public Ruvex::MarkingElement {
public:
    ~Marking() override;
};

// A profile library file: one profile with the grounds, markings and materials it names.
class ProfileStandalone : public Ruvex::ProfileStandaloneElement {
public:
    ~ProfileStandalone() override;
};

// A marking library file: one marking with the materials it names.
class MarkingStandalone : public Ruvex::MarkingStandaloneElement {
public:
    ~MarkingStandalone() override;
};

}  // namespace Orvia
