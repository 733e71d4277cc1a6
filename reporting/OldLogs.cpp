#include "reporting/OldLogs.h"

#include <algorithm>

#include "platform/Files.h"

namespace Tarnex::Core::Utils {

std::chrono::system_clock::time_point LogAgeLimit(std::chrono::system_clock::time_point now,
                                                  std::int64_t maxAgeDays) {
    // The clock counts nanoseconds in 64 bits, which cover less than three hundred years.
    constexpr std::int64_t HUNDRED_YEARS = 36525;
    return now - std::chrono::hours(24) * std::clamp(maxAgeDays, -HUNDRED_YEARS, HUNDRED_YEARS);
}

void DeleteOldLogs(const std::string& directory, const std::string& program,
                   std::chrono::system_clock::time_point limit) {
    for (const Platform::FoundFile& file : Platform::FindFiles(directory, program + ".")) {
        if (file.created < limit) {
            Platform::RemoveFile(directory + file.name);
        }
    }
}

}  // namespace Tarnex::Core::Utils
