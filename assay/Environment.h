#pragma once

#include <boost/filesystem/path.hpp>
#include <optional>
#include <string>
#include <vector>

#include "assay/Report.h"

namespace Tarnex::Assay {

/// The time in UTC, to the nanosecond if `digits`, else to the second.
std::string ToIsoTime(const timespec& time, bool digits);

/// All but the build id; none if there is no regular file at `path`.
std::optional<Parent::FileFacts> ReadFileFacts(const boost::filesystem::path& path);

/// What a person should know of this machine: system, kernel, processor, cores, graphics cards.
Json DescribeMachine();

/// What any outcome depends on: the kernel, the installed libraries, the graphics drivers.
Json DescribeEnvironment();

/// The facts of those files that are there.
Json DescribeFiles(const std::vector<std::string>& paths);

}  // namespace Tarnex::Assay
