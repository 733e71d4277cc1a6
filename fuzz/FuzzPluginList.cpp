// The list of the installed plugins.

#include "core/support/Exception.h"
#include "fuzz/MemoryFile.h"
#include "mediacore/PluginList.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Tarnex::Fuzz::MemoryFile file(data, size);
    try {
        for (const auto& [factory, plugins] : Tarnex::Core::ReadPluginLists(file.Path())) {
            for (const std::string& plugin : plugins) {
                Tarnex::Fuzz::Require(!plugin.empty() && plugin.find('/') == std::string::npos);
            }
        }
    } catch (const Tarnex::Exception&) {
    }
    return 0;
}
