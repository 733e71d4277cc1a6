#include "report/LoaderCache.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

#include "core/support/Exception.h"
#include "report/Reading.h"

namespace Tarnex::Reports {
namespace {

// The form is glibc's (`struct cache_file_new` in its sysdeps/generic/dl-cache.h); offsets count
// from the magic text, before which older systems have another table.
constexpr std::string_view MAGIC = "glibc-ld.so.cache1.1";
constexpr std::size_t HEADER_SIZE = 48;
constexpr std::size_t ENTRY_SIZE = 24;

#if defined(__x86_64__)
constexpr std::optional<std::uint32_t> OWN_FLAGS = 0x303;  // a library for 64-bit x86
#elif defined(__aarch64__)
constexpr std::optional<std::uint32_t> OWN_FLAGS = 0xa03;
#else
constexpr std::optional<std::uint32_t> OWN_FLAGS;  // all count
#endif

std::uint32_t GetNumber(std::string_view cache, std::size_t at) {
    std::uint32_t number = 0;
    if (at + sizeof number <= cache.size()) {
        std::memcpy(&number, cache.data() + at, sizeof number);
    }
    return number;
}

std::string GetText(std::string_view cache, std::size_t at) {
    const std::string_view rest = cache.substr(std::min(at, cache.size()));
    return std::string(rest.substr(0, rest.find('\0')));
}

std::string ReadCache(const std::string& path) {
    try {
        return ReadText(path);
    } catch (const Exception&) {
        return "";
    }
}

/// The path itself if there is no such file.
std::string ResolvePath(const std::string& path) {
    char resolved[PATH_MAX];
    return realpath(path.c_str(), resolved) == nullptr ? path : resolved;
}

void Append(std::string& paths, const std::string& path) {
    paths.append(paths.empty() ? "" : ":").append(path);
}

std::string ResolveAll(std::string_view paths) {
    std::string all;
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = paths.find(':');
        Append(all, ResolvePath(std::string(paths.substr(0, end))));
        paths.remove_prefix(std::min(paths.size(), end) + (end == std::string_view::npos ? 0 : 1));
    }
    return all;
}

}  // namespace

LoaderCache::LoaderCache(const std::string& path) {
    const std::string text = ReadCache(path);
    const std::size_t start = text.find(MAGIC);
    if (start == std::string::npos) {
        return;
    }
    const std::string_view cache = std::string_view(text).substr(start);
    const std::size_t count =
        std::min<std::size_t>(GetNumber(cache, MAGIC.size()), cache.size() / ENTRY_SIZE);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t entry = HEADER_SIZE + i * ENTRY_SIZE;
        if (OWN_FLAGS.value_or(GetNumber(cache, entry)) == GetNumber(cache, entry)) {
            std::string& paths = names[GetText(cache, GetNumber(cache, entry + 4))];
            Append(paths, GetText(cache, GetNumber(cache, entry + 8)));
        }
    }
}

const std::string& LoaderCache::Resolve(const std::string& name) const {
    const auto [place, isNew] = resolved.try_emplace(name);
    if (isNew) {
        const auto known = names.find(name);
        place->second = known == names.end() ? "" : ResolveAll(known->second);
    }
    return place->second;
}

}  // namespace Tarnex::Reports
