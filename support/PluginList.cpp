#include "support/PluginList.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "core/media/PluginFactories.h"
#include "core/support/Exception.h"
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

[[noreturn]] void FailToWrite(const std::string& file) {
    throw Exception(fmt::format("Can't write {}: {}", file, std::strerror(errno)));
}

void WriteLines(const std::string& file, const std::vector<std::string>& lines) {
    errno = 0;
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    for (const std::string& line : lines) {
        stream << line << "\n";
    }
    stream.close();
    if (!stream) {
        FailToWrite(file);
    }
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

void ReplacePluginLists(const ioPath& path, const PluginLists& lists) {
    std::vector<std::string> lines = ReadLines(path);
    std::erase_if(lines, [&](const std::string& line) { return lists.contains(GetListKey(line)); });
    for (const auto& [factory, plugins] : lists) {
        const char* separator = plugins.empty() ? "" : " ";
        lines.push_back(fmt::format("{}:{}{}", factory, separator, fmt::join(plugins, ", ")));
    }
    const std::string fresh = path.utf8string() + ".new";
    WriteLines(fresh, lines);
    if (std::rename(fresh.c_str(), path.utf8string().c_str()) != 0) {
        FailToWrite(path.utf8string());
    }
}

}  // namespace Tarnex::Core::Utils
