#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <utility>

#include "core/media/Streams.h"

namespace Tarnex::Proc {

/// Implements the reserved operations of a stream. `Interface` is the stream interface that the
/// derived class implements.
template <class Interface>
class PlainStream : public RefCounted<Interface> {
public:
    void EmptyOperationA() override {}
    Property GetStreamProperty() const override { return Property(""); }
    void Prepare() override {}
    bool QueryTrue() const override { return true; }
    void EmptyOperationB() override {}
    bool QueryFalse() const override { return false; }
    void EmptyOperationC() override {}
    void EmptyOperationD() override {}

protected:
    /// What `GetStatistic` returns. `name` is the heading, `readTime` the time spent in reads, the
    /// read that finds the end included, `frameCount` the number of frames or packets delivered.
    static Property MakeStatistic(const std::string& name, std::chrono::nanoseconds readTime,
                                  std::uint64_t frameCount) {
        Property root = Property::GetRootItem();
        root.Add(Property::MakeStatistics(name, readTime, frameCount));
        return root;
    }
};

/// Implements a stream's statistics too. The derived class adds the format, the position and the
/// reading.
template <class Interface>
class StreamBase : public PlainStream<Interface> {
public:
    Property GetStatistic() const override {
        return this->MakeStatistic(statisticName, readTime, frameCount);
    }

protected:
    /// `statisticName` is the heading of the statistics.
    explicit StreamBase(std::string statisticName) : statisticName(std::move(statisticName)) {}

    std::chrono::nanoseconds readTime{0};
    std::uint64_t frameCount = 0;

private:
    std::string statisticName;
};

}  // namespace Tarnex::Proc
