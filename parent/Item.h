#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Tarnex::Parent {

enum class ItemKind { Plugin, Exercise, Codec };

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
    Missing,     ///< listed, but there is no module file
    Unavailable  ///< it can't work here, and nobody is to blame
};

/// The verdict's name in reports and on the command line ("no-material").
std::string_view ToString(Verdict verdict);

/// All names, in the order of the enumeration.
std::span<const std::string_view> GetVerdictNames();

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

/// One plugin, exercise or codec test, and what is known of it.
struct Item {
    ItemKind kind = ItemKind::Plugin;
    std::string name;            ///< the plugin's name, MODULE/ID of an exercise, or the test's id
    std::string factory;         ///< of a plugin
    std::string interface;       ///< of a plugin or exercise: its name in reports
    std::string plugin;          ///< of an exercise: the module's name
    std::string id;              ///< of an exercise: which of the module's plugins; may be empty
    std::string title;           ///< of an exercise: its name for people
    std::string depth;           ///< of an exercise: "load", "exercise" or "stress"
    std::string coder;           ///< of a codec: "Decoder" or "Encoder"
    std::string implementation;  ///< of a codec
    std::string codec;           ///< of a codec: its id
    std::string input;  ///< the encoder test that makes a decoder's input, if it ended a run
    std::optional<FileFacts> file;
    Verdict verdict = Verdict::NotReached;
    std::string reason;                ///< short: first line of a failure, signal, status, seconds
    std::string text;                  ///< the whole failure text, or the last words
    std::vector<std::string> remarks;  ///< worth knowing, but no fault
    std::optional<double> seconds;     ///< of the last attempt
    std::string phase;                 ///< "core start" where a module spoils that
    bool carried = false;              ///< taken over from an earlier report
    bool accepted = false;             ///< bad, but on the list of what the user accepts
    std::string checked;               ///< when it was really checked: UTC, ISO 8601, milliseconds
    std::string package;               ///< of a bad item's file, with its version
    std::vector<std::string> company;  ///< plugins that must be loaded first for it to be bad
    std::vector<std::string> spoils;   ///< items that are bad in its company
    std::vector<std::string> repro;    ///< the command that shows it again
};

}  // namespace Tarnex::Parent
