#pragma once

#include <string>

namespace Tarnex::Core::Utils {

/// Logs the record "[tag]message[/tag]", with the message unchanged. Records of `WARNING_TAG` have
/// WARNING severity. All others have ERROR severity: they are written at once, to standard error
/// too. Thread-safe: each call writes one whole record.
void LogTagged(const std::string& tag, const std::string& message);

/// Logs the last record of a process that the calling thread is about to end. From then on, any
/// other thread that calls `LogTagged` stays there forever: the end may release a thread from a
/// hanging module, and that thread must not report success.
void LogLastTagged(const std::string& tag, const std::string& message);

}  // namespace Tarnex::Core::Utils
