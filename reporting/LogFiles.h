#pragma once

#include <cstdint>
#include <string>

namespace Tarnex::Core::Utils {

/// Starts logging to one file for each severity, in
/// LOCALAPPDATA/Tarnex/Logs/<productName>/<program>.<USERNAME>.<SEVERITY>.<time>.<process>, with
/// any separator in the user's name replaced by "_".
/// Deletes this program's older logs there and sets TarnexLogPath in the environment to the
/// directory. Call it before there are other threads.
///
/// Only the part of `productName` (UTF-8) after its last separator counts. If `productName` is
/// empty, the variable GLOG_PRODUCT_NAME is used instead. Severities (glog's, 0 to 3) below
/// `minSeverity` get no file. A log is old if it was created more than `maxAgeDays` days ago.
///
/// Returns false if the files have no place: LOCALAPPDATA isn't set, the directory can't be
/// created, or the names would be too long. Then everything is logged to standard error only.
[[nodiscard]] bool InitLogging(const std::string& productName, std::int32_t minSeverity,
                               std::int64_t maxAgeDays);

/// Does the same for a wide name.
[[nodiscard]] bool InitLogging(const std::wstring& productName, std::int32_t minSeverity,
                               std::int64_t maxAgeDays);

/// Writes what is buffered: lines of INFO severity, and the copies of other lines in the INFO file.
/// Takes glog's lock, which a stopped thread may hold forever.
void FlushLogFiles();

/// Closes the log files. Later lines go to standard error. Does nothing without log files.
void ShutdownLogging();

}  // namespace Tarnex::Core::Utils
