#pragma once

#include <string>

#include "core/media/Property.h"
#include "core/media/RefCountable.h"
#include "core/support/Exception.h"

namespace Tarnex::Modules {

/// How an encoder is to work.
struct EncoderOptions {
    bool isFastest = false;
    bool isSingleThreaded = false;
    std::string own;  ///< the library's own options; see `IPreset::ITEM_OPTIONS`
};

/// Whether the core holds its coders to one thread each.
[[nodiscard]] bool IsSingleThreaded();

/// What the preset of an encoder and the core ask for.
[[nodiscard]] EncoderOptions ReadEncoderOptions(const Proc::Property& preset);

/// The stream, or a `Tarnex::Exception` where there is none.
template <class Stream>
const Proc::Pointer<Stream>& RequireStream(const Proc::Pointer<Stream>& stream) {
    if (!stream) {
        throw Exception("There is no stream to encode");
    }
    return stream;
}

}  // namespace Tarnex::Modules
