#pragma once

#include <map>
#include <string>
#include <vector>

#include "core/media/CoreManagerOptions.h"
#include "core/support/ioPath.h"

namespace Tarnex::Core::Utils {

/// What the keys of a list name, and with it the mark that they begin with.
enum class FormatType {
    Codecs = 1,   ///< "Codecs.": black-list option keys
    Plugins = 2,  ///< "Plugins.": any text after the mark
};

/// Lists by key, in byte order.
using OptionLists = std::map<std::string, std::vector<std::string>>;

/// Reads a list file: UTF-8 text, LF or CRLF, with or without a byte order mark. Blank lines and
/// lines that begin with "#" are skipped, every other line is "key: value, value, ...". Keys and
/// values are trimmed, empty values dropped, a key that comes again adds to its list.
/// Whatever else it meets is a `Tarnex::Exception` whose text names the file and the line.
OptionLists LoadFromFile(const ioPath& path, FormatType format);

/// The lists as lines of a list file. Throws `Tarnex::Exception` for a key without the form's mark.
std::string ModuleOptionsToString(const OptionLists& lists, FormatType format);

/// All values of all keys, in key order and within a key in list order.
std::vector<std::string> ModuleOptionsToBlackPluginList(const OptionLists& lists);

/// Enters `values` as the value of `option` of `module`, in place of what was there.
void SetModuleOption(CoreOptions& options, const std::string& module, const std::string& option,
                     const std::vector<std::string>& values);

/// The key without the mark of its form; a key without that mark comes back as it is.
std::string RemoveFormatType(const std::string& key, FormatType format);

}  // namespace Tarnex::Core::Utils
