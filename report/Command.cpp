#include "report/Command.h"

namespace Tarnex::Reports {
namespace {

constexpr int LONGEST_SILENCE = 10'000;  // ms

}  // namespace

std::string AwaitOutput(Platform::Process& process) {
    std::string output;
    while (!process.TakeReport()) {
        std::vector<pollfd> descriptors;
        process.AddTo(descriptors);
        if (poll(descriptors.data(), descriptors.size(), LONGEST_SILENCE) == 0) {
            process.End();
        }
        output += process.ReadOutput();
        process.ReadError();
    }
    return output + process.ReadOutput();
}

}  // namespace Tarnex::Reports
