#pragma once

#include <boost/filesystem/path.hpp>
#include <chrono>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/support/Exception.h"
#include "parent/Item.h"

namespace Tarnex::Parent {

/// What the user wants of a check.
struct CheckOptions {
    bool plugins = false;
    bool codecs = false;
    boost::filesystem::path application;       ///< the installation directory
    std::vector<std::string> pluginNames;      ///< empty: all
    std::vector<std::string> implementations;  ///< empty: all
    std::vector<std::string> codecIds;         ///< empty: all
    std::vector<std::string> skip;             ///< names of items that are left out
    /// Items that come after all others of their phase, one at a time.
    std::set<std::string> last;
    /// Items that aren't touched: the machine stopped with them alone.
    std::set<std::string> spared;
    std::string depth = "exercise";  ///< or "load" or "stress"
    std::chrono::seconds itemTime{20};
    std::optional<std::chrono::seconds> time;  ///< for the whole check; none: as long as it takes
    unsigned int jobs = 1;                     ///< runs side by side, at least 1
    boost::filesystem::path lists;  ///< folder for the list files that `repro` commands need
    int stop = -1;                  ///< a descriptor; once it is readable the check ends early

    /// Whether the item is among the chosen ones.
    bool Wants(const Item& item) const;
};

/// How a process ended: one of these.
struct RunEnd {
    std::optional<int> status{};
    std::optional<std::string> signal{};  ///< its name, "SIGSEGV"
    std::optional<double> deadline{};     ///< it was ended after so many seconds
};

/// One process that the check started.
struct RunFacts {
    std::vector<std::string> arguments;  ///< Assayer's; the helper's name and its own
    RunEnd end;
    double seconds;
};

/// What the helper program says of the media core.
struct Listing {
    /// Codec ids by implementation and coder type ("Decoder", "Encoder").
    std::map<std::string, std::map<std::string, std::set<std::string>>> codecs;
};

/// An item for each test, sorted by name.
std::vector<Item> ToItems(const Listing& listing);

/// Verdicts taken over from earlier checks: these items aren't touched.
struct Carried {
    std::vector<Item> exercises;
    std::set<std::string> listed;  ///< modules all of whose exercises are here: they aren't listed
    std::vector<Item> codecs;
    bool allCodecs = false;  ///< no others are offered: the media core isn't asked
};

struct Progress {
    std::string_view phase;  ///< "plugins", "codecs", "trials", "company"
    std::size_t done;        ///< items decided in this phase
    std::size_t total;
    std::string_view touched;        ///< an item that is open; empty if none is known
    std::chrono::milliseconds open;  ///< for how long
};

/// Is told what happens, on the thread that called `RunCheck`. Must not throw.
class CheckListener {
public:
    virtual ~CheckListener() = default;
    /// An item's verdict is final. Called once for each item.
    virtual void OnVerdict(const Item& item) = 0;
    /// Called several times a second while runs are under way.
    virtual void OnProgress(const Progress& progress) = 0;
    /// What a run wrote on standard error, as it arrives; `run` is its index in
    /// `CheckResult::runs`.
    virtual void OnOutput(std::size_t run, std::string_view bytes) = 0;
    /// A run is about to start. `names`: all that it and the runs under way may touch.
    virtual void OnOpen(const std::vector<std::string>& names) = 0;
};

struct CheckResult {
    bool complete = false;
    std::string badEnd;              ///< how a run ended badly after its last item; or empty
    std::string problem;             ///< why not; empty if complete
    std::vector<std::string> notes;  ///< what a person should know and no item holds
    /// Plugins in the order of the check, exercises in the order of their plugins, codecs by name.
    std::vector<Item> items;
    std::vector<RunFacts> runs;  ///< in the order of start
    /// Files that processes had mapped, links resolved: the one that listed the good modules'
    /// plugins, and those that tested codecs.
    std::set<std::string> moduleFiles, codecFiles;
};

/// The plugins of an installation in the order of the check, `OglManager` first, each name once,
/// with the resolved path of its file (`file.path` alone) or the verdict `Missing`. Throws
/// `Tarnex::Exception` if plugins.list can't be read.
std::vector<Item> ListPlugins(const boost::filesystem::path& application);

/// Fills in what the plugins that have a file speak to their host. Reads those files.
void FindInterfaces(std::vector<Item>& plugins);

/// Checks an installation; see the options. `plugins` is what `ListPlugins` gave; an item that has
/// a verdict other than `NotReached` (missing, or carried) isn't touched. Throws
/// `Tarnex::Exception` for an installation without Assayer, or a list file that can't be written.
/// What goes wrong with the program under way stands in the result.
CheckResult RunCheck(const CheckOptions& options, std::vector<Item> plugins, Carried carried,
                     CheckListener& listener);

/// What the media core offers, asked once, within the time of an item; none if it doesn't start so.
std::optional<Listing> AskForCodecs(const CheckOptions& options, CheckListener& listener);

/// What the media core offers, without those `plugins` that are bad. Throws `Tarnex::Exception` if
/// it can't be listed, else the same.
Listing ListCodecs(const CheckOptions& options, std::vector<Item> plugins, CheckListener& listener);

/// What is in the wanted modules, without using it: items of exercises, in the order of the
/// plugins, whose interfaces have to be known. A module that can't be listed has one item without
/// an id that says why. Needs a folder for lists, and throws the same.
std::vector<Item> ListExercises(const CheckOptions& options, std::vector<Item> plugins,
                                CheckListener& listener);

}  // namespace Tarnex::Parent
