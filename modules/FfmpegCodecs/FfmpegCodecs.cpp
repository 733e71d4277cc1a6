#include <string_view>

#include "core/media/CodecFactory.h"
#include "modules/libav/CodecModule.h"

namespace {

/// Excludes hardware coders and wrappers of a system framework or device. Some hardware wrappers
/// lack the capability flag; those of OpenMAX lack a wrapper name too.
bool IsSoftware(const AVCodec& coder) {
    return (coder.capabilities & (AV_CODEC_CAP_HARDWARE | AV_CODEC_CAP_HYBRID)) == 0 &&
           !std::string_view(coder.name).ends_with("_omx");
}

}  // namespace

TARNEX_MODULE_EXPORT std::uint32_t TarnexModuleVersion() {
    return Tarnex::Module::VERSION;
}

TARNEX_MODULE_EXPORT bool TarnexModuleInitialize(Tarnex::Module::Description& description) {
    description.codecs =
        new Tarnex::Libav::CodecModule(Tarnex::Proc::ImplNames::FFMPEG, IsSoftware);
    return true;
}
