#pragma once

namespace Tarnex::Platform {

/// Lets this process, and those that it starts from now on, have as many files open as the system
/// allows them, at most a million: some programs close all numbers up to the limit, one by one.
void RaiseFileLimit();

/// Lets neither this process nor those that it starts leave a core file.
void PreventCoreFiles();

}  // namespace Tarnex::Platform
