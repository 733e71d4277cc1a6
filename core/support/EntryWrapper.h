#pragma once

#include <functional>

namespace Tarnex::Core {

/// Converts the arguments to UTF-8, calls `run` with them, and returns its result. The array ends
/// with a null pointer and lives until `run` returns; `run` may change it.
[[nodiscard]] int EntryWrapperWchar(int argc, wchar_t** argv,
                                    const std::function<int(int, char**)>& run);

}  // namespace Tarnex::Core
