#pragma once

#include <cstdint>
#include <string>

namespace Tarnex::Core::Utils {

/// Starts logging to one file for each severity, in
/// LOCALAPPDATA/Tarnex/Logs/<productName>/<program>.<USERNAME>.<SEVERITY>.<time>.<process>, with
/// "_" for each separator in the user's name.
/// Deletes this program's older logs there and publishes the directory as TarnexLogPath in the
/// environment. To be called before there are other threads.
///
/// `productName` is UTF-8; only what follows its last separator counts, and if it is empty, the
/// variable GLOG_PRODUCT_NAME stands for it. Severities (0 to 3, glog's) below `minSeverity` get no
/// file. Files that were created more than `maxAgeDays` days ago are old.
///
/// False if there is no place for the files: LOCALAPPDATA isn't set, the directory can't be made,
/// or the names would be too long. All lines go to standard error then, and nowhere else.
bool InitLogging(const std::string& productName, std::int32_t minSeverity, std::int64_t maxAgeDays);

/// The same for a wide name.
bool InitLogging(const std::wstring& productName, std::int32_t minSeverity,
                 std::int64_t maxAgeDays);

/// Writes what is buffered: the lines of INFO severity and the INFO file's copies of the others.
/// Takes glog's lock, which a thread that was stopped may hold for good.
void FlushLogFiles();

/// Closes the log files; lines go to standard error from here on. Nothing if there are none.
void ShutdownLogging();

}  // namespace Tarnex::Core::Utils
