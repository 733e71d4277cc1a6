#include <string_view>

#include "core/media/CodecFactory.h"
#include "modules/libav/CodecModule.h"

namespace {

/// Neither hardware nor what hands over to a framework or a device of the system. Not all wrappers
/// of hardware have the capability flag, OpenMAX's not even a wrapper name.
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
