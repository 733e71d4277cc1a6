// Short texts: ids of codec tests, option lists, plugin names, arguments with any bytes.

#include "core/support/BrokenCodecs.h"
#include "core/support/BrokenPlugins.h"
#include "core/support/CodecConfig.h"
#include "core/support/Exception.h"
#include "core/support/ModuleOptions.h"
#include "fuzz/MemoryFile.h"
#include "platform/WideText.h"

namespace {

using namespace Tarnex::Core::Utils;  // NOLINT(google-build-using-namespace)
using Tarnex::Fuzz::Require;

void TryCodecConfig(const std::string& text) {
    try {
        const CodecConfig config(text);
        Require(config.GetID() == text && config.IsEmpty() == text.empty());
    } catch (const Tarnex::Exception&) {
    }
}

void TryBrokenCodecs(const std::string& text) {
    try {
        const CodecLists lists = BrokenCodecs(text);
        const std::string written = ModuleOptionsToString(lists, FormatType::Codecs);
        Require(static_cast<const CodecLists&>(BrokenCodecs(written)) == lists);
    } catch (const Tarnex::Exception&) {
    }
}

void TryBrokenPlugins(const std::string& text) {
    const std::vector<std::string> names = BrokenPlugins(text);
    std::string joined;
    for (const std::string& name : names) {
        joined += name + ", ";
    }
    Require(static_cast<const std::vector<std::string>&>(BrokenPlugins(joined)) == names);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    TryCodecConfig(text);
    TryBrokenCodecs(text);
    TryBrokenPlugins(text);
    Require(Tarnex::Platform::Narrow(Tarnex::Platform::Widen(text)) == text);
    return 0;
}
