#pragma once

// Start and stop of the library: the factory that makes the library's own objects out of a file, and the text
// encoding of the model's strings.

#include <orvia/ruvex/dom.h>

#include <stdexcept>

namespace Orvia {

// Thrown by Init when the library is already running with another encoding.
class EncodingMismatchError : public std::runtime_error {
public:
    EncodingMismatchError();
};

// Installs an OrviaFactory as the element layer's factory and sets the encoding `mode`. When an OrviaFactory
// is already installed, returns without change if `mode` is the current one and throws EncodingMismatchError
// otherwise (factory and mode are then left as they were). Every network load calls it with the current mode.
void Init(Ruvex::Encoding::Mode mode);

// Uninstalls the factory (whichever is installed); later loads create the element layer's data classes.
void Close();

}  // namespace Orvia
