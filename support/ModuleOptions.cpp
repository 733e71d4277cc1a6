#include "core/support/ModuleOptions.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "core/support/Exception.h"
#include "support/ListFile.h"

namespace Tarnex::Core::Utils {
namespace {

std::string Mark(FormatType format) {
    return format == FormatType::Codecs ? "Codecs." : "Plugins.";
}

bool IsPluginListKey(const std::string& key) {
    return key.starts_with(Mark(FormatType::Plugins));
}

}  // namespace

OptionLists LoadFromFile(const ioPath& path, FormatType format) {
    return ReadListFile(path, {format == FormatType::Codecs ? IsCodecListKey : IsPluginListKey});
}

std::string ModuleOptionsToString(const OptionLists& lists, FormatType format) {
    std::string text;
    for (const auto& [key, values] : lists) {
        if (!key.starts_with(Mark(format))) {
            throw Exception("The key \"" + key + "\" doesn't begin with " + Mark(format));
        }
        text += fmt::format("{}: {}\n", key, fmt::join(values, ", "));
    }
    return text;
}

std::vector<std::string> ModuleOptionsToBlackPluginList(const OptionLists& lists) {
    std::vector<std::string> plugins;
    for (const auto& [key, values] : lists) {
        plugins.insert(plugins.end(), values.begin(), values.end());
    }
    return plugins;
}

void SetModuleOption(CoreOptions& options, const std::string& module, const std::string& option,
                     const std::vector<std::string>& values) {
    options[module][option] = values;
}

std::string RemoveFormatType(const std::string& key, FormatType format) {
    const std::string mark = Mark(format);
    return key.starts_with(mark) ? key.substr(mark.size()) : key;
}

}  // namespace Tarnex::Core::Utils
