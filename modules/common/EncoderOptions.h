#pragma once

#include <string>

#include "core/media/Property.h"
#include "core/media/RefCountable.h"
#include "core/support/Exception.h"

namespace Tarnex::Modules {

/// How an encoder should work.
struct EncoderOptions {
    bool isFastest = false;
    bool isSingleThreaded = false;
    std::string own;  ///< options of the encoder's library; see `IPreset::ITEM_OPTIONS`
};

/// Whether the core limits each coder to one thread.
[[nodiscard]] bool IsSingleThreaded();

/// Reads the encoder's preset and the core's limit on threads.
[[nodiscard]] EncoderOptions ReadEncoderOptions(const Proc::Property& preset);

/// Returns `stream`. Throws `Tarnex::Exception` if it is null.
template <class Stream>
const Proc::Pointer<Stream>& RequireStream(const Proc::Pointer<Stream>& stream) {
    if (!stream) {
        throw Exception("There is no stream to encode");
    }
    return stream;
}

}  // namespace Tarnex::Modules
