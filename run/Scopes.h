#pragma once

#include <functional>

#include "core/support/CheckType.h"

namespace Tarnex::Core::Utils {

/// Brackets logging: the start action when built, the shut-down action at its end. Either may be
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

/// Ends the media core, if it was started.
class MediaCoreScope {
public:
    MediaCoreScope() = default;
    ~MediaCoreScope();

    MediaCoreScope(const MediaCoreScope&) = delete;
    MediaCoreScope& operator=(const MediaCoreScope&) = delete;
};

/// Shuts the loaded modules down at the end of a run that had a plugin phase alone: no media core
/// does it there.
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
