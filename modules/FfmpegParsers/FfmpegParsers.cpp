#include "core/module/Module.h"
#include "modules/libav/FileReader.h"

namespace {

class Parser : public Tarnex::Module::IParserModule {
public:
    Tarnex::Proc::Pointer<Tarnex::Proc::IStreamReader> Open(const Tarnex::ioPath& path) override {
        return Tarnex::Libav::OpenFile(path);
    }
};

}  // namespace

TARNEX_MODULE_EXPORT std::uint32_t TarnexModuleVersion() {
    return Tarnex::Module::VERSION;
}

TARNEX_MODULE_EXPORT bool TarnexModuleInitialize(Tarnex::Module::Description& description) {
    description.parser = new Parser();
    return true;
}
