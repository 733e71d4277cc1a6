#include "core/module/Module.h"
#include "modules/libav/FileWriter.h"

namespace {

class Muxer : public Tarnex::Module::IMuxerModule {
public:
    void Write(const Tarnex::ioPath& path,
               const Tarnex::Proc::Pointer<Tarnex::Proc::ICodedStream>& stream) override {
        Tarnex::Libav::WriteFile(path, *stream);
    }
};

}  // namespace

TARNEX_MODULE_EXPORT std::uint32_t TarnexModuleVersion() {
    return Tarnex::Module::VERSION;
}

TARNEX_MODULE_EXPORT bool TarnexModuleInitialize(Tarnex::Module::Description& description) {
    description.muxer = new Muxer();
    return true;
}
