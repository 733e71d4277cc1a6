#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "collect/ModuleKinds.h"
#include "collect/ReadingCache.h"
#include "installation/ModuleFile.h"

namespace Tarnex::Collect {

struct FoundModule {
    boost::filesystem::path path;  ///< absolute; a link in the last component isn't resolved
    const ModuleKind* kind;
    std::string name;  ///< the wanted name, without its kind's suffix; several may want the same
    Installations::FileId id;
};

struct LeftOut {
    boost::filesystem::path path;
    std::string reason;
    boost::filesystem::path folder{};  ///< the folder that was searched; empty if that is the path
};

struct Findings {
    std::vector<FoundModule> modules;  ///< each file once
    std::vector<LeftOut> leftOut;
};

/// Finds the modules in the folders as hosts of their kinds do: folder by folder, each sorted by
/// path. A folder for any kind is searched for all of them, however deep. Skips `installation`.
///
/// A file is of its folder's kind if it exports that entry point; else of the first kind whose
/// entry point it exports; else of its folder's kind, so that the check reports why it can't be
/// loaded. In bundles, only the files that hosts open are modules. Everything else with the name of
/// a module is left out, with the reason.
Findings FindModules(const std::vector<SearchFolder>& folders,
                     const boost::filesystem::path& installation, ReadingCache& cache);

/// Looks at one file or bundle, whose name may be any; `path` is absolute.
Findings ExamineModule(const boost::filesystem::path& path, ReadingCache& cache);

/// What was left out, for people: a line for each reason and searched folder.
std::vector<std::string> Describe(const std::vector<LeftOut>& leftOut);

}  // namespace Tarnex::Collect
