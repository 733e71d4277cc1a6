#pragma once

#include "core/media/Streams.h"
#include "core/support/ioPath.h"

namespace Tarnex::Libav {

/// Writes the whole stream to a new file with libavformat. The extension selects the container.
/// Throws `Tarnex::Exception` with the file's name and the reason if it can't be written.
TARNEX_TYPE void WriteFile(const ioPath& path, Proc::ICodedStream& stream);

}  // namespace Tarnex::Libav
