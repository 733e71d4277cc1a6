// The input holds the arguments after the program's name, each ended by a zero byte.

#include <glog/logging.h>
#include <unistd.h>

#include <iostream>
#include <stdexcept>
#include <vector>

#include "core/support/Exception.h"
#include "fuzz/MemoryFile.h"
#include "run/CommandLine.h"

namespace {

std::vector<std::string> Split(const std::string& input) {
    std::vector<std::string> arguments{"Assayer"};
    for (std::size_t at = 0; at < input.size();) {
        const std::size_t end = std::min(input.find('\0', at), input.size());
        arguments.push_back(input.substr(at, end - at));
        at = end + 1;
    }
    return arguments;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    FLAGS_minloglevel = google::NUM_SEVERITIES;
    std::cout.rdbuf(nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    if (input.find('/') != std::string::npos) {
        return 0;  // no paths: list files have their own target, and devices must not be opened
    }
    std::vector<std::string> arguments = Split(input);
    std::vector<char*> argv;
    argv.reserve(arguments.size());
    for (std::string& argument : arguments) {
        argv.push_back(argument.data());
    }
    Tarnex::Core::Utils::Config config;
    bool accepted = false;
    try {
        accepted = ParseCommandLine(static_cast<int>(argv.size()), argv.data(), config);
    } catch (const Tarnex::Exception&) {
    } catch (const std::invalid_argument&) {
    } catch (const std::out_of_range&) {
    }
    Tarnex::Fuzz::Require(accepted || config.verifiableCodecs.empty());
    return 0;
}
