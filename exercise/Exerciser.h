#pragma once

#include "exercise/Request.h"

namespace Tarnex::Exercise {

/// Does the exercises of a request, in their order. What comes of each is told by records.
void RunExercises(const Request& request);

}  // namespace Tarnex::Exercise
