#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "installation/Installation.h"
#include "parent/Item.h"
#include "report/Ground.h"
#include "report/LoaderCache.h"

namespace Tarnex::Reports {

/// What verdicts may rest on, as it is now.
struct Facts {
    /// Reads the samples' names and the loader's cache.
    explicit Facts(const Installations::Installation& installation);

    /// The samples that serve the decoder's test, sorted; none for any other item.
    std::vector<std::string> FindSamples(const Parent::Item& item) const;

    Installations::Installation installation;
    Json environment;
    LoaderCache cache;
    std::vector<std::string> samples;  ///< paths, sorted
};

/// Compares a report's ground with what is now. Looks at each file once.
class GroundCheck {
public:
    /// Keeps both.
    GroundCheck(const GroundTable& then, const Facts& now);

    /// Whether nothing changed on which the item rests; false without a ground.
    bool Holds(std::size_t place, const Parent::Item& item);

    bool HoldLibraries(std::size_t libraries);

    /// Whether the files of the ground, besides libraries, begin with this one.
    bool IsFirstFile(std::size_t place, const std::string& path) const;

private:
    bool IsSame(std::size_t file);
    bool Compare(const Libraries& libraries);

    const GroundTable& then;
    const Facts& now;
    std::vector<std::optional<bool>> files;
    std::vector<std::optional<bool>> libraries;
};

}  // namespace Tarnex::Reports
