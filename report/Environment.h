#pragma once

#include <boost/filesystem/path.hpp>
#include <optional>
#include <string>
#include <vector>

#include "report/Report.h"

namespace Tarnex::Reports {

/// The time in UTC, to the nanosecond if `digits`, else to the second.
std::string ToIsoTime(const timespec& time, bool digits);

/// All but the build id; none if there is no regular file at `path`.
std::optional<Parent::FileFacts> ReadFileFacts(const boost::filesystem::path& path);

/// Completes the facts of each file of which only the path is known; without the file, the item
/// is missing.
void AddFileFacts(std::vector<Parent::Item>& plugins);

/// What a person should know of this machine: system, kernel, processor, cores, graphics cards.
Json DescribeMachine();

/// What any outcome depends on, besides files: the kernel, the graphics drivers and cards, and the
/// variables that lead the dynamic loader elsewhere.
Json DescribeEnvironment();

}  // namespace Tarnex::Reports
