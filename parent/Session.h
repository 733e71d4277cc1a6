#pragma once

#include <set>
#include <unordered_map>

#include "core/support/Text.h"
#include "installation/Installation.h"
#include "parent/Runs.h"

namespace Tarnex::Parent {

using Core::Utils::Contains;

/// What the phases of a check have in common.
class Session {
public:
    /// Throws as `Installation::ReadOrder` does.
    Session(const CheckOptions& options, CheckListener& listener, CheckResult& result);

    /// A run of Assayer that should touch these, with texts for the program's positions from the
    /// third on, by number. The others get the placeholder for nothing, as an empty text does.
    Job MakeJob(Work work, Names expected,
                const std::map<std::size_t, std::string>& positions) const;

    /// A run of a helper.
    Job MakeHelperJob(const boost::filesystem::path& program, Names arguments,
                      Follower follower) const;

    /// How many modules the media core loads at its start; each has the time of an item for that.
    std::size_t CountCoreModules() const;

    /// Writes a file into the folder for lists and gives its path. Throws `CheckFailure`.
    std::string WriteFile(const std::string& name, std::string_view text) const;

    /// The same with a plugin list; an empty path if there are no names.
    std::string WriteList(const std::string& name, const Names& plugins) const;

    /// "STEM-7.json", each number once.
    std::string NextFile(const std::string& stem, const char* extension);

    /// Whether it comes after all others of its phase, with nothing beside it.
    bool IsLast(const std::string& item) const { return options.last.contains(item); }
    /// Decides those items that mustn't be touched.
    void Spare(std::vector<Item>& items) const;

    /// Tells the listener, each item once.
    void Tell(const Item& item);
    void Note(const std::string& text);

    const CheckOptions& options;
    CheckListener& listener;
    CheckResult& result;
    const Installations::Installation installation;
    const std::vector<Installations::PluginPlace> order;
    Runs runs;

private:
    std::set<const Item*> told;
    std::set<std::string> notes;
    int files = 0;
};

/// Whether the media core loads the modules of the factory when it starts.
bool IsOfCore(const std::string& factory);

/// Separated by commas.
std::string Join(const Names& names);

/// The command, as an argument vector, that starts the run.
Names ToCommand(const Job& job);

}  // namespace Tarnex::Parent
