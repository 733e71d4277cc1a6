#include "collect/OwnInstallation.h"

#include <fmt/format.h>
#include <boost/filesystem.hpp>

#include "collect/Mirror.h"
#include "core/support/Exception.h"
#include "platform/Environment.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;

constexpr const char* PROGRAM = "Assayer";

fs::path GetProgramFolder() {
    return fs::path(Platform::GetProgramPath()).parent_path();
}

Chosen Choose(const std::string& app) {
    if (!app.empty()) {
        return {fs::absolute(app).lexically_normal(), "as given"};
    }
    const fs::path folder = GetProgramFolder();
    const fs::path own = GetOwnInstallation();
    const auto source = GetSource(own);
    if (source == folder) {
        const bool renewed = Mirror(folder, own);
        return {own, fmt::format("your own, {} from {}", renewed ? "renewed" : "copied",
                                 folder.string())};
    }
    return {folder, source ? "the command's; your own is a copy of " + source->string()
                           : "the command's; assay collect adds this machine's plugins"};
}

}  // namespace

fs::path GetOwnInstallation() {
    return fs::path(Platform::GetUserDataFolder()) / "assayer/app";
}

Chosen ChooseInstallation(const std::string& app) {
    Chosen chosen = Choose(app);
    if (!fs::exists(chosen.directory / PROGRAM)) {
        throw Exception("there is no Assayer in " + chosen.directory.string());
    }
    return chosen;
}

bool MakeInstallation(const fs::path& directory) {
    const bool isOther = fs::exists(directory / PROGRAM) && !GetSource(directory);
    return !isOther && Mirror(GetProgramFolder(), directory);
}

}  // namespace Tarnex::Collect
