#pragma once

#include <functional>

namespace Tarnex::Core {

/// Calls `run` with the arguments in UTF-8 and returns its result. `run` may change the array,
/// which ends in a null pointer and lives for the call.
[[nodiscard]] int EntryWrapperWchar(int argc, wchar_t** argv,
                                    const std::function<int(int, char**)>& run);

}  // namespace Tarnex::Core
