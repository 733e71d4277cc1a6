#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

namespace Tarnex::Parent {

inline constexpr char PROGRAM[] = "Assayer";
/// Lists what the media core offers; lies beside it.
inline constexpr char HELPER[] = "assayer-list";

/// A place in the order of the check; a name that two factories list has two.
struct PluginPlace {
    std::string name;
    std::string factory;
};

/// What plugins.list gives. Throws `Tarnex::Exception`.
std::vector<PluginPlace> ReadPluginOrder(const boost::filesystem::path& application);

bool HasModule(const boost::filesystem::path& application, const std::string& plugin);

/// Whether Assayer finds a sample file for the codec id.
bool HasSample(const boost::filesystem::path& application, const std::string& codecId);

}  // namespace Tarnex::Parent
