#pragma once

#include "modules/common/CoderStream.h"
#include "modules/libav/Handles.h"

namespace Tarnex::Libav {

/// One of our own coded streams. Carries libav's parameters, which say more than the core's format.
class TARNEX_TYPE CodedStream : public Modules::MeasuredStream<Proc::ICodedStream> {
public:
    using MeasuredStream::MeasuredStream;

    virtual const AVCodecParameters& GetParameters() const = 0;
    /// The unit of its packets' times.
    virtual AVRational GetTimeBase() const = 0;
};

}  // namespace Tarnex::Libav
