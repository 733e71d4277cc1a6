#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tarnex::Parent {

enum class ItemKind { Plugin, Codec };

/// What a check finally says of an item.
enum class Verdict {
    NotReached,  ///< the check couldn't be completed
    Good,        ///< it was touched and nothing was reported
    Failed,      ///< reported, alone too
    Tolerated,   ///< a failure that isn't counted
    NoMaterial,  ///< a decoder without input: not tested, not broken
    Crashed,     ///< ended its run by a signal, twice
    Ended,       ///< ended its run by an exit status of its own, twice the same one
    Hung,        ///< open longer than the item time, twice
    Unsteady,    ///< bad in company but not alone, or in different ways
    Missing      ///< listed, but there is no module file
};

/// The verdict's name in reports and on the command line ("no-material").
std::string_view ToString(Verdict verdict);

/// The verdict of that name; none for any other text.
std::optional<Verdict> ParseVerdict(std::string_view name);

/// Whether it makes a check end with status 1.
bool IsBad(Verdict verdict);

/// Whether an item with it ends the run in which it is touched.
bool EndsRuns(Verdict verdict);

/// A plugin's module file, links resolved.
struct FileFacts {
    std::string path;
    std::uint64_t size = 0;  ///< bytes
    std::string modified;    ///< UTC, ISO 8601, to the nanosecond
    std::string buildId;     ///< hexadecimal; empty where the file has none

    bool operator==(const FileFacts&) const = default;
};

/// One plugin or one codec test, and what is known of it.
struct Item {
    ItemKind kind = ItemKind::Plugin;
    std::string name;            ///< the plugin's name, or the test's id
    std::string factory;         ///< of a plugin
    std::string coder;           ///< of a codec: "Decoder" or "Encoder"
    std::string implementation;  ///< of a codec
    std::string codec;           ///< of a codec: its id
    std::string input;  ///< the encoder test that makes a decoder's input, if it ended a run
    std::optional<FileFacts> file;
    Verdict verdict = Verdict::NotReached;
    std::string reason;                ///< short: first line of a failure, signal, status, seconds
    std::string text;                  ///< the whole failure text
    std::optional<double> seconds;     ///< of the last attempt
    std::string phase;                 ///< "core start" where a module spoils that
    bool carried = false;              ///< taken over from an earlier report
    std::vector<std::string> company;  ///< plugins that must be loaded first for it to be bad
    std::vector<std::string> spoils;   ///< items that are bad in its company
    std::vector<std::string> repro;    ///< the command that shows it again
};

}  // namespace Tarnex::Parent
