#include "collect/ChosenInstallation.h"

#include <fmt/format.h>
#include <boost/filesystem.hpp>

#include <exception>
#include <utility>

#include "collect/Collecting.h"
#include "collect/Mirror.h"
#include "core/support/Exception.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;
using Installations::Installation;

bool HasProgram(const Installation& installation) {
    boost::system::error_code ignored;
    return fs::exists(installation.GetProgram(), ignored);
}

/// Throws if there is none and none can be made.
ChosenInstallation PrepareOwn(const Installation& own, const fs::path& source) {
    fs::create_directories(own.GetDirectory());
    InstallationLock lock(own.GetDirectory());
    std::vector<std::string> notes;
    bool copied = false;
    if (lock.TryAlone()) {
        try {
            const Collected collected = CollectInto(own, {});
            copied = collected.copied;
            if (!collected.changes.IsEmpty()) {
                notes.push_back(collected.Summarise());
            }
        } catch (const std::exception& error) {
            if (!HasProgram(own)) {
                throw;
            }
            notes.push_back(fmt::format("nothing is collected: {}", error.what()));
        }
    } else {
        notes.emplace_back("nothing is collected: another check uses the installation");
    }
    lock.Share();
    return {own,
            fmt::format("your own, {} from {}", copied ? "renewed" : "copied", source.string()),
            std::move(notes), std::move(lock)};
}

ChosenInstallation Choose(const std::string& app) {
    if (!app.empty()) {
        return Share(Installation(app), "as given");
    }
    const Installation command = Installation::OfThisProgram();
    const auto own = Installation::FindOwn();
    if (!own) {
        return Share(command, "the command's; without a home there is none of your own");
    }
    const auto source = GetSource(*own);
    if (source && source != command.GetDirectory()) {
        return Share(command, "the command's; your own is a copy of " + source->string());
    }
    try {
        return PrepareOwn(*own, command.GetDirectory());
    } catch (const std::exception& error) {
        return Share(command, fmt::format("the command's; you have none: {}", error.what()));
    }
}

}  // namespace

ChosenInstallation Share(const Installation& installation, const std::string& reason) {
    InstallationLock lock(installation.GetDirectory());
    lock.Share();
    return {installation, reason, {}, std::move(lock)};
}

ChosenInstallation ChooseInstallation(const std::string& app) {
    ChosenInstallation chosen = Choose(app);
    if (!HasProgram(chosen.installation)) {
        throw Exception("there is no Assayer in " + chosen.installation.GetDirectory().string());
    }
    return chosen;
}

}  // namespace Tarnex::Collect
