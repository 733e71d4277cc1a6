#pragma once

#include <string>
#include <vector>

#include "parent/Item.h"
#include "report/Reading.h"

namespace Tarnex::Assay {

/// What a check would touch: items without verdicts, but for what is missing or can't be listed.
struct Inventory {
    std::string installation;
    std::vector<Parent::Item> plugins;  ///< in the order of the check
    std::vector<Parent::Item> exercises;
    std::vector<Parent::Item> codecs;   ///< sorted by name
    std::vector<std::string> problems;  ///< why a part couldn't be listed
};

/// The lines for people: plugins by interface and factory, each with what is in it unless that is
/// the plugin itself, then codecs by coder and implementation.
std::vector<std::string> Describe(const Inventory& inventory);

/// The items in the report's form, as doc/report.md describes it.
Reports::Json ToJson(const Inventory& inventory);

}  // namespace Tarnex::Assay
