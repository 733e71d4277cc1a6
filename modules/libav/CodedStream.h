#pragma once

#include "modules/common/CoderStream.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// A coded stream of ours. What the common format can't say goes with libav's own parameters.
class TARNEX_TYPE CodedStream : public Modules::MeasuredStream<Proc::ICodedStream> {
public:
    using MeasuredStream::MeasuredStream;

    virtual const AVCodecParameters& GetParameters() const = 0;
    /// The unit of the times in its packets.
    virtual AVRational GetTimeBase() const = 0;
};

}  // namespace Tarnex::Libav
