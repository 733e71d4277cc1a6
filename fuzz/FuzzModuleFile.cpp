// A file among modules.

#include "core/support/Exception.h"
#include "fuzz/MemoryFile.h"
#include "installation/ModuleFile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Tarnex::Fuzz::MemoryFile file(data, size);
    try {
        Tarnex::Installations::ReadModuleFile(file.Path());
    } catch (const Tarnex::Exception&) {
    }
    return 0;
}
