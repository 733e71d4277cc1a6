#pragma once

#include <boost/exception/diagnostic_information.hpp>
#include <exception>
#include <string>

namespace Tarnex::Core::Utils {

/// Describes the exception that is being handled: its type, where it was thrown, its text and the
/// data attached to it.
inline std::string GetCurrentExceptionText() {
    // Code in another language may have thrown it: then Boost would dereference a null pointer.
    return std::current_exception() ? boost::current_exception_diagnostic_information()
                                    : "No diagnostic information available.";
}

}  // namespace Tarnex::Core::Utils
