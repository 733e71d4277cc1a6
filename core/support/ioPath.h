#pragma once

#include <boost/filesystem.hpp>
#include <string>
#include <utility>

namespace Tarnex {

/// A file system path in UTF-8. On Linux it keeps the file system's bytes unchanged, even if they
/// aren't UTF-8.
class ioPath {
public:
    ioPath() = default;
    ioPath(const std::string& text) : path(text) {}  // NOLINT(google-explicit-constructor)
    ioPath(const char* text) : path(text) {}         // NOLINT(google-explicit-constructor)

    bool empty() const { return path.empty(); }

    /// True if a file or directory of this name can be reached; false on any error.
    bool exists() const {
        boost::system::error_code ignored;
        return boost::filesystem::exists(path, ignored);
    }

    std::string utf8string() const { return path.string(); }

    /// The last component.
    ioPath filename() const { return ioPath(path.filename()); }

    ioPath operator/(const ioPath& right) const { return ioPath(path / right.path); }

    /// Iterates over the entries of this directory: one level, in the file system's order.
    /// Throws `boost::filesystem::filesystem_error` if it can't be read.
    boost::filesystem::directory_iterator iterator() const {
        return boost::filesystem::directory_iterator(path);
    }

private:
    explicit ioPath(boost::filesystem::path path) : path(std::move(path)) {}

    boost::filesystem::path path;
};

}  // namespace Tarnex
