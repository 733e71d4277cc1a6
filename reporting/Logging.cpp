#include "reporting/Logging.h"

#include <fmt/format.h>
#include <glog/logging.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "core/support/Constants.h"

namespace Tarnex::Core::Utils {
namespace {

std::atomic<bool> isOver = false;

void Write(const std::string& tag, const std::string& message) {
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
