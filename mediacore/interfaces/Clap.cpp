#include <clap/entry.h>
#include <clap/plugin-factory.h>
#include <fmt/format.h>

#include <boost/filesystem.hpp>
#include <cstddef>

#include "mediacore/interfaces/Interface.h"
#include "mediacore/interfaces/Listing.h"

namespace Tarnex::Core {
namespace {

// Modules of all builds share this layout: three 32-bit numbers, then pointers.
constexpr std::size_t POINTER = sizeof(void*);
constexpr std::size_t VERSION_SIZE = (12 + POINTER - 1) / POINTER * POINTER;
static_assert(sizeof(clap_version_t) == 12);
static_assert(offsetof(clap_plugin_entry_t, init) == VERSION_SIZE);
static_assert(offsetof(clap_plugin_entry_t, deinit) == VERSION_SIZE + POINTER);
static_assert(offsetof(clap_plugin_entry_t, get_factory) == VERSION_SIZE + 2 * POINTER);
static_assert(offsetof(clap_plugin_descriptor_t, id) == VERSION_SIZE);
static_assert(offsetof(clap_plugin_descriptor_t, name) == VERSION_SIZE + POINTER);
static_assert(offsetof(clap_plugin_factory_t, get_plugin_count) == 0);
static_assert(offsetof(clap_plugin_factory_t, get_plugin_descriptor) == POINTER);
static_assert(offsetof(clap_plugin_factory_t, create_plugin) == 2 * POINTER);
static_assert(sizeof(bool) == 1);

/// The bundle that holds the file, or the file itself.
std::string GetPluginPath(const std::string& file) {
    for (boost::filesystem::path path = file; !path.empty(); path = path.parent_path()) {
        if (path.extension() == ".clap") {
            return path.string();
        }
    }
    return file;
}

const clap_plugin_entry_t& GetEntry(const SharedLibrary& library) {
    const auto& entry = *library.Get<const clap_plugin_entry_t>("clap_entry");
    if (!clap_version_is_compatible(entry.clap_version)) {
        library.Refuse(fmt::format("has version {}.{}.{} of the CLAP interface instead of {}",
                                   entry.clap_version.major, entry.clap_version.minor,
                                   entry.clap_version.revision, CLAP_VERSION_MAJOR));
    }
    RequireFunction(library, entry.init, "init");
    RequireFunction(library, entry.deinit, "deinit");
    RequireFunction(library, entry.get_factory, "get_factory");
    return entry;
}

const clap_plugin_factory_t& GetFactory(const SharedLibrary& library,
                                        const clap_plugin_entry_t& entry) {
    const auto* factory =
        static_cast<const clap_plugin_factory_t*>(entry.get_factory(CLAP_PLUGIN_FACTORY_ID));
    if (factory == nullptr) {
        library.Refuse("has no CLAP plugin factory");
    }
    RequireFunction(library, factory->get_plugin_count, "get_plugin_count");
    RequireFunction(library, factory->get_plugin_descriptor, "get_plugin_descriptor");
    RequireFunction(library, factory->create_plugin, "create_plugin");
    return *factory;
}

bool IsBlank(const char* text) {
    return text == nullptr || *text == '\0';
}

void CheckPlugin(const SharedLibrary& library, const clap_plugin_descriptor_t* plugin,
                 unsigned index) {
    const char* missing = plugin == nullptr       ? "description"
                          : IsBlank(plugin->id)   ? "id"
                          : IsBlank(plugin->name) ? "name"
                                                  : nullptr;
    if (missing != nullptr) {
        library.Refuse(fmt::format("CLAP plugin {} has no {}", index, missing));
    }
}

void Check(const SharedLibrary& library) {
    const clap_plugin_entry_t& entry = GetEntry(library);
    const std::string path = GetPluginPath(library.GetPath());
    if (!entry.init(path.c_str())) {
        library.Refuse("refused to initialise");
    }
    const clap_plugin_factory_t& factory = GetFactory(library, entry);
    const unsigned count = factory.get_plugin_count(&factory);
    RequireCredible(library, count, "CLAP plugins");
    if (count == 0) {
        library.Refuse("describes no CLAP plugin");
    }
    for (unsigned index = 0; index < count; ++index) {
        CheckPlugin(library, factory.get_plugin_descriptor(&factory, index), index);
    }
}

}  // namespace

constinit const Interface CLAP{{"clap_entry"}, Check};

}  // namespace Tarnex::Core
