#include "report/Facts.h"

#include <algorithm>
#include <boost/filesystem.hpp>

#include "installation/ModuleFile.h"
#include "report/Environment.h"

namespace Tarnex::Reports {
namespace {

namespace fs = boost::filesystem;

/// The folder's own path with links resolved, because it counts in the search for samples.
std::vector<std::string> ListSamples(const fs::path& folder) {
    boost::system::error_code error;
    std::vector<std::string> samples;
    for (fs::directory_iterator entry(fs::canonical(folder, error), error), end;
         !error && entry != end; entry.increment(error)) {
        samples.push_back(entry->path().native());
    }
    std::ranges::sort(samples);
    return samples;
}

/// A copy has another inode, and a change of owner or a new link another status time: then the
/// linker's id tells whether it is the same build.
bool AreSame(const FileState& then, const FileState& now) {
    FileState same = now;
    same.inode = then.inode;
    same.changed = then.changed;
    same.buildId = then.buildId;
    if (same != then) {
        return false;
    }
    const bool untouched = now.inode == then.inode && now.changed == then.changed;
    return untouched ||
           (!then.buildId.empty() && Installations::ReadBuildId(now.path) == then.buildId);
}

}  // namespace

Facts::Facts(const Installations::Installation& installation)
    : installation(installation),
      environment(DescribeEnvironment()),
      samples(ListSamples(installation.GetSamples())) {}

std::vector<std::string> Facts::FindSamples(const Parent::Item& item) const {
    std::vector<std::string> found;
    if (item.coder == "Decoder") {
        std::ranges::copy_if(samples, std::back_inserter(found), [&](const std::string& sample) {
            return sample.find(item.codec) != std::string::npos;
        });
    }
    return found;
}

GroundCheck::GroundCheck(const GroundTable& then, const Facts& now)
    : then(then), now(now), files(then.files.size()), libraries(then.libraries.size()) {}

bool GroundCheck::Holds(std::size_t place, const Parent::Item& item) {
    const auto& ground = then.items.at(place);
    if (!ground || !HoldLibraries(ground->libraries)) {
        return false;
    }
    const bool isCodec = item.kind == Parent::ItemKind::Codec;
    if (isCodec && now.FindSamples(item).size() != ground->files.size()) {
        return false;
    }
    return std::ranges::all_of(ground->files, [this](std::size_t file) { return IsSame(file); });
}

bool GroundCheck::HoldLibraries(std::size_t place) {
    auto& known = libraries.at(place);
    known = known.value_or(false) || (!known && Compare(then.libraries[place]));
    return *known;
}

bool GroundCheck::IsFirstFile(std::size_t place, const std::string& path) const {
    const auto& ground = then.items.at(place);
    return ground && !ground->files.empty() && then.files[ground->files.front()].path == path;
}

bool GroundCheck::IsSame(std::size_t place) {
    auto& known = files[place];
    if (!known) {
        const auto state = ReadFileState(then.files[place].path);
        known = state && AreSame(then.files[place], *state);
    }
    return *known;
}

bool GroundCheck::Compare(const Libraries& set) {
    return then.environments[set.environment] == now.environment &&
           std::ranges::all_of(set.files, [this](std::size_t file) { return IsSame(file); }) &&
           std::ranges::all_of(set.names, [this](const auto& name) {
               return now.cache.Resolve(name.first) == name.second;
           });
}

}  // namespace Tarnex::Reports
