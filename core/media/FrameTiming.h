#pragma once

#include <cstdint>

#include "core/media/Frames.h"

namespace Tarnex::Proc {

/// Implements start time and length for both kinds of frames. In milliseconds.
template <class Interface>
class FrameTiming : public RefCounted<Interface> {
public:
    explicit FrameTiming(std::int64_t length = 0) : length(length) {}

    std::int64_t GetFrameLength() const override { return length; }
    void SetFrameLength(std::int64_t newLength) override { length = newLength; }
    std::int64_t GetFrameTime() const override { return time; }
    void SetFrameTime(std::int64_t newTime) override { time = newTime; }
    void PrepareFrame() override {}

private:
    std::int64_t length;
    std::int64_t time = 0;
};

}  // namespace Tarnex::Proc
