#include "platform/AtomicFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <system_error>

namespace Tarnex::Platform {
namespace {

namespace fs = std::filesystem;

constexpr int MOST_LINKS = 40;  // as the kernel follows
constexpr int MOST_TRIES = 100;

[[noreturn]] void Fail(const char* what, const std::string& path) {
    throw std::system_error(errno, std::generic_category(), what + path);
}

[[noreturn]] void FailToWrite(const std::string& path) {
    Fail("can't write ", path);
}

fs::path FolderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

/// Short, because the file's own name may have the greatest length that there is.
std::string FreshName(const std::string& path, const std::string& ending) {
    return (FolderOf(path) / (".assayer-" + ending)).native();
}

mode_t GetUmask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

struct Place {
    fs::path path;  ///< no link
    bool isStream;  ///< it is open already, as /dev/stdout is
};

/// Follows links, also to where nothing is yet.
Place Follow(fs::path path) {
    std::error_code ignored;
    for (int i = 0; i < MOST_LINKS; ++i) {
        const fs::path folder = fs::canonical(FolderOf(path), ignored);
        if (folder.native().starts_with("/proc/")) {
            return {path, true};
        }
        const fs::path target = fs::read_symlink(path, ignored);
        if (target.empty()) {
            break;
        }
        path = FolderOf(path) / target;
    }
    return {path, false};
}

bool IsWrittenAtOnce(const Place& place) {
    std::error_code ignored;
    const fs::file_type type = fs::status(place.path, ignored).type();
    return !place.isStream && (type == fs::file_type::regular || type == fs::file_type::not_found);
}

void WriteAll(int file, std::string_view bytes, const std::string& path) {
    while (!bytes.empty()) {
        const ssize_t size = write(file, bytes.data(), bytes.size());
        if (size < 0 && errno != EINTR) {
            FailToWrite(path);
        }
        bytes.remove_prefix(size < 0 ? 0 : static_cast<std::size_t>(size));
    }
}

void WriteInto(const std::string& path, std::string_view text) {
    const Descriptor file(open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
    if (file.Get() < 0) {
        FailToWrite(path);
    }
    WriteAll(file.Get(), text, path);
}

}  // namespace

AtomicFile::AtomicFile(std::string wanted) : path(std::move(wanted)) {
    std::string name = FreshName(path, "XXXXXX");
    file = Descriptor(mkostemp(name.data(), O_CLOEXEC));
    if (file.Get() < 0) {
        FailToWrite(path);
    }
    fchmod(file.Get(), 0666 & ~GetUmask());
    fresh = name;
}

AtomicFile::~AtomicFile() {
    if (!fresh.empty()) {
        unlink(fresh.c_str());
    }
}

void AtomicFile::Write(std::string_view bytes) {
    WriteAll(file.Get(), bytes, path);
}

void AtomicFile::Commit() {
    const bool isFlushed = fsync(file.Get()) == 0 || errno == EINVAL;  // not known there
    if (!isFlushed || rename(fresh.c_str(), path.c_str()) != 0) {
        FailToWrite(path);
    }
    fresh.clear();
    // The new name is flushed too. A file system that can't do that has done what it can.
    const Descriptor folder(open(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    fsync(folder.Get());
}

bool IsReplaceable(const std::string& path) {
    return IsWrittenAtOnce(Follow(path));
}

void ReplaceFile(const std::string& path, std::string_view text) {
    const Place place = Follow(path);
    if (!IsWrittenAtOnce(place)) {
        WriteInto(path, text);
        return;
    }
    AtomicFile file(place.path.native());
    file.Write(text);
    file.Commit();
}

void ReplaceByCopy(const std::string& source, const std::string& path) {
    const Descriptor from(open(source.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status {};
    if (from.Get() < 0 || fstat(from.Get(), &status) != 0) {
        Fail("can't read ", source);
    }
    AtomicFile file(path);
    std::array<char, 65536> buffer;
    ssize_t size = 0;
    while ((size = read(from.Get(), buffer.data(), buffer.size())) > 0) {
        file.Write({buffer.data(), static_cast<std::size_t>(size)});
    }
    if (size < 0) {
        Fail("can't read ", source);
    }
    const timespec times[] = {status.st_atim, status.st_mtim};
    if (fchmod(file.Get(), status.st_mode & 0777) != 0 || futimens(file.Get(), times) != 0) {
        FailToWrite(path);
    }
    file.Commit();
}

void ReplaceByLink(const std::string& target, const std::string& path) {
    std::random_device random;
    std::string fresh;
    for (int i = 0; i < MOST_TRIES; ++i) {
        fresh = FreshName(path, std::to_string(random()));
        if (symlink(target.c_str(), fresh.c_str()) == 0) {
            break;
        }
        if (errno != EEXIST) {
            FailToWrite(path);
        }
    }
    if (rename(fresh.c_str(), path.c_str()) != 0) {
        const int error = errno;
        unlink(fresh.c_str());
        errno = error;
        FailToWrite(path);
    }
}

}  // namespace Tarnex::Platform
