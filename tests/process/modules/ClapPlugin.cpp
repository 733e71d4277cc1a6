// A CLAP module of two plugins that misbehaves as its file name says.

#include <clap/entry.h>
#include <clap/plugin-factory.h>

#include <cstring>
#include <limits>
#include <string_view>

#include "tests/process/modules/Behaviour.h"
#include "tests/process/modules/Faults.h"

namespace {

bool Is(const char* behaviour) {
    return Behaviour() == behaviour;
}

std::uint32_t CountPlugins(const clap_plugin_factory_t*) {
    return Is("no-plugins")   ? 0
           : Is("millions")   ? 5'000'000
           : Is("below-zero") ? std::numeric_limits<std::uint32_t>::max()
                              : 2;
}

const clap_plugin_descriptor_t* DescribePlugin(const clap_plugin_factory_t*, std::uint32_t index) {
    static clap_plugin_descriptor_t plugin{};
    const bool isSecond = index == 1;
    plugin.id = isSecond && Is("null-id") ? nullptr : isSecond && Is("empty-id") ? "" : "test.clap";
    plugin.name = isSecond && Is("null-name") ? nullptr : "Test";
    return index > 1 || (isSecond && Is("null-plugin")) ? nullptr : &plugin;
}

const clap_plugin_t* CreatePlugin(const clap_plugin_factory_t*, const clap_host_t*, const char*) {
    return nullptr;
}

/// Refuses any path but that of a module right in the installation or of a bundle.
bool Initialize(const char* path) {
    Faults::Make(Behaviour());
    const std::string wanted = Is("in-bundle") ? "in-bundle.clap" : FileName();
    return std::string_view(path).ends_with(wanted) && !Is("refuses");
}

const void* GetFactory(const char* id) {
    static const clap_plugin_factory_t factory{
        CountPlugins, Is("no-describer") ? nullptr : DescribePlugin, CreatePlugin};
    const bool isWanted = std::strcmp(id, "clap.plugin-factory") == 0;
    return isWanted && !Is("no-factory") ? &factory : nullptr;
}

clap_plugin_entry_t MakeEntry() {
    const std::uint32_t major = Is("old-version") ? 0 : 1;
    return {{major, 9, 9}, Is("no-init") ? nullptr : Initialize, [] {}, GetFactory};
}

}  // namespace

extern "C" {
const clap_plugin_entry_t clap_entry = MakeEntry();
}
