#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "report/Reading.h"

namespace Tarnex::Reports {

/// What tells whether a file is the same as then.
struct FileState {
    std::string path;  ///< links resolved
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;     ///< bytes
    std::int64_t modified = 0;  ///< nanoseconds since 1970
    std::int64_t changed = 0;   ///< of the file's status; nanoseconds since 1970
    std::string buildId;        ///< empty where the file has none

    auto operator<=>(const FileState&) const = default;
};

/// Without the build id; none if there is no regular file at `path`.
std::optional<FileState> ReadFileState(const std::string& path);

/// What many items have in common. The numbers are places in the tables of `GroundTable`.
struct Libraries {
    std::size_t environment = 0;
    std::vector<std::size_t> files;            ///< mapped, or named by the loader; the programs too
    std::map<std::string, std::string> names;  ///< as `LoaderCache::Resolve` told then

    auto operator<=>(const Libraries&) const = default;
};

/// What one item's verdict rests on.
struct Ground {
    std::size_t libraries = 0;
    std::vector<std::size_t> files;  ///< its module and those of its company; a decoder's samples

    bool operator==(const Ground&) const = default;
};

/// What the verdicts of a report rest on; an item without ground is checked again.
struct GroundTable {
    std::vector<Json> environments;  ///< as `DescribeEnvironment` gives them
    std::vector<FileState> files;
    std::vector<Libraries> libraries;
    std::vector<std::optional<Ground>> items;  ///< for each item of the report, in its order
};

/// Makes a table that holds each thing once.
class GroundBuilder {
public:
    std::size_t AddEnvironment(const Json& environment);
    std::size_t AddFile(const FileState& file);
    std::size_t AddLibraries(const Libraries& libraries);

    /// The same things in this table.
    std::optional<Ground> Adopt(const GroundTable& other, const std::optional<Ground>& ground);
    std::size_t AdoptLibraries(const GroundTable& other, std::size_t libraries);

    GroundTable table;

private:
    std::map<FileState, std::size_t> files;
    std::map<Libraries, std::size_t> libraries;
};

Json ToJson(const GroundTable& table);

/// Throws `Tarnex::Exception` or `Json::exception` for another form; `items` is how many items the
/// report has.
GroundTable ParseGroundTable(const Json& json, std::size_t items);

}  // namespace Tarnex::Reports
