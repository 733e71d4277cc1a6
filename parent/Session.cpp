#include "parent/Session.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <boost/filesystem.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "core/media/PluginFactories.h"
#include "core/support/Constants.h"
#include "core/support/ModuleOptions.h"

namespace Tarnex::Parent {
namespace {

/// Of the program's command line, and the most that it takes for a time.
constexpr std::size_t POSITIONS = 10;
constexpr std::uint64_t MOST_SECONDS = 4294967295;

Runs::Limits GetLimits(const CheckOptions& options) {
    const auto until = options.time ? Clock::now() + *options.time : Clock::time_point::max();
    return {options.jobs, options.stop, until};
}

}  // namespace

Session::Session(const CheckOptions& options, CheckListener& listener, CheckResult& result)
    : options(options),
      listener(listener),
      result(result),
      installation(options.application),
      order(installation.ReadOrder()),
      runs(GetLimits(options), listener, result) {}

/// The time at the second position is one that no run reaches, because the run's own limits end it
/// before.
Job Session::MakeJob(Work work, Names expected,
                     const std::map<std::size_t, std::string>& positions) const {
    Job job;
    job.program = installation.GetProgram();
    const std::size_t starts = work == Work::TestCodecs ? 1 + CountCoreModules() : 1;
    job.startTime = options.itemTime * starts;
    job.stepTime = options.itemTime;
    job.wholeTime = options.itemTime * (starts + expected.size() + 1);
    job.arguments = Names(POSITIONS, Core::Utils::EMPTY_VALUE);
    job.arguments[0] = work == Work::LoadPlugins ? "plugins" : "codecs";
    job.arguments[1] = std::to_string(std::min(
        MOST_SECONDS, static_cast<std::uint64_t>((job.wholeTime + options.itemTime).count())));
    for (const auto& [position, text] : positions) {
        job.arguments[position - 1] = text.empty() ? Core::Utils::EMPTY_VALUE : text;
    }
    job.follower = Follower(work, std::move(expected));
    return job;
}

Job Session::MakeHelperJob(const boost::filesystem::path& program, Names arguments,
                           Follower follower) const {
    Job job;
    job.program = program;
    job.arguments = std::move(arguments);
    job.startTime = job.stepTime = job.wholeTime = options.itemTime;
    job.follower = std::move(follower);
    return job;
}

std::size_t Session::CountCoreModules() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(order, [](const auto& place) { return IsOfCore(place.factory); }));
}

std::string Session::WriteFile(const std::string& name, std::string_view text) const {
    std::string path = (boost::filesystem::absolute(options.lists) / name).native();
    boost::system::error_code ignored;
    boost::filesystem::create_directories(options.lists, ignored);
    std::ofstream file(path, std::ios::binary);
    file << text;
    if (!file.flush()) {
        throw CheckFailure("Can't write \"" + path + "\": " + std::strerror(errno));
    }
    return path;
}

std::string Session::WriteList(const std::string& name, const Names& plugins) const {
    return plugins.empty() ? ""
                           : WriteFile(name, Core::Utils::ModuleOptionsToString(
                                                 {{"Plugins.Listed", plugins}},
                                                 Core::Utils::FormatType::Plugins));
}

std::string Session::NextFile(const std::string& stem, const char* extension) {
    return fmt::format("{}-{}.{}", stem, ++files, extension);
}

void Session::Spare(std::vector<Item>& items) const {
    for (Item& item : items) {
        const bool isThere = item.verdict != Verdict::Missing;
        const bool isKnown = item.carried && EndsRuns(item.verdict);
        if (options.spared.contains(item.name) && isThere && !isKnown) {
            item.carried = false;
            Judge(item, StoppedMachine(), StoppedMachine());
        }
    }
}

void Session::Tell(const Item& item) {
    if (told.insert(&item).second) {
        listener.OnVerdict(item);
    }
}

void Session::Note(const std::string& text) {
    if (notes.insert(text).second) {
        result.notes.push_back(text);
    }
}

bool IsOfCore(const std::string& factory) {
    return factory == Core::CODEC_FACTORY || factory == Core::MUXER_FACTORY ||
           factory == Core::PARSER_FACTORY;
}

std::string Join(const Names& names) {
    return fmt::to_string(fmt::join(names, ","));
}

Names ToCommand(const Job& job) {
    Names command{job.program.native()};
    command.insert(command.end(), job.arguments.begin(), job.arguments.end());
    return command;
}

}  // namespace Tarnex::Parent
