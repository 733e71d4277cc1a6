// A file among modules.

#include "collect/ModuleFile.h"
#include "core/support/Exception.h"
#include "fuzz/MemoryFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Tarnex::Fuzz::MemoryFile file(data, size);
    try {
        Tarnex::Collect::ReadModuleFile(file.Path());
    } catch (const Tarnex::Exception&) {
    }
    return 0;
}
