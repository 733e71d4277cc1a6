#pragma once

#include <functional>
#include <istream>
#include <map>
#include <string>
#include <vector>

#include "core/support/ioPath.h"

namespace Tarnex::Core::Utils {

/// Whether a list may have this key.
using KeyCheck = std::function<bool(const std::string& key)>;

/// Reads lines of the form "key: value, value, ..." (see `LoadFromFile`). `name` stands for the
/// source in the text of the `Tarnex::Exception` that a bad line, a key that `isKey` doesn't know,
/// or a failing stream gives.
std::map<std::string, std::vector<std::string>> ReadList(std::istream& source,
                                                         const std::string& name,
                                                         const KeyCheck& isKey);

/// The same for a file.
std::map<std::string, std::vector<std::string>> ReadListFile(const ioPath& path,
                                                             const KeyCheck& isKey);

/// Whether the key is one that `BlackListCodecOption` gives.
bool IsCodecListKey(const std::string& key);

}  // namespace Tarnex::Core::Utils
