#include <orvia/core/library.h>
#include <orvia/core/orvia_factory.h>
#include <orvia/ruvex/factory.h>

namespace Orvia {

EncodingMismatchError::EncodingMismatchError()
    : std::runtime_error("Error, trying to initialize Orvia library with different encoding.") {}

void Init(Ruvex::Encoding::Mode mode) {
    if (dynamic_cast<OrviaFactory*>(Ruvex::GetFactory())) {
        if (mode != Ruvex::Encoding::GetMode()) throw EncodingMismatchError();
        return;
    }
    Ruvex::SetFactory(new OrviaFactory);
    Ruvex::Encoding::SetMode(mode);
}

void Close() {
    Ruvex::SetFactory(nullptr);
}

}  // namespace Orvia
