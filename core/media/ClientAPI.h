#pragma once

#include "core/Export.h"
#include "core/media/Streams.h"
#include "core/support/ioPath.h"

namespace Tarnex::Core {

class TARNEX_API ClientAPI {
public:
    /// Opens a media file with the first started parser module that can. Throws `Tarnex::Exception`
    /// with the file's name and the reason if none can.
    static Proc::Pointer<Proc::IStreamReader> OpenSource(const ioPath& path);
};

}  // namespace Tarnex::Core
