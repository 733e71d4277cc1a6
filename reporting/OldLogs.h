#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace Tarnex::Core::Utils {

/// The time `maxAgeDays` before `now`. Ages beyond a hundred years count as a hundred years.
std::chrono::system_clock::time_point LogAgeLimit(std::chrono::system_clock::time_point now,
                                                  std::int64_t maxAgeDays);

/// Deletes the files of `directory` that were created before `limit` and whose names begin with
/// `program` and a point. `directory` ends in a separator. What can't be deleted stays.
void DeleteOldLogs(const std::string& directory, const std::string& program,
                   std::chrono::system_clock::time_point limit);

}  // namespace Tarnex::Core::Utils
