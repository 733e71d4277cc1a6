#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <utility>

#include "core/media/Streams.h"

namespace Tarnex::Proc {

/// Implements a stream's statistics and its reserved operations. The derived class adds the format,
/// the position and the reading. `Interface` is the stream interface that it implements.
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
    /// `statisticName` is the heading of the statistics.
    explicit StreamBase(std::string statisticName) : statisticName(std::move(statisticName)) {}

    /// Time spent in reads, including the read that finds the end.
    std::chrono::nanoseconds readTime{0};
    /// Number of frames or packets delivered.
    std::uint64_t frameCount = 0;

private:
    std::string statisticName;
};

}  // namespace Tarnex::Proc
