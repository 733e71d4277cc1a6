#include "reporting/Logging.h"

#include <fmt/format.h>
#include <glog/logging.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "core/support/Constants.h"

namespace Tarnex::Core::Utils {
namespace {

std::atomic<bool> isOver = false;  // See the fault "hang-until-exit" of the process tests.

void Write(const std::string& tag, const std::string& message) {
    const std::string text = fmt::format("[{}]{}[/{}]", tag, message, tag);
    // One call for each branch: the line number in glog's prefix tells them apart.
    if (tag == ERROR_TAG) {
        google::LogMessage(__FILE__, __LINE__, google::GLOG_ERROR).stream() << text;
    } else if (tag == WARNING_TAG) {
        google::LogMessage(__FILE__, __LINE__, google::GLOG_WARNING).stream() << text;
    } else {
        // Not buffered, because a module may end the process at any time.
        google::LogMessage(__FILE__, __LINE__, google::GLOG_ERROR).stream() << text;
    }
}

}  // namespace

void LogTagged(const std::string& tag, const std::string& message) {
    while (isOver) {
        std::this_thread::sleep_for(std::chrono::hours(1));
    }
    Write(tag, message);
}

void LogLastTagged(const std::string& tag, const std::string& message) {
    isOver = true;
    Write(tag, message);
}

}  // namespace Tarnex::Core::Utils
