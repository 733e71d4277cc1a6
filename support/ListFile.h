#pragma once

#include <functional>
#include <istream>
#include <map>
#include <string>
#include <vector>

#include "core/support/ioPath.h"

namespace Tarnex::Core::Utils {

/// Which keys and values a list may contain.
struct ListForm {
    std::function<bool(const std::string& key)> isKey;
    std::function<bool(const std::string& value)> isValue = [](const std::string&) { return true; };
};

/// Reads lines of the form "key: value, value, ..." (see `LoadFromFile`). Throws
/// `Tarnex::Exception` for a malformed line, a key or value that `form` rejects, or a failing
/// stream. The text calls the source `name`.
std::map<std::string, std::vector<std::string>> ReadList(std::istream& source,
                                                         const std::string& name,
                                                         const ListForm& form);

/// Does the same with a file.
std::map<std::string, std::vector<std::string>> ReadListFile(const ioPath& path,
                                                             const ListForm& form);

/// The trimmed key of a list's line, or the whole trimmed line if it has no colon.
std::string GetListKey(const std::string& line);

/// Removes a byte order mark from the first line of a file.
void DropByteOrderMark(std::string& line);

/// Whether `BlackListCodecOption` can return this key.
bool IsCodecListKey(const std::string& key);

}  // namespace Tarnex::Core::Utils
