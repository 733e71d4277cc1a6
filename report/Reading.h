#pragma once

#include <boost/filesystem/path.hpp>
#include <nlohmann/json.hpp>
#include <string>

namespace Tarnex::Reports {

using Json = nlohmann::json;

/// The text of a regular file, or of standard input for "-". Throws `Tarnex::Exception` with the
/// reason, without the path; a pipe or a device is refused without waiting for it.
std::string ReadText(const boost::filesystem::path& path);

/// Throws `Tarnex::Exception` with the place for a text that isn't JSON or that is nested deeper
/// than any file of ours: the library copies and writes values recursively, so the stack would run
/// out.
Json ParseJson(const std::string& text);

/// What the library says is wrong, without its own number.
std::string Explain(const Json::exception& error);

}  // namespace Tarnex::Reports
