#pragma once

#include "core/media/Streams.h"
#include "core/support/ioPath.h"

namespace Tarnex::Libav {

/// Opens a media file with libavformat. Each of its streams reads the file on its own. Throws
/// `Tarnex::Exception` with the file's name and the reason if it can't be read.
TARNEX_TYPE Proc::Pointer<Proc::IStreamReader> OpenFile(const ioPath& path);

}  // namespace Tarnex::Libav
