#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <utility>

#include "core/media/Streams.h"

namespace Tarnex::Proc {

/// Gives a stream the operations that carry no meaning here, and its statistics. The stream adds
/// its format, its place and its reading. `Interface` is the stream interface that it offers.
template <class Interface>
class StreamBase : public RefCounted<Interface> {
public:
    void EmptyOperationA() override {}
    Property GetStreamProperty() const override { return Property(""); }
    void Prepare() override {}
    bool QueryTrue() const override { return true; }
    Property GetStatistic() const override {
        Property root = Property::GetRootItem();
        root.Add(Property::MakeStatistics(statisticName, readTime, frameCount));
        return root;
    }
    void EmptyOperationB() override {}
    bool QueryFalse() const override { return false; }
    void EmptyOperationC() override {}
    void EmptyOperationD() override {}

protected:
    /// `statisticName` heads the statistics.
    explicit StreamBase(std::string statisticName) : statisticName(std::move(statisticName)) {}

    /// Spent in reading, also where a read finds the end.
    std::chrono::nanoseconds readTime{0};
    /// Frames or packets that were delivered.
    std::uint64_t frameCount = 0;

private:
    std::string statisticName;
};

}  // namespace Tarnex::Proc
