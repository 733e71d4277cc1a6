#pragma once

#include <filesystem>

#include "assay/Report.h"

namespace Tarnex::Assay {

/// Spares what ended a run in an earlier check and hasn't changed since.
class Known {
public:
    /// `environment` is today's. Kept list files are copied to `lists`.
    Known(Report report, const Json& environment, std::filesystem::path lists);

    /// Gives an item that ended a run then the verdict of then, unless anything differs. Items with
    /// files need these facts.
    void CarryPlugins(std::vector<Parent::Item>& plugins) const;

    /// The same, given the files of the media core's process now.
    void CarryCodecs(const Json& codecFiles, std::vector<Parent::Item>& codecs) const;

private:
    void Carry(std::vector<Parent::Item>& items) const;
    void KeepLists(Parent::Item& item) const;

    Report report;
    bool sameEnvironment;
    std::filesystem::path lists;
};

}  // namespace Tarnex::Assay
