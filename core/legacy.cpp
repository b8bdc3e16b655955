#include <orvia/core/legacy.h>

namespace QorOldData {

LegacyElement::~LegacyElement() = default;
LegacySZCurveElement::~LegacySZCurveElement() = default;
VersionElement::~VersionElement() = default;

}  // namespace QorOldData
