#pragma once

// Records of older files that the converter reads: indices used before names, old elevation curves and the
// version stamp.

#include <orvia/ruvex/elements/misc.h>

#include <string>

namespace QorOldData {

class LegacyElement : public Ruvex::LegacyElement {
public:
    ~LegacyElement() override;
};

class LegacySZCurveElement : public Ruvex::LegacySZCurveElement {
public:
    ~LegacySZCurveElement() override;
};

// Saved under the tag it was made for ("Version" or "QorVersion").
class VersionElement : public Ruvex::VersionElement {
public:
    VersionElement() = default;
    explicit VersionElement(const std::string& tag) : Ruvex::VersionElement(tag) {}
    ~VersionElement() override;
};

}  // namespace QorOldData
