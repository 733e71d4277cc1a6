#pragma once

#include <vector>

#include "collect/ModuleInstallation.h"
#include "parent/Item.h"

namespace Tarnex::Assay {

/// The files that aren't modules, as failed plugins.
std::vector<Parent::Item> DescribeRefused(const Collect::ModuleInstallation& modules);

/// Lets the item's command be the one that checks its file again: what the check was made with goes
/// with it.
void ReplaceRepro(Parent::Item& item, const Collect::ModuleInstallation& modules);

}  // namespace Tarnex::Assay
