#pragma once

#include <string>
#include <vector>

#include "exercise/Request.h"

namespace Tarnex::Exercise {

struct Command {
    bool isList = false;
    Request request;
};

/// Reads the arguments, without the program's name. Where they name modules or bundles instead of a
/// request, the request is made from what they are; that loads them. Throws `RequestError`.
Command ReadCommand(const std::vector<std::string>& arguments);

}  // namespace Tarnex::Exercise
