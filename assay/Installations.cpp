#include "assay/Installations.h"

#include "assay/Folders.h"
#include "assay/Mirror.h"

namespace Tarnex::Assay {
namespace {

namespace fs = std::filesystem;

/// One that can't be found, for want of a home, isn't there.
fs::path FindOwn() {
    try {
        return GetOwnInstallation();
    } catch (const std::exception&) {
        return "";
    }
}

Chosen Renew(const fs::path& own, const fs::path& source) {
    const bool renewed = Mirror(source, own);
    return {own, "your own, " + std::string(renewed ? "renewed" : "copied") + " from " +
                     source.string()};
}

}  // namespace

Chosen ChooseInstallation(const std::string& app) {
    if (!app.empty()) {
        return {fs::absolute(app).lexically_normal(), "as you say"};
    }
    const fs::path folder = GetCommandFolder();
    const fs::path own = FindOwn();
    const auto source = GetSource(own);
    if (source == folder) {
        return Renew(own, folder);
    }
    return {folder, source ? "the command's; your own is a copy of " + source->string()
                           : "the command's; assay collect adds this machine's plugins"};
}

}  // namespace Tarnex::Assay
