#include "reporting/Logging.h"

#include <fmt/format.h>
#include <glog/logging.h>

#include "core/support/Constants.h"

namespace Tarnex::Core::Utils {

void LogTagged(const std::string& tag, const std::string& message) {
    const std::string text = fmt::format("[{}]{}[/{}]", tag, message, tag);
    // The line number in glog's prefix tells the branch.
    if (tag == ERROR_TAG) {
        google::LogMessage(__FILE__, __LINE__, google::GLOG_ERROR).stream() << text;
    } else if (tag == WARNING_TAG) {
        google::LogMessage(__FILE__, __LINE__, google::GLOG_WARNING).stream() << text;
    } else {
        // Progress too: a module may end the process before a buffered line is out.
        google::LogMessage(__FILE__, __LINE__, google::GLOG_ERROR).stream() << text;
    }
}

}  // namespace Tarnex::Core::Utils
