#include "assay/FileOutput.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string>

#include "core/support/Exception.h"

namespace Tarnex::Assay {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const fs::path& path, const std::string& reason) {
    throw Exception("can't write " + path.string() + ": " + reason);
}

void WriteInto(const fs::path& file, std::string_view text) {
    errno = 0;
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    if (!stream) {
        throw Exception(std::strerror(errno == 0 ? EIO : errno));
    }
}

void Replace(const fs::path& path, std::string_view text) {
    const fs::path fresh = path.string() + "." + std::to_string(getpid());
    try {
        WriteInto(fresh, text);
        fs::rename(fresh, path);
    } catch (...) {
        std::error_code ignored;
        fs::remove(fresh, ignored);
        throw;
    }
}

/// Behind a link lies the file to replace.
fs::path Resolve(const fs::path& path) {
    return fs::exists(path) ? fs::canonical(path) : path;
}

}  // namespace

void WriteFile(const fs::path& path, std::string_view text) {
    try {
        const fs::path target = Resolve(path);
        const bool isReplaced = !fs::exists(target) || fs::is_regular_file(target);
        isReplaced ? Replace(target, text) : WriteInto(target, text);
    } catch (const fs::filesystem_error& error) {
        Fail(path, error.code().message());
    } catch (const Exception& error) {
        Fail(path, error.what());
    }
}

void RequireWritable(const fs::path& path) {
    const fs::path folder = fs::absolute(path).parent_path();
    std::error_code error;
    fs::create_directories(folder, error);
    if (error || access(folder.c_str(), W_OK) != 0) {
        Fail(path, error ? error.message() : std::strerror(errno));
    }
    if (fs::exists(path, error) && !fs::is_regular_file(path, error)) {
        Fail(path, "not a regular file");
    }
}

}  // namespace Tarnex::Assay
