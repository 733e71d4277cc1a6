#include "exercise/Request.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>

namespace Tarnex::Exercise {
namespace {

using Json = nlohmann::json;

constexpr std::array INTERFACES{"LADSPA", "LV2", "CLAP", "VST3", "Vamp", "frei0r"};

void RequireInterface(const ModuleRequest& module) {
    if (std::ranges::find(INTERFACES, module.interface) == INTERFACES.end()) {
        throw RequestError(fmt::format("module {} has the unknown interface \"{}\"", module.name,
                                       module.interface));
    }
}

ModuleRequest ToModule(const Json& json) {
    ModuleRequest module{json.at("name"), json.at("interface"), json.at("path"),
                         json.value("bundle", "")};
    RequireInterface(module);
    return module;
}

Request ToRequest(const Json& json) {
    Request request;
    request.depth = ParseDepth(json.value("depth", "exercise"));
    for (const Json& module : json.at("modules")) {
        request.modules.push_back(ToModule(module));
    }
    for (const Json& exercise : json.value("exercises", Json::array())) {
        request.exercises.push_back({exercise.at("module"), exercise.at("id")});
        static_cast<void>(request.GetModule(request.exercises.back().module));
    }
    return request;
}

}  // namespace

Depth ParseDepth(const std::string& word) {
    if (word == "load") {
        return Depth::Load;
    }
    if (word == "exercise") {
        return Depth::Exercise;
    }
    if (word == "stress") {
        return Depth::Stress;
    }
    throw RequestError("the depth \"" + word + "\" isn't load, exercise or stress");
}

const ModuleRequest& Request::GetModule(const std::string& name) const {
    const auto found = std::ranges::find(modules, name, &ModuleRequest::name);
    if (found == modules.end()) {
        throw RequestError("an exercise names the module \"" + name + "\", which isn't listed");
    }
    return *found;
}

Request ReadRequest(const std::string& file) {
    std::ifstream stream(file);
    if (!stream) {
        throw RequestError(file + ": can't be read: " + std::strerror(errno));
    }
    try {
        return ToRequest(Json::parse(stream));
    } catch (const Json::exception& error) {
        throw RequestError(file + ": " + error.what());
    } catch (const RequestError& error) {
        throw RequestError(file + ": " + error.what());
    }
}

}  // namespace Tarnex::Exercise
