#include <orvia/version.h>

namespace Orvia {

const char* Version() {
    return ORVIA_VERSION_STRING;
}

}  // namespace Orvia
