#pragma once

#include <functional>
#include <istream>
#include <map>
#include <string>
#include <vector>

#include "core/support/ioPath.h"

namespace Tarnex::Core::Utils {

/// What a list may hold.
struct ListForm {
    std::function<bool(const std::string& key)> isKey;
    std::function<bool(const std::string& value)> isValue = [](const std::string&) { return true; };
};

/// Reads lines of the form "key: value, value, ..." (see `LoadFromFile`). `name` stands for the
/// source in the text of the `Tarnex::Exception` that a bad line, a key or value that isn't of the
/// form, or a failing stream gives.
std::map<std::string, std::vector<std::string>> ReadList(std::istream& source,
                                                         const std::string& name,
                                                         const ListForm& form);

/// The same for a file.
std::map<std::string, std::vector<std::string>> ReadListFile(const ioPath& path,
                                                             const ListForm& form);

/// The key of a line of a list, trimmed; the whole line where it has no colon.
std::string GetListKey(const std::string& line);

/// Takes the mark with which a file may begin off its first line.
void DropByteOrderMark(std::string& line);

/// Whether the key is one that `BlackListCodecOption` gives.
bool IsCodecListKey(const std::string& key);

}  // namespace Tarnex::Core::Utils
