#include "reporting/LogFiles.h"

#include <glog/logging.h>

#include <algorithm>
#include <chrono>
#include <optional>

#include "platform/Environment.h"
#include "platform/Files.h"
#include "platform/Signals.h"
#include "platform/WideText.h"
#include "reporting/OldLogs.h"

namespace Tarnex::Core::Utils {
namespace {

constexpr char COMPANY[] = "Tarnex";

/// What glog adds to a stem, at its longest, and what file systems take.
constexpr std::size_t LONGEST_ADDITION = sizeof(".WARNING.20261231-235959.4194304") - 1;
constexpr std::size_t LONGEST_NAME = 255;

std::wstring Behind(const std::wstring& text, wchar_t separator) {
    return text.substr(text.rfind(separator) + 1);
}

std::wstring ReduceProductName(const std::wstring& productName) {
    const std::wstring name =
        productName.empty()
            ? Platform::GetEnvironment(L"GLOG_PRODUCT_NAME").value_or(L"UnknownProduct")
            : productName;
    return Behind(Behind(name, L'\\'), L'/');
}

/// With a separator at its end.
std::optional<std::wstring> LogDirectory(const std::wstring& product) {
    std::optional<std::wstring> directory = Platform::GetEnvironment(L"LOCALAPPDATA");
    if (directory) {
        for (const std::wstring& name :
             {Platform::Widen(COMPANY), std::wstring(L"Logs"), product}) {
            *directory += Platform::PATH_SEPARATOR + name;
        }
        *directory += Platform::PATH_SEPARATOR;
    }
    return directory;
}

bool ProvideDirectory(const std::wstring& directory) {
    return Platform::IsDirectory(directory) ||
           Platform::CreateDirectories(directory) != Platform::Created::Failed;
}

std::wstring ProgramName() {
    const std::wstring file = Behind(Platform::GetProgramPath(), Platform::PATH_SEPARATOR);
    return file.substr(0, file.rfind(L'.'));
}

/// The user becomes part of a file name.
std::wstring UserName() {
    std::wstring user = Platform::GetEnvironment(L"USERNAME").value_or(L"UNKNOWN");
    std::replace(user.begin(), user.end(), Platform::PATH_SEPARATOR, L'_');
    return user;
}

void SetLogDestinations(const std::string& stem, std::int32_t minSeverity) {
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity) {
        const std::string base = stem + "." + google::LogSeverityNames[severity] + ".";
        google::SetLogDestination(severity, severity < minSeverity ? "" : base.c_str());
    }
}

void StartLogging(const std::wstring& product) {
    // glog keeps the pointer, and a second start would abort.
    static const std::string& name = *new std::string(Platform::Narrow(product));
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
    // A full log or a parent that has stopped reading is no reason to end the run.
    Platform::IgnoreWriteSignals();
    const std::wstring product = ReduceProductName(productName);
    const std::optional<std::wstring> directory = LogDirectory(product);
    if (!directory || !ProvideDirectory(*directory)) {
        return false;
    }
    const std::wstring program = ProgramName();
    const std::wstring name = program + L"." + UserName();
    if (Platform::Narrow(name).size() + LONGEST_ADDITION > LONGEST_NAME) {
        return false;
    }
    DeleteOldLogs(*directory, program, LogAgeLimit(std::chrono::system_clock::now(), maxAgeDays));
    Platform::SetEnvironment(L"TarnexLogPath", *directory);
    SetLogDestinations(Platform::Narrow(*directory + name), minSeverity);
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
