#pragma once

#include <functional>

#include "core/support/CheckType.h"

namespace Tarnex::Core::Utils {

/// Calls the start action when constructed and the shut-down action when destroyed. Either may be
/// empty.
class LoggingScope {
public:
    LoggingScope(std::function<void()> start, std::function<void()> shutDown);
    ~LoggingScope();

    LoggingScope(const LoggingScope&) = delete;
    LoggingScope& operator=(const LoggingScope&) = delete;

private:
    bool started = false;
    std::function<void()> startAction;
    std::function<void()> shutDownAction;
};

/// Stops the media core if it was started.
class MediaCoreScope {
public:
    MediaCoreScope() = default;
    ~MediaCoreScope();

    MediaCoreScope(const MediaCoreScope&) = delete;
    MediaCoreScope& operator=(const MediaCoreScope&) = delete;
};

/// Shuts down the loaded modules at the end of a run of the plugin phase alone: there is no media
/// core to do it.
class DeinitScope {
public:
    explicit DeinitScope(CheckType type) : checkType(type) {}
    ~DeinitScope();

    DeinitScope(const DeinitScope&) = delete;
    DeinitScope& operator=(const DeinitScope&) = delete;

private:
    CheckType checkType;
};

}  // namespace Tarnex::Core::Utils
