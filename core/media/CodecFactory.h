#pragma once

#include <string>
#include <vector>

#include "core/Export.h"
#include "core/media/Streams.h"

namespace Tarnex::Proc {

/// Names of the implementations that the program knows.
struct ImplNames {
    static constexpr char FFMPEG[] = "FFMPEG_IMPL";
    static constexpr char MEDIA_FOUNDATION[] = "MEDIA_FOUNDATION_IMPL";
    static constexpr char NVDEC[] = "NVDEC_IMPL";
};

/// Makes coders of the started codec modules. Thread-safe. An operation gives the coder, an empty
/// pointer where nobody offers it, or throws why it can't be made. The implementation that is asked
/// for is the one that is given: there is no fall-back to another.
class TARNEX_TYPE ICodecFactory : public virtual IRefCountable {
public:
    virtual Pointer<IStreamVideo> CreateVideoDecoder(const Pointer<ICodedStream>& input,
                                                     const std::string& implementation) = 0;
    virtual Pointer<IStreamAudio> CreateAudioDecoder(const Pointer<ICodedStream>& input,
                                                     const std::string& implementation) = 0;

    /// `property` is a codec's preset (see `CreateDataHelper`) and says which codec; `reserved` is
    /// empty.
    virtual Pointer<ICodedStream> CreateVideoEncoder(const Pointer<IStreamVideo>& stream,
                                                     const Property& property,
                                                     const std::string& implementation,
                                                     const Pointer<IRefCountable>& reserved) = 0;
    /// From the first started module that offers the codec and can make it.
    virtual Pointer<ICodedStream> CreateDefaultVideoEncoder(const Pointer<IStreamVideo>& stream,
                                                            const Property& property) = 0;
    virtual Pointer<ICodedStream> CreateAudioEncoder(const Pointer<IStreamAudio>& stream,
                                                     const Property& property,
                                                     const std::string& implementation,
                                                     const Pointer<IRefCountable>& reserved) = 0;
    virtual Pointer<ICodedStream> CreateDefaultAudioEncoder(const Pointer<IStreamAudio>& stream,
                                                            const Property& property) = 0;

    /// The ids of audio and video codecs of an implementation, each once, in the same order at each
    /// call; empty for an implementation that no started module offers.
    virtual std::vector<std::string> GetDecoderCodecs(const std::string& implementation) = 0;
    virtual std::vector<std::string> GetEncoderCodecs(const std::string& implementation) = 0;
};

/// Whether the codec is video (audio), as the started codec modules say. False for an unknown id.
TARNEX_API bool IsVideoCodec(const std::string& codecId);
TARNEX_API bool IsAudioCodec(const std::string& codecId);

}  // namespace Tarnex::Proc
