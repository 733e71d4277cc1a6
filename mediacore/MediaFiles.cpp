#include <fmt/format.h>

#include <functional>

#include "core/media/ClientAPI.h"
#include "core/media/Factories.h"
#include "core/support/ExceptionText.h"
#include "mediacore/StartedModules.h"

namespace Tarnex {
namespace {

/// Offers the file to one module after the other until one takes it. Throws what all of them said.
template <class Module>
void FirstThatCan(const std::vector<Module*>& modules, const ioPath& path, const char* work,
                  const std::function<bool(Module&)>& take) {
    std::string reasons;
    for (Module* module : modules) {
        try {
            if (take(*module)) {
                return;
            }
            reasons += "; a module took it and gave nothing";
        } catch (const std::exception& failure) {
            reasons += fmt::format("; {}", failure.what());
        } catch (...) {
            reasons += "; " + Core::Utils::GetCurrentExceptionText();
        }
    }
    throw Exception(fmt::format("No module can {} {}{}", work, path.utf8string(),
                                modules.empty() ? "; none is started" : reasons));
}

}  // namespace

Proc::Pointer<Proc::IStreamReader> Core::ClientAPI::OpenSource(const ioPath& path) {
    Proc::Pointer<Proc::IStreamReader> reader;
    FirstThatCan<Module::IParserModule>(GetStartedModules()->parsers, path, "open",
                                        [&](Module::IParserModule& parser) {
                                            reader = parser.Open(path);
                                            return reader != nullptr;
                                        });
    return reader;
}

void Proc::MuxerFactoryImpl::WriteFile(const ioPath& path, const Pointer<ICodedStream>& stream) {
    FirstThatCan<Module::IMuxerModule>(Core::GetStartedModules()->muxers, path, "write",
                                       [&](Module::IMuxerModule& muxer) {
                                           muxer.Write(path, stream);
                                           return true;
                                       });
}

}  // namespace Tarnex
