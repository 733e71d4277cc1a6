#pragma once

namespace Tarnex::Assay {

/// The whole program: arguments to exit status. Throws nothing.
int RunCommandLine(int argc, char** argv);

}  // namespace Tarnex::Assay
