#pragma once

#include <boost/filesystem/path.hpp>

#include "assay/Report.h"

namespace Tarnex::Assay {

/// Gives an item that ended a run in the report the verdict of then, if nothing that it depends on
/// differs from `environment`, which is today's; for codecs with the files of the media core's
/// process. Copies list files that it needs to `lists`.
void CarryOver(const Report& known, const Json& environment, const boost::filesystem::path& lists,
               std::vector<Parent::Item>& items);

}  // namespace Tarnex::Assay
