#include <fmt/format.h>

#include <functional>

#include "core/media/ClientAPI.h"
#include "core/media/Factories.h"
#include "core/support/ExceptionText.h"
#include "mediacore/StartedModules.h"

namespace Tarnex::Core {
namespace {

/// Offers the file to the modules in turn until one accepts it. If none does, throws all reasons.
template <class Module>
void FirstThatCan(const std::vector<Started<Module>>& modules, const ioPath& path, const char* work,
                  const std::function<bool(Module&)>& take) {
    std::string reasons;
    for (const auto& [plugin, module] : modules) {
        try {
            if (take(*module)) {
                return;
            }
            reasons += "; a module accepted it but returned nothing";
        } catch (const std::exception& failure) {
            reasons += fmt::format("; {}", failure.what());
        } catch (...) {
            reasons += "; " + Utils::GetCurrentExceptionText();
        }
    }
    throw Exception(fmt::format("No module can {} {}{}", work, path.utf8string(),
                                modules.empty() ? "; none is started" : reasons));
}

}  // namespace

Proc::Pointer<Proc::IStreamReader> ClientAPI::OpenSource(const ioPath& path) {
    Proc::Pointer<Proc::IStreamReader> reader;
    FirstThatCan<Module::IParserModule>(GetStartedModules()->parsers, path, "open",
                                        [&](Module::IParserModule& parser) {
                                            reader = parser.Open(path);
                                            return reader != nullptr;
                                        });
    return reader;
}

}  // namespace Tarnex::Core

namespace Tarnex::Proc {

void MuxerFactoryImpl::WriteFile(const ioPath& path, const Pointer<ICodedStream>& stream) {
    Core::FirstThatCan<Module::IMuxerModule>(Core::GetStartedModules()->muxers, path, "write",
                                             [&](Module::IMuxerModule& muxer) {
                                                 muxer.Write(path, stream);
                                                 return true;
                                             });
}

}  // namespace Tarnex::Proc
