#pragma once

#include <filesystem>
#include <string_view>

namespace Tarnex::Assay {

/// Writes the file in one step: a reader sees the old text or the whole new one. What isn't a
/// regular file, such as a pipe, is written to. Throws `Tarnex::Exception` with the path and the
/// reason; what was there is then untouched.
void WriteFile(const std::filesystem::path& path, std::string_view text);

/// Throws the same if a file of that name plainly can't be written there: a missing right, no
/// folder, a folder or a device of that name. Makes the folder that it lies in.
void RequireWritable(const std::filesystem::path& path);

}  // namespace Tarnex::Assay
