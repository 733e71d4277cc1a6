#include "collect/PluginList.h"

#include <algorithm>
#include <boost/filesystem/fstream.hpp>
#include <boost/filesystem/operations.hpp>
#include <iterator>
#include <sstream>

#include "core/support/Exception.h"
#include "support/ListFile.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;

constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";
constexpr std::string_view BLANKS = " \t\r";

std::vector<std::string> ReadLines(const fs::path& path) {
    fs::ifstream file(path, std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    if (!lines.empty() && lines.front().starts_with(BYTE_ORDER_MARK)) {
        lines.front().erase(0, BYTE_ORDER_MARK.size());
    }
    return lines;
}

std::string GetKey(const std::string& line) {
    const std::string key = line.substr(0, line.find(':'));
    const auto first = key.find_first_not_of(BLANKS);
    return first == std::string::npos ? ""
                                      : key.substr(first, key.find_last_not_of(BLANKS) - first + 1);
}

std::string RenderLine(const std::string& factory, const std::vector<std::string>& names) {
    std::string line = factory + ":";
    const char* separator = " ";
    for (const std::string& name : names) {
        line += separator + name;
        separator = ", ";
    }
    return line;
}

// What is listed becomes a file name in the directory of the list, and only there.
void RequireFileName(const fs::path& path, const std::string& name) {
    if (name.find('/') != std::string::npos) {
        throw Exception(path.string() + ": not a plugin's name: " + name);
    }
}

}  // namespace

PluginNames ReadPluginList(const fs::path& path) {
    if (!fs::exists(path)) {
        return {};
    }
    const auto isFactory = [](const std::string& key) { return key.ends_with("Factory"); };
    PluginNames names = Core::Utils::ReadListFile(path.string(), isFactory);
    for (const auto& [factory, plugins] : names) {
        for (const std::string& name : plugins) {
            RequireFileName(path, name);
        }
    }
    return names;
}

void ReplaceInPluginList(const fs::path& path, const PluginNames& names) {
    std::vector<std::string> lines = ReadLines(path);
    std::erase_if(lines, [&](const std::string& line) { return names.contains(GetKey(line)); });
    for (const auto& [factory, plugins] : names) {
        lines.push_back(RenderLine(factory, plugins));
    }
    const fs::path fresh = path.string() + ".new";
    fs::ofstream file(fresh, std::ios::binary | std::ios::trunc);
    for (const std::string& line : lines) {
        file << line << "\n";
    }
    file.close();
    if (!file) {
        throw Exception("can't write " + fresh.string());
    }
    fs::rename(fresh, path);
}

}  // namespace Tarnex::Collect
