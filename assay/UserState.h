#pragma once

#include <boost/filesystem/path.hpp>

#include "installation/Installation.h"
#include "report/State.h"

namespace Tarnex::Assay {

/// Where the user's state of all installations lies. Throws `std::runtime_error` for a user without
/// a home.
boost::filesystem::path GetStateRoot();

/// What is known of an installation. Throws the same.
Reports::State GetState(const Installations::Installation& installation);

}  // namespace Tarnex::Assay
