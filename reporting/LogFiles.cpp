#include "reporting/LogFiles.h"

#include <glog/logging.h>

#include <algorithm>
#include <chrono>

#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Signals.h"
#include "platform/WideText.h"
#include "reporting/OldLogs.h"

namespace Tarnex::Core::Utils {
namespace {

constexpr char LOGS_BELOW_DATA[] = "/Tarnex/Logs/";

/// The longest text that glog adds to a stem, and the longest name that file systems allow.
constexpr std::size_t LONGEST_ADDITION = sizeof(".WARNING.20261231-235959.4194304") - 1;
constexpr std::size_t LONGEST_NAME = 255;

std::string After(const std::string& text, char separator) {
    return text.substr(text.rfind(separator) + 1);
}

std::string ReduceProductName(const std::string& productName) {
    const std::string name =
        productName.empty()
            ? Platform::GetEnvironment("GLOG_PRODUCT_NAME").value_or("UnknownProduct")
            : productName;
    return After(After(name, '\\'), '/');
}

std::string ProgramName() {
    const std::string file = After(Platform::GetProgramPath(), Platform::PATH_SEPARATOR);
    return file.substr(0, file.rfind('.'));
}

/// The user's name, as a part of a file name.
std::string UserName() {
    std::string user = Platform::GetEnvironment("USERNAME").value_or("UNKNOWN");
    std::replace(user.begin(), user.end(), Platform::PATH_SEPARATOR, '_');
    return user;
}

void SetLogDestinations(const std::string& stem, std::int32_t minSeverity) {
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity) {
        const std::string base = stem + "." + google::LogSeverityNames[severity] + ".";
        google::SetLogDestination(severity, severity < minSeverity ? "" : base.c_str());
    }
}

void StartLogging(const std::string& product) {
    // glog keeps the pointer. It aborts at a second start.
    static const std::string& name = *new std::string(product);
    if (!google::IsGoogleLoggingInitialized()) {
        google::InitGoogleLogging(name.c_str());
    }
}

}  // namespace

bool InitLogging(const std::string& productName, std::int32_t minSeverity,
                 std::int64_t maxAgeDays) {
    return InitLogging(Platform::Widen(productName), minSeverity, maxAgeDays);
}

bool InitLogging(const std::wstring& productName, std::int32_t minSeverity,
                 std::int64_t maxAgeDays) {
    // A full disk or a parent that stopped reading must not end the run.
    Platform::IgnoreWriteSignals();
    const std::string product = ReduceProductName(Platform::Narrow(productName));
    const auto data = Platform::GetEnvironment("LOCALAPPDATA");
    if (!data) {
        return false;
    }
    const std::string directory = *data + LOGS_BELOW_DATA + product + Platform::PATH_SEPARATOR;
    const std::string program = ProgramName();
    const std::string name = program + "." + UserName();
    if (!Platform::CreateDirectories(directory) || name.size() + LONGEST_ADDITION > LONGEST_NAME) {
        return false;
    }
    DeleteOldLogs(directory, program, LogAgeLimit(std::chrono::system_clock::now(), maxAgeDays));
    Platform::SetEnvironment("TarnexLogPath", directory);
    SetLogDestinations(directory + name, minSeverity);
    StartLogging(product);
    return true;
}

void FlushLogFiles() {
    google::FlushLogFiles(google::GLOG_INFO);
}

void ShutdownLogging() {
    if (google::IsGoogleLoggingInitialized()) {
        google::ShutdownGoogleLogging();
    }
}

}  // namespace Tarnex::Core::Utils
