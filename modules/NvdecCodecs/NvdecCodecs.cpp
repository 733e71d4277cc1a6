#include <string_view>

#include "core/media/CodecFactory.h"
#include "modules/libav/CodecModule.h"

namespace {

bool IsNvidia(const AVCodec& coder) {
    const std::string_view wrapper = coder.wrapper_name == nullptr ? "" : coder.wrapper_name;
    return wrapper == "cuvid" || wrapper == "nvenc";
}

}  // namespace

TARNEX_MODULE_EXPORT std::uint32_t TarnexModuleVersion() {
    return Tarnex::Module::VERSION;
}

/// Succeeds without a GPU too: then each coder reports that it can't be opened.
TARNEX_MODULE_EXPORT bool TarnexModuleInitialize(Tarnex::Module::Description& description) {
    description.codecs = new Tarnex::Libav::CodecModule(Tarnex::Proc::ImplNames::NVDEC, IsNvidia);
    return true;
}
