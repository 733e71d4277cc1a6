#pragma once

#include <string>

namespace Tarnex::Core::Utils {

/// Writes "[tag]message[/tag]" to the log, the message as it is. Lines of `WARNING_TAG` leave at
/// WARNING severity, all others at ERROR severity, which is written at once and reaches standard
/// error too. Thread-safe: one call gives one whole record.
void LogTagged(const std::string& tag, const std::string& message);

/// The same for the last record of a process that this thread is about to end. Any other thread
/// that calls `LogTagged` later stays there for good: the end may release it from a module that
/// hung, and then it mustn't claim that all went well.
void LogLastTagged(const std::string& tag, const std::string& message);

}  // namespace Tarnex::Core::Utils
