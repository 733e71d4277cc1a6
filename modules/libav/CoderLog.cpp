#include "modules/libav/CoderLog.h"

#include <array>
#include <cstdarg>
#include <cstdio>

#include "core/support/Exception.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {
namespace {

constexpr std::size_t MAX_TEXT = 4096;

thread_local CoderLog* current = nullptr;

void Collect(void*, int level, const char* format, va_list arguments) {
    if (current == nullptr || level > AV_LOG_WARNING) {
        return;
    }
    std::array<char, 1024> line{};
    std::vsnprintf(line.data(), line.size(), format, arguments);
    current->Append(line.data());
}

}  // namespace

void CoderLog::Append(const char* line) {
    text += line;
    if (text.size() > MAX_TEXT) {
        text.erase(0, text.size() - MAX_TEXT);
    }
}

std::string CoderLog::Explain(const std::string& failure) const {
    std::string message = owner + ": " + failure;
    if (!text.empty()) {
        message += "; libav logged: " + text.substr(0, text.find_last_not_of('\n') + 1);
    }
    return message;
}

std::string CoderLog::Explain(const std::string& failure, int libavError) const {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> reason{};
    av_strerror(libavError, reason.data(), reason.size());
    return Explain(failure + " failed: " + reason.data());
}

void CoderLog::Fail(const std::string& failure) const {
    throw Exception(Explain(failure));
}

void CoderLog::Fail(const std::string& failure, int libavError) const {
    throw Exception(Explain(failure, libavError));
}

LogScope::LogScope(CoderLog& log) : outer(current) {
    static const bool ROUTED = (av_log_set_callback(Collect), true);
    static_cast<void>(ROUTED);
    current = &log;
}

LogScope::~LogScope() {
    current = outer;
}

}  // namespace Tarnex::Libav
