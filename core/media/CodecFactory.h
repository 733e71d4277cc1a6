#pragma once

#include <string>
#include <vector>

#include "core/Export.h"
#include "core/media/Streams.h"

namespace Tarnex::Proc {

/// Names of the known implementations.
struct ImplNames {
    static constexpr char FFMPEG[] = "FFMPEG_IMPL";
    static constexpr char MEDIA_FOUNDATION[] = "MEDIA_FOUNDATION_IMPL";
    static constexpr char NVDEC[] = "NVDEC_IMPL";
};

/// Creates coders of the started codec modules. Thread-safe. Each `Create` operation returns the
/// coder, or null if no started module offers it. It throws if the coder can't be created. It never
/// replaces the requested implementation by another one.
class TARNEX_TYPE ICodecFactory : public virtual IRefCountable {
public:
    virtual Pointer<IStreamVideo> CreateVideoDecoder(const Pointer<ICodedStream>& input,
                                                     const std::string& implementation) = 0;
    virtual Pointer<IStreamAudio> CreateAudioDecoder(const Pointer<ICodedStream>& input,
                                                     const std::string& implementation) = 0;

    /// `property` is a codec's preset (see `CreateDataHelper`) and names the codec. `reserved` is
    /// null.
    virtual Pointer<ICodedStream> CreateVideoEncoder(const Pointer<IStreamVideo>& stream,
                                                     const Property& property,
                                                     const std::string& implementation,
                                                     const Pointer<IRefCountable>& reserved) = 0;
    /// Asks the started modules in turn; returns the first encoder that can be created.
    virtual Pointer<ICodedStream> CreateDefaultVideoEncoder(const Pointer<IStreamVideo>& stream,
                                                            const Property& property) = 0;
    virtual Pointer<ICodedStream> CreateAudioEncoder(const Pointer<IStreamAudio>& stream,
                                                     const Property& property,
                                                     const std::string& implementation,
                                                     const Pointer<IRefCountable>& reserved) = 0;
    virtual Pointer<ICodedStream> CreateDefaultAudioEncoder(const Pointer<IStreamAudio>& stream,
                                                            const Property& property) = 0;

    /// The implementation's audio and video codec ids, each once, in the same order at each call.
    /// Empty if no started module offers the implementation.
    virtual std::vector<std::string> GetDecoderCodecs(const std::string& implementation) = 0;
    virtual std::vector<std::string> GetEncoderCodecs(const std::string& implementation) = 0;
};

/// True if the started codec modules list the codec as video (audio). False for an unknown id.
TARNEX_API bool IsVideoCodec(const std::string& codecId);
TARNEX_API bool IsAudioCodec(const std::string& codecId);

}  // namespace Tarnex::Proc
