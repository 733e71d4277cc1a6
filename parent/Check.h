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

/// A name in the options that there isn't; the text says which there are.
class UnknownName : public Exception {
public:
    using Exception::Exception;
};

struct CheckOptions {
    bool plugins = false;
    bool codecs = false;
    boost::filesystem::path application;       ///< the installation directory
    std::vector<std::string> pluginNames;      ///< empty: all
    std::vector<std::string> implementations;  ///< empty: all
    std::vector<std::string> codecIds;         ///< empty: all
    std::chrono::seconds itemTime{20};
    unsigned int jobs = 1;          ///< runs side by side, at least 1
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
    std::vector<std::string>
        files;  ///< mapped in its process after the modules listed their codecs
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
    /// The codecs are known. May decide items (`carried`): what isn't `NotReached` isn't tested.
    virtual void OnListing(const Listing& listing, std::vector<Item>& codecs) = 0;
};

struct CheckResult {
    bool complete = false;
    bool badEnd = false;             ///< a run ended badly after its last item
    std::string problem;             ///< why not; empty if complete
    std::vector<std::string> notes;  ///< what a person should know and no item holds
    std::vector<Item> items;         ///< plugins in the order of the check, then codecs by name
    std::vector<RunFacts> runs;      ///< in the order of start
};

/// The plugins of an installation in the order of the check, `OglManager` first, each name once,
/// with the resolved path of its file (`file.path` alone) or the verdict `Missing`. Throws
/// `Tarnex::Exception` if plugins.list can't be read.
std::vector<Item> ListPlugins(const boost::filesystem::path& application);

/// Checks an installation; see the options. `plugins` is what `ListPlugins` gave; an item that has
/// a verdict other than `NotReached` (missing, or carried from an earlier report) isn't touched.
/// Throws `UnknownName` for a name in the options that there isn't, `Tarnex::Exception` for an
/// installation without Assayer, or a list file that can't be written. What goes wrong with the
/// program under way stands in the result.
CheckResult RunCheck(const CheckOptions& options, std::vector<Item> plugins,
                     CheckListener& listener);

}  // namespace Tarnex::Parent
