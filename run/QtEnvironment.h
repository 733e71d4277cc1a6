#pragma once

namespace Tarnex::Core::Utils {

/// Chooses a Qt platform that always starts, and silences Qt's warnings. Qt aborts the process if
/// its platform can't be created, so "offscreen" is used without a display and as the fall-back
/// with one. The warnings would go to standard error, which the parent reads. Keeps variables that
/// are already set. Call it before other threads read the environment.
void PrepareQtEnvironment();

}  // namespace Tarnex::Core::Utils
