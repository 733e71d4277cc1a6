#pragma once

#include <boost/assert/source_location.hpp>
#include <boost/exception/exception.hpp>
#include <boost/exception/info.hpp>
#include <exception>
#include <string>
#include <utility>

#include "core/Export.h"

namespace Tarnex {

/// A failure that the support library or the media core tells its caller. Whoever catches it shows
/// `what()`, a text that names the file, line, module or argument at fault.
/// `boost::diagnostic_information` tells where it was thrown, too.
class TARNEX_TYPE Exception : public virtual std::exception, public virtual boost::exception {
public:
    /// `place` is that of the caller. The builtins, because not every compiler that we support has
    /// `std::source_location`.
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
