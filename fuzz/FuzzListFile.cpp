// A list file of either format. Writing what was read and reading it again must change nothing.

#include "core/support/BrokenCodecs.h"
#include "core/support/Exception.h"
#include "core/support/ModuleOptions.h"
#include "fuzz/MemoryFile.h"

namespace {

using namespace Tarnex::Core::Utils;  // NOLINT(google-build-using-namespace)
using Tarnex::Fuzz::MemoryFile;
using Tarnex::Fuzz::Require;

OptionLists Read(const std::string& text, FormatType format) {
    const MemoryFile file(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    return LoadFromFile(file.Path(), format);
}

void TryForm(const std::string& input, FormatType format) {
    OptionLists lists;
    try {
        lists = Read(input, format);
    } catch (const Tarnex::Exception&) {
        return;
    }
    const std::string text = ModuleOptionsToString(lists, format);
    Require(Read(text, format) == lists);
    if (format == FormatType::Codecs) {
        // A key without codecs doesn't count.
        std::erase_if(lists, [](const auto& list) { return list.second.empty(); });
        Require(static_cast<const CodecLists&>(BrokenCodecs(text)) == lists);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    TryForm(input, FormatType::Codecs);
    TryForm(input, FormatType::Plugins);
    return 0;
}
