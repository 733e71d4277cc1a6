#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "assay/Report.h"

namespace Tarnex::Assay {

/// None if there is no regular file at `path`.
std::optional<Parent::FileFacts> ReadFileFacts(const std::filesystem::path& path);

/// What a person should know of this machine: system, kernel, processor, cores, graphics cards.
Json DescribeMachine();

/// What an outcome depends on besides the module itself: the kernel, the libraries that are
/// installed, the graphics drivers. Two texts of it differ if any of these may have changed.
Json DescribeEnvironment();

/// The same of the files that the media core's process had mapped.
Json DescribeFiles(const std::vector<std::string>& paths);

}  // namespace Tarnex::Assay
