#pragma once

#include <string>
#include <string_view>

#include "platform/Descriptor.h"

namespace Tarnex::Platform {

/// A file that appears under its name in one step, whole and flushed, with the rights that the
/// umask gives. Until then it has a name of its own in the same directory; without `Commit` it
/// goes. All throw `std::system_error` with the path and the reason; what had the name is then
/// untouched.
class AtomicFile {
public:
    /// A link or file that has the name is replaced, not followed.
    explicit AtomicFile(std::string path);
    ~AtomicFile();

    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    void Write(std::string_view bytes);
    void Commit();

    int Get() const { return file.Get(); }  ///< its descriptor

private:
    const std::string path;
    std::string fresh;  ///< its name until it is committed; then empty
    Descriptor file;
};

/// Whether `ReplaceFile` writes the path in one step: it is a regular file or isn't there.
[[nodiscard]] bool IsReplaceable(const std::string& path);

/// Writes a text as an `AtomicFile`, where links lead to. What isn't a regular file, such as a pipe
/// or /dev/stdout, is written into. Throws as `AtomicFile` does.
void ReplaceFile(const std::string& path, std::string_view text);

/// Makes a copy as an `AtomicFile`, with the mode and the times of the source. Throws as
/// `AtomicFile` does, also if the source can't be read.
void ReplaceByCopy(const std::string& source, const std::string& path);

/// Makes a symbolic link in one step, instead of what file or link has the name. Throws
/// `std::system_error` with the path and the reason.
void ReplaceByLink(const std::string& target, const std::string& path);

}  // namespace Tarnex::Platform
