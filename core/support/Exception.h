#pragma once

#include <boost/assert/source_location.hpp>
#include <boost/exception/exception.hpp>
#include <boost/exception/info.hpp>
#include <exception>
#include <string>
#include <utility>

#include "core/Export.h"

namespace Tarnex {

/// A failure in the support library or the media core. `what()` is a text for users that names the
/// file, line, module or argument at fault. `boost::diagnostic_information` adds the place where
/// the exception was thrown.
class TARNEX_TYPE Exception : public virtual std::exception, public virtual boost::exception {
public:
    /// `place` is the caller's, by default. The builtins stand in for `std::source_location`, which
    /// not every supported compiler has.
    explicit Exception(std::string text,
                       const boost::source_location& place = boost::source_location(
                           __builtin_FILE(), __builtin_LINE(), __builtin_FUNCTION()))
        : text(std::move(text)) {
        *this << boost::throw_file(place.file_name())
              << boost::throw_line(static_cast<int>(place.line()))
              << boost::throw_function(place.function_name());
    }
    const char* what() const noexcept override { return text.c_str(); }

private:
    std::string text;
};

}  // namespace Tarnex
