#pragma once

#include <boost/filesystem/path.hpp>
#include <string>
#include <vector>

#include "collect/Update.h"
#include "installation/Installation.h"

namespace Tarnex::Collect {

/// What collecting found and changed.
struct Collected {
    bool copied = false;  ///< the program was copied or renewed
    std::size_t modules = 0;
    Changes changes;
    std::vector<LeftOut> leftOut;

    /// For people, on one line: "475 modules; 3 linked, 1 removed".
    std::string Summarise() const;
};

/// Makes `installation` one like this program's folder, if it isn't there, is empty or was made so
/// before; any other installation keeps its programs. Then adds the modules of `folders` and
/// remembers these; without any, those of the usual folders and of all remembered ones. What hasn't
/// changed since isn't read again. Throws a `std::exception` with the path at fault. The caller
/// holds the lock.
Collected CollectInto(const Installations::Installation& installation,
                      const std::vector<boost::filesystem::path>& folders);

}  // namespace Tarnex::Collect
