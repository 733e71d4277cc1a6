#pragma once

namespace Tarnex::Core::Utils {

/// Tells Qt, by the variables that it reads, to be no trouble. It ends the process where it can't
/// create its platform, so one is chosen that can always be created: none of the displays where
/// there is none, else the display's with that to fall back on. Its warnings stay off standard
/// error, which is the parent's channel. Variables that are set already stand. To be called before
/// there are threads that read the environment.
void PrepareQtEnvironment();

}  // namespace Tarnex::Core::Utils
