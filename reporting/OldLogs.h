#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace Tarnex::Core::Utils {

/// The time `maxAgeDays` before `now`. More than a hundred years count as a hundred years.
std::chrono::system_clock::time_point LogAgeLimit(std::chrono::system_clock::time_point now,
                                                  std::int64_t maxAgeDays);

/// Deletes the files in `directory` that were created before `limit` and whose names begin with
/// `program` and a point. `directory` ends with a separator. Skips files that can't be deleted.
void DeleteOldLogs(const std::string& directory, const std::string& program,
                   std::chrono::system_clock::time_point limit);

}  // namespace Tarnex::Core::Utils
