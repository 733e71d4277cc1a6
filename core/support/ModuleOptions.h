#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/media/CoreManagerOptions.h"
#include "core/support/ioPath.h"

namespace Tarnex::Core::Utils {

/// What the keys of a list file name. Each format has a prefix that all its keys begin with.
enum class FormatType {
    Codecs = 1,   ///< "Codecs."; the keys are black-list option keys
    Plugins = 2,  ///< "Plugins."; any text may follow the prefix
};

/// Lists by key; keys in byte order.
using OptionLists = std::map<std::string, std::vector<std::string>>;

/// Reads a list file: UTF-8 text, LF or CRLF, with or without a byte order mark. Skips blank lines
/// and lines that begin with "#". Every other line is "key: value, value, ...". Trims keys and
/// values, drops empty values, and joins the lists of a repeated key.
/// Throws `Tarnex::Exception` that names the file and the line if anything else is found.
[[nodiscard]] OptionLists LoadFromFile(const ioPath& path, FormatType format);

/// Writes the lists as lines of a list file. Throws `Tarnex::Exception` for a key without prefix.
std::string ModuleOptionsToString(const OptionLists& lists, FormatType format);

/// All values of all keys: keys in order, and the values of each key in list order.
std::vector<std::string> ModuleOptionsToBlackPluginList(const OptionLists& lists);

/// Sets `option` of `module` to `values`, replacing any earlier values.
void SetModuleOption(CoreOptions& options, const std::string& module, const std::string& option,
                     const std::vector<std::string>& values);

/// Removes the format's prefix from the key. Returns a key without it unchanged.
std::string RemoveFormatType(const std::string& key, FormatType format);

}  // namespace Tarnex::Core::Utils
