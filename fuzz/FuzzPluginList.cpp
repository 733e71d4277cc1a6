// The list of the installed plugins.

#include "core/support/Exception.h"
#include "fuzz/MemoryFile.h"
#include "support/PluginList.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Tarnex::Fuzz::MemoryFile file(data, size);
    try {
        std::size_t count = 0;
        for (const auto& [factory, plugins] : Tarnex::Core::Utils::ReadPluginLists(file.Path())) {
            for (const std::string& plugin : plugins) {
                ++count;
                Tarnex::Fuzz::Require(!plugin.empty() && plugin.find('/') == std::string::npos);
            }
        }
        Tarnex::Fuzz::Require(count > 0);
    } catch (const Tarnex::Exception&) {
    }
    return 0;
}
