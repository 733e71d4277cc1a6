#pragma once

#include <filesystem>
#include <string>

namespace Tarnex::Assay {

/// What is to be checked, and a line that says why that.
struct Chosen {
    std::filesystem::path directory;
    std::string text;
};

/// `app` if given, else the user's own installation if it was copied from this command's folder,
/// else that folder. Renews the user's own if what it was copied from has changed. Throws as
/// `Mirror` does.
Chosen ChooseInstallation(const std::string& app);

}  // namespace Tarnex::Assay
