#include "collect/ReadingCache.h"

#include <sys/stat.h>

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/string_file.hpp>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <exception>

#include "collect/Fields.h"
#include "core/support/Exception.h"
#include "platform/AtomicFile.h"

namespace Tarnex::Collect {
namespace {

namespace fs = boost::filesystem;

constexpr std::string_view VERSION = "assayer readings 1";
constexpr std::uint64_t NANOSECONDS = 1'000'000'000;

// Times of files are as coarse as the kernel's tick, at most 10 ms: a change soon after a reading
// may leave the stamp as it was.
constexpr std::uint64_t RACY = NANOSECONDS / 20;

std::uint64_t ToNumber(const timespec& time) {
    return static_cast<std::uint64_t>(time.tv_sec) * NANOSECONDS +
           static_cast<std::uint64_t>(time.tv_nsec);
}

Stamp ReadStamp(const fs::path& path) {
    struct stat facts {};
    if (stat(path.c_str(), &facts) != 0) {
        throw Exception(std::strerror(errno));
    }
    return {facts.st_dev, facts.st_ino, static_cast<std::uint64_t>(facts.st_size),
            ToNumber(facts.st_mtim), ToNumber(facts.st_ctim)};
}

bool IsSettled(const Stamp& stamp) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return stamp.back() + RACY < ToNumber(now);
}

std::string_view ToBytes(const Stamp& stamp) {
    return {reinterpret_cast<const char*>(stamp.data()), sizeof(stamp)};
}

}  // namespace

ReadingCache::ReadingCache(const fs::path& file) : file(file) {
    try {
        std::string bytes;
        fs::load_string_file(file, bytes);
        Load(bytes);
    } catch (const std::exception&) {
        entries.clear();
    }
}

void ReadingCache::Load(const std::string& bytes) {
    FieldReader fields(bytes);
    if (fields.Next() != VERSION) {
        return;
    }
    while (const auto key = fields.Next()) {
        Entry entry;
        const std::string_view stamp = fields.Next().value();
        entry.problem = fields.Next().value();
        stamp.copy(reinterpret_cast<char*>(entry.stamp.data()), sizeof(entry.stamp));
        FieldReader texts(fields.Next().value());
        while (const auto text = texts.Next()) {
            entry.texts.emplace_back(*text);
        }
        entries.emplace(*key, std::move(entry));
    }
}

const Reading& ReadingCache::Get(char what, const fs::path& path,
                                 const std::function<Texts()>& read) {
    const Stamp stamp = ReadStamp(path);
    Entry& entry = entries[what + path.native()];
    entry.isFresh = true;
    if (entry.isSettled && entry.stamp == stamp) {
        return entry;
    }
    changed = true;
    entry.isSettled = IsSettled(stamp);
    static_cast<Reading&>(entry) = {stamp, {}, {}};
    try {
        entry.texts = read();
    } catch (const Exception& error) {
        entry.problem = error.what();
    }
    return entry;
}

void ReadingCache::DropGone() {
    std::erase_if(entries, [](const auto& entry) {
        boost::system::error_code ignored;
        return !entry.second.isFresh && !fs::exists(entry.first.substr(1), ignored);
    });
}

void ReadingCache::Save() {
    if (!changed) {
        return;
    }
    DropGone();
    FieldWriter fields;
    fields.Add(VERSION);
    for (const auto& [key, entry] : entries) {
        if (!entry.isSettled) {
            continue;
        }
        FieldWriter texts;
        for (const std::string& text : entry.texts) {
            texts.Add(text);
        }
        fields.Add(key);
        fields.Add(ToBytes(entry.stamp));
        fields.Add(entry.problem);
        fields.Add(texts.GetText());
    }
    try {
        Platform::ReplaceFile(file.string(), fields.GetText());
    } catch (const std::exception&) {
        return;  // Everything is read again the next time.
    }
}

}  // namespace Tarnex::Collect
