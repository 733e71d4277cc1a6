#pragma once

#include <boost/exception/diagnostic_information.hpp>
#include <exception>
#include <string>

namespace Tarnex::Core::Utils {

/// What is known of the exception that is being handled: its type, where it was thrown, its text
/// and what is attached to it.
inline std::string GetCurrentExceptionText() {
    // Code of another language may have thrown it; Boost would look for its type at null.
    return std::current_exception() ? boost::current_exception_diagnostic_information()
                                    : "No diagnostic information available.";
}

}  // namespace Tarnex::Core::Utils
