#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace Tarnex::Exercise {

enum class Depth { Load, Exercise, Stress };

/// Throws `RequestError` for another word.
Depth ParseDepth(const std::string& word);

struct ModuleRequest {
    std::string name;       ///< as the parent calls it
    std::string interface;  ///< "LADSPA", "LV2", "CLAP", "VST3", "Vamp" or "frei0r"
    std::string path;       ///< of the shared object
    std::string bundle;     ///< the folder that it belongs to; may be empty
};

struct ExerciseRequest {
    std::string module;  ///< a module's name
    std::string id;
};

/// What is asked for.
struct Request {
    Depth depth = Depth::Exercise;
    std::vector<ModuleRequest> modules;
    std::vector<ExerciseRequest> exercises;  ///< in the order in which they are done

    const ModuleRequest& GetModule(const std::string& name) const;
};

/// The request can't be read or makes no sense. The text names the file and what is wrong.
class RequestError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a request from a JSON file. Throws `RequestError`.
Request ReadRequest(const std::string& file);

}  // namespace Tarnex::Exercise
