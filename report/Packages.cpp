#include "report/Packages.h"

#include <sstream>

#include "platform/Environment.h"
#include "report/Command.h"

namespace Tarnex::Reports {
namespace {

constexpr const char* PROGRAM = "/usr/bin/dpkg-query";
constexpr std::size_t MAX_ARGUMENTS = 100'000;  // bytes; the system takes 128 kB or more
constexpr std::string_view MERGED = "/usr";     // its folders are linked from the root

using Names = std::vector<std::string>;

/// Calls it as often as the arguments need.
std::string Query(const Names& options, const std::set<std::string>& arguments) {
    std::string output;
    for (auto next = arguments.begin(); next != arguments.end();) {
        Platform::ProcessStart start;
        start.program = PROGRAM;
        start.arguments = options;
        start.environment = Platform::GetEnvironmentWithout({"LC_", "LANG", "DPKG_"});
        start.environment.emplace_back("LC_ALL=C.UTF-8");
        start.keepOutput = true;
        for (std::size_t size = 0; next != arguments.end() && size < MAX_ARGUMENTS; ++next) {
            start.arguments.push_back(*next);
            size += next->size() + 1;
        }
        Platform::Process process(start);
        output += AwaitOutput(process);
    }
    return output;
}

/// A path is taken for a pattern.
std::string Quote(const std::string& path) {
    std::string quoted;
    for (const char c : path) {
        quoted.append(std::string_view("*?[]\\").find(c) == std::string_view::npos ? "" : "\\");
        quoted += c;
    }
    return quoted;
}

/// Packages may name a file by the folder as it was before /usr was merged.
std::set<std::string> GetPatterns(const std::set<std::string>& paths) {
    std::set<std::string> patterns;
    for (const std::string& path : paths) {
        patterns.insert(Quote(path));
        if (path.starts_with("/usr/lib")) {
            patterns.insert(Quote(path.substr(MERGED.size())));
        }
    }
    return patterns;
}

/// Lines like "amp-plugins: /usr/lib/ladspa/amp.so" or "one:amd64, two:amd64: /usr/lib/x".
std::map<std::string, std::string> ParseOwners(const std::string& text) {
    std::map<std::string, std::string> owners;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t colon = line.find(": /");
        if (colon != std::string::npos && !line.starts_with("diversion by ")) {
            owners[line.substr(colon + 2)] = line.substr(0, std::min(colon, line.find(", ")));
        }
    }
    return owners;
}

std::map<std::string, std::string> FindVersions(const std::set<std::string>& packages) {
    std::map<std::string, std::string> versions;
    std::istringstream lines(Query({"-W", "-f", "${binary:Package} ${Version}\n"}, packages));
    for (std::string line; std::getline(lines, line);) {
        versions[line.substr(0, line.find(' '))] = line;
    }
    return versions;
}

std::string WithoutArchitecture(const std::string& text) {
    const std::size_t blank = text.find(' ');
    return text.substr(0, std::min(blank, text.find(':'))) +
           text.substr(std::min(blank, text.size()));
}

bool Asks(const Parent::Item& item) {
    return IsBad(item.verdict) && item.file && !item.carried;
}

}  // namespace

std::map<std::string, std::string> FindPackages(const std::set<std::string>& paths) {
    if (paths.empty()) {
        return {};
    }
    const auto owners = ParseOwners(Query({"-S"}, GetPatterns(paths)));
    std::set<std::string> names;
    for (const auto& [path, owner] : owners) {
        names.insert(owner);
    }
    const auto versions = FindVersions(names);
    std::map<std::string, std::string> packages;
    for (const std::string& path : paths) {
        auto owner = owners.find(path);
        owner = owner == owners.end() && path.starts_with(MERGED)
                    ? owners.find(path.substr(MERGED.size()))
                    : owner;
        const auto version = versions.find(owner == owners.end() ? "" : owner->second);
        if (version != versions.end()) {
            packages[path] = WithoutArchitecture(version->second);
        }
    }
    return packages;
}

void AddPackages(std::vector<Parent::Item>& items) {
    std::set<std::string> paths;
    for (const Parent::Item& item : items) {
        if (Asks(item)) {
            paths.insert(item.file->path);
        }
    }
    const auto packages = FindPackages(paths);
    for (Parent::Item& item : items) {
        if (Asks(item) && packages.contains(item.file->path)) {
            item.package = packages.at(item.file->path);
        }
    }
}

}  // namespace Tarnex::Reports
