#include "support/PluginList.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <fstream>

#include "core/media/PluginFactories.h"
#include "core/support/Exception.h"
#include "platform/AtomicFile.h"
#include "support/ListFile.h"

namespace Tarnex::Core::Utils {
namespace {

bool IsFactory(const std::string& key) {
    return std::ranges::find(PLUGIN_FACTORIES, key) != PLUGIN_FACTORIES.end();
}

/// A name becomes a file name, so it must not lead out of the list's directory.
bool IsPluginName(const std::string& name) {
    return name.find('/') == std::string::npos;
}

std::vector<std::string> ReadLines(const ioPath& path) {
    std::ifstream file(path.utf8string(), std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        if (lines.empty()) {
            DropByteOrderMark(line);
        }
        lines.push_back(line);
    }
    return lines;
}

}  // namespace

PluginLists ReadPluginLists(const ioPath& path) {
    PluginLists lists = ReadListFile(path, {IsFactory, IsPluginName});
    const auto isEmpty = [](const auto& list) { return list.second.empty(); };
    if (std::ranges::all_of(lists, isEmpty)) {
        throw Exception('"' + path.utf8string() + "\" names no plugin");
    }
    return lists;
}

void ReplacePluginLists(const ioPath& path, const PluginLists& lists, const ioPath& before) {
    std::vector<std::string> lines = ReadLines(before);
    std::erase_if(lines, [&](const std::string& line) { return lists.contains(GetListKey(line)); });
    for (const auto& [factory, plugins] : lists) {
        const char* separator = plugins.empty() ? "" : " ";
        lines.push_back(fmt::format("{}:{}{}", factory, separator, fmt::join(plugins, ", ")));
    }
    Platform::AtomicFile file(path.utf8string());
    file.Write(fmt::format("{}\n", fmt::join(lines, "\n")));
    file.Commit();
}

void ReplacePluginLists(const ioPath& path, const PluginLists& lists) {
    ReplacePluginLists(path, lists, path);
}

}  // namespace Tarnex::Core::Utils
