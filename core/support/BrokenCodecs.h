#pragma once

#include <map>
#include <string>
#include <vector>

namespace Tarnex::Core::Utils {

/// Codec ids by implementation name or by black-list option key; keys in byte order.
using CodecLists = std::map<std::string, std::vector<std::string>>;

/// Codec ids that must not be trusted, by black-list option key.
class BrokenCodecs {
public:
    BrokenCodecs() = default;
    explicit BrokenCodecs(CodecLists lists);

    /// Parses a text that `ModuleOptionsToString` made of codec lists. An empty text gives no
    /// entries. Throws `Tarnex::Exception` with the line at fault if the text is malformed.
    explicit BrokenCodecs(const std::string& text);

    /// True if there are entries.
    explicit operator bool() const { return !lists.empty(); }
    operator const CodecLists&() const { return lists; }  // NOLINT

private:
    CodecLists lists;
};

}  // namespace Tarnex::Core::Utils
