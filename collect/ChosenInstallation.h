#pragma once

#include <optional>
#include <string>
#include <vector>

#include "collect/InstallationLock.h"
#include "installation/Installation.h"

namespace Tarnex::Collect {

/// What is to be checked. Nobody changes it while the object is there.
struct ChosenInstallation {
    Installations::Installation installation;
    std::string reason;              ///< why it is that one
    std::vector<std::string> notes;  ///< for people: what was collected, or why nothing was
    InstallationLock lock;
};

/// That one, whatever lies in it; waits for whoever changes it.
ChosenInstallation Share(const Installations::Installation& installation,
                         const std::string& reason);

/// `app` if given. Else the user's own installation, which is made if it isn't there, and which
/// gets this machine's modules as they are now: new ones are linked, vanished ones unlinked. While
/// others check it, it stays as it is, with a note. Else, if it is a copy of another program's
/// folder or can't be made, this program's folder. Throws a `std::exception` with the path at
/// fault.
ChosenInstallation ChooseInstallation(const std::string& app);

}  // namespace Tarnex::Collect
