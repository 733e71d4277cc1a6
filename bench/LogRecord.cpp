// Measures the cost of one record, beside a bare write of the same bytes. Send standard error to
// /dev/null; set LOCALAPPDATA for log files. Usage: log_record [RECORDS]

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <vector>

#include "core/support/Constants.h"
#include "reporting/LogFiles.h"
#include "reporting/Logging.h"

namespace {

using namespace Tarnex::Core::Utils;  // NOLINT(google-build-using-namespace)

/// In microseconds.
double MedianTime(std::size_t lines, const std::function<void()>& write) {
    std::vector<double> times;
    for (std::size_t i = 0; i < lines; ++i) {
        const auto start = std::chrono::steady_clock::now();
        write();
        times.push_back(
            std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
                .count());
    }
    std::nth_element(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(lines / 2),
                     times.end());
    return times[lines / 2];
}

}  // namespace

int main(int argc, char** argv) {
    const std::size_t lines = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 20000;
    const std::string text = "[TEST_CODEC]Decoder.FFMPEG_IMPL.CODEC_ID_AAC[/TEST_CODEC]\n";
    const bool hasFiles = InitLogging("Benchmark", 0, 10);
    const double tagged =
        MedianTime(lines, [] { LogTagged(TEST_CODEC_TAG, "Decoder.FFMPEG_IMPL.CODEC_ID_AAC"); });
    const double bare = MedianTime(
        lines, [&text] { static_cast<void>(!write(STDERR_FILENO, text.data(), text.size())); });
    ShutdownLogging();
    fmt::print(
        "microseconds, medians of {} records: record {} log files {:.1f}, bare write "
        "{:.1f}, ratio {:.1f}\n",
        lines, hasFiles ? "with" : "without", tagged, bare, tagged / bare);
    return 0;
}
