#include "exercise/Command.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

#include "exercise/Library.h"
#include "exercise/Modules.h"
#include "exercise/lv2/Bundle.h"

namespace Tarnex::Exercise {
namespace {

namespace fs = std::filesystem;

constexpr char USAGE[] =
    "Usage: assayer-exercise list REQUEST\n"
    "       assayer-exercise run REQUEST\n"
    "       assayer-exercise list MODULE_OR_BUNDLE...\n"
    "       assayer-exercise run [--depth load|exercise|stress] MODULE_OR_BUNDLE [ID...]";

/// By the entry points, in the order in which they are looked for.
constexpr std::array<std::pair<const char*, const char*>, 7> ENTRIES{{
    {"ladspa_descriptor", "LADSPA"},
    {"lv2_descriptor", "LV2"},
    {"lv2_lib_descriptor", "LV2"},
    {"clap_entry", "CLAP"},
    {"GetPluginFactory", "VST3"},
    {"vampGetPluginDescriptor", "Vamp"},
    {"f0r_construct", "frei0r"},
}};

bool IsModule(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::array<char, 4> magic{};
    file.read(magic.data(), magic.size());
    return std::string(magic.data(), magic.size()) == "\177ELF";
}

bool IsModuleOrBundle(const std::string& path) {
    return fs::is_directory(path) || IsModule(path);
}

std::string FindInterface(const std::string& path) {
    const Library library(path);
    for (const auto& [symbol, interface] : ENTRIES) {
        if (library.Find<void>(symbol) != nullptr) {
            return interface;
        }
    }
    throw RequestError(path + ": has no entry point of a plugin interface");
}

ModuleRequest ToModule(const fs::path& path, const std::string& bundle) {
    try {
        return {path.stem(), FindInterface(path), path, bundle};
    } catch (const Failure& failure) {
        throw RequestError(path.string() + ": " + failure.what());
    }
}

std::vector<ModuleRequest> ReadVst3Bundle(const fs::path& bundle) {
    std::vector<ModuleRequest> modules;
    for (const auto& entry : fs::recursive_directory_iterator(bundle)) {
        if (entry.path().extension() == ".so" && IsModule(entry.path())) {
            modules.push_back(ToModule(entry.path(), bundle));
        }
    }
    return modules;
}

std::vector<ModuleRequest> ReadLv2Bundle(const fs::path& bundle) {
    std::vector<ModuleRequest> modules;
    for (const std::string& binary : FindLv2Binaries(bundle)) {
        modules.push_back(ToModule(binary, bundle));
    }
    return modules;
}

std::vector<ModuleRequest> ReadModules(const std::string& argument) {
    const fs::path path = fs::absolute(argument).lexically_normal();
    const fs::path whole = path.has_filename() ? path : path.parent_path();
    if (!IsModuleOrBundle(whole)) {
        throw RequestError(argument + ": is no module and no bundle");
    }
    if (!fs::is_directory(whole)) {
        return {ToModule(whole, "")};
    }
    auto modules =
        fs::exists(whole / "manifest.ttl") ? ReadLv2Bundle(whole) : ReadVst3Bundle(whole);
    if (modules.empty()) {
        throw RequestError(argument + ": holds no module");
    }
    if (modules.size() == 1) {
        modules.front().name = whole.stem();  // many bundles call their module the same
    }
    return modules;
}

std::vector<std::string> ListIds(const ModuleRequest& module) {
    try {
        return LoadModule(module).ids;
    } catch (const Failure& failure) {
        throw RequestError(module.path + ": " + failure.what());
    }
}

/// Names the exercises: the wanted ones, of the modules that have them, or all.
void AddExercises(Request& request, const std::vector<std::string>& wanted) {
    for (const ModuleRequest& module : request.modules) {
        for (const std::string& id : ListIds(module)) {
            if (wanted.empty() || std::ranges::find(wanted, id) != wanted.end()) {
                request.exercises.push_back({module.name, id});
            }
        }
    }
    for (const std::string& id : wanted) {
        if (std::ranges::find(request.exercises, id, &ExerciseRequest::id) ==
            request.exercises.end()) {
            throw RequestError("no such plugin: " + id);
        }
    }
}

Request ReadShortRun(std::vector<std::string> arguments, Depth depth) {
    Request request{depth, ReadModules(arguments.front()), {}};
    arguments.erase(arguments.begin());
    AddExercises(request, arguments);
    return request;
}

Request ReadRun(std::vector<std::string> arguments) {
    Depth depth = Depth::Exercise;
    const bool hasDepth = arguments.size() > 2 && arguments.front() == "--depth";
    if (hasDepth) {
        depth = ParseDepth(arguments[1]);
        arguments.erase(arguments.begin(), arguments.begin() + 2);
    }
    if (hasDepth || IsModuleOrBundle(arguments.front())) {
        return ReadShortRun(arguments, depth);
    }
    if (arguments.size() != 1) {
        throw RequestError(USAGE);
    }
    return ReadRequest(arguments.front());
}

Request ReadList(const std::vector<std::string>& arguments) {
    if (arguments.size() == 1 && !IsModuleOrBundle(arguments.front())) {
        return ReadRequest(arguments.front());
    }
    Request request;
    for (const std::string& argument : arguments) {
        for (ModuleRequest& module : ReadModules(argument)) {
            request.modules.push_back(std::move(module));
        }
    }
    return request;
}

}  // namespace

Command ReadCommand(const std::vector<std::string>& arguments) {
    const std::string verb = arguments.empty() ? "" : arguments.front();
    if (arguments.size() < 2 || (verb != "list" && verb != "run")) {
        throw RequestError(USAGE);
    }
    const std::vector<std::string> rest(arguments.begin() + 1, arguments.end());
    const bool isList = verb == "list";
    return {isList, isList ? ReadList(rest) : ReadRun(rest)};
}

}  // namespace Tarnex::Exercise
