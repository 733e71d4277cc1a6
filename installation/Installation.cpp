#include "installation/Installation.h"

#include <algorithm>
#include <boost/filesystem.hpp>

#include "core/media/AppLocations.h"
#include "core/support/Exception.h"
#include "installation/ModuleFile.h"
#include "platform/Environment.h"
#include "support/PluginList.h"

namespace Tarnex::Installations {
namespace {

namespace fs = boost::filesystem;

constexpr int MAX_LINKS = 40;  // as many as Linux follows in one path
constexpr const char* PROGRAM = "Assayer";
constexpr const char* LISTER = "assayer-list";
constexpr const char* EXERCISER = "assayer-exercise";
constexpr const char* LIBRARY = "lib";  // how the names of the programs' libraries begin

/// The folder of that kind which holds the file, however deep; empty if none does.
fs::path FindFolder(const fs::path& file, const char* extension) {
    for (fs::path folder = file.parent_path(); folder.has_relative_path();
         folder = folder.parent_path()) {
        if (folder.extension() == extension) {
            return folder;
        }
    }
    return {};
}

Interface GetUsualInterface(const std::string& factory) {
    const auto usual = std::ranges::find(INTERFACES, factory, &InterfaceTraits::factory);
    return usual == INTERFACES.end() ? Interface::Own : usual->interface;
}

/// Hosts know CLAP and VST3 modules by the names of files and folders alone, and those in an LV2
/// bundle by the bundle; a module with several interfaces is one that its place makes it.
Interface ChooseInterface(const std::vector<Interface>& interfaces, const fs::path& module,
                          const std::string& factory) {
    const auto fits = [&](Interface interface) {
        return interface != Interface::Clap && interface != Interface::Vst3 &&
               TraitsOf(interface).factory == factory;
    };
    if (fits(Interface::Lv2) && !FindFolder(module, ".lv2").empty() &&
        std::ranges::count(interfaces, Interface::Lv2) > 0) {
        return Interface::Lv2;
    }
    const auto found = std::ranges::find_if(interfaces, fits);
    return found == interfaces.end() ? GetUsualInterface(factory) : *found;
}

}  // namespace

Installation::Installation(const fs::path& directory)
    : directory(fs::absolute(directory).lexically_normal()) {}

fs::path Installation::GetProgram() const {
    return directory / PROGRAM;
}

fs::path Installation::GetLister() const {
    return directory / LISTER;
}

fs::path Installation::GetExerciser() const {
    return directory / EXERCISER;
}

fs::path Installation::GetPluginList() const {
    return directory / Core::PLUGIN_LIST_FILE;
}

fs::path Installation::GetResources() const {
    return directory / "resources";
}

fs::path Installation::GetSamples() const {
    return GetResources() / "codecSamples";
}

fs::path Installation::GetModule(const std::string& plugin) const {
    return directory / (plugin + Core::MODULE_EXTENSION);
}

bool Installation::HasModule(const std::string& plugin) const {
    boost::system::error_code ignored;
    return fs::exists(GetModule(plugin), ignored);
}

bool Installation::IsOwn() const {
    boost::system::error_code ignored;
    const auto own = FindOwn();
    return own &&
           (own->directory == directory || fs::equivalent(own->directory, directory, ignored));
}

std::optional<Installation> Installation::FindOwn() {
    const auto data = Platform::FindUserDataFolder();
    return data ? std::optional<Installation>(fs::path(*data) / "assayer/app") : std::nullopt;
}

Installation Installation::OfThisProgram() {
    return Installation(fs::path(Platform::GetProgramPath()).parent_path());
}

Core::Utils::PluginLists Installation::ReadLists() const {
    return fs::exists(GetPluginList()) ? Core::Utils::ReadPluginLists(GetPluginList().native())
                                       : Core::Utils::PluginLists();
}

std::vector<PluginPlace> Installation::ReadOrder() const {
    auto lists = Core::Utils::ReadPluginLists(GetPluginList().native());
    std::vector<PluginPlace> order{{Core::OGL_MANAGER, Core::OGL_MANAGER}};
    for (const char* factory : Core::PLUGIN_FACTORIES) {
        for (const std::string& name : lists[factory]) {
            order.push_back({name, factory});
        }
    }
    return order;
}

/// The whole path counts, as it does there.
bool Installation::HasSample(const std::string& codecId) const {
    boost::system::error_code ignored;
    const fs::path folder = fs::canonical(GetSamples(), ignored);
    const fs::directory_iterator samples(folder, ignored);
    return std::any_of(begin(samples), end(samples), [&](const fs::directory_entry& entry) {
        return entry.path().native().find(codecId) != std::string::npos;
    });
}

bool IsProgramFile(const fs::path& file) {
    const std::string name = file.filename().string();
    return name == PROGRAM || name == LISTER || name == EXERCISER || name.starts_with(LIBRARY);
}

std::string GetPlugin(const fs::path& file) {
    return file.extension() == Core::MODULE_EXTENSION ? file.stem().string() : "";
}

Interface FindInterface(const fs::path& module, const std::string& factory) {
    if (module.extension() == ".clap") {
        return Interface::Clap;
    }
    if (!FindFolder(module, ".vst3").empty() || module.extension() == ".vst3") {
        return Interface::Vst3;
    }
    try {
        return ChooseInterface(ReadModuleFile(module).interfaces, module, factory);
    } catch (const Exception&) {
        return GetUsualInterface(factory);
    }
}

fs::path GetBundle(fs::path module, Interface interface) {
    const char* extension = interface == Interface::Lv2    ? ".lv2"
                            : interface == Interface::Vst3 ? ".vst3"
                                                           : nullptr;
    if (extension == nullptr) {
        return {};
    }
    boost::system::error_code noLink;
    for (int i = 0; i < MAX_LINKS; ++i) {
        if (fs::path bundle = FindFolder(module, extension); !bundle.empty()) {
            return bundle;
        }
        const fs::path target = fs::read_symlink(module, noLink);
        if (noLink) {
            break;
        }
        module = fs::absolute(target, module.parent_path());
    }
    return {};
}

}  // namespace Tarnex::Installations
