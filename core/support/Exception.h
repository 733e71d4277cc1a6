#pragma once

#include <boost/exception/exception.hpp>
#include <exception>
#include <string>
#include <utility>

#include "core/Export.h"

namespace Tarnex {

/// A failure that the support library or the media core tells its caller. Whoever catches it shows
/// `what()`, a text that names the file, line, module or argument at fault.
class TARNEX_TYPE Exception : public virtual std::exception, public virtual boost::exception {
public:
    explicit Exception(std::string text) : text(std::move(text)) {}
    const char* what() const noexcept override { return text.c_str(); }

private:
    std::string text;
};

}  // namespace Tarnex
