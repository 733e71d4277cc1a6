// What one pass over all encoders of libavcodec costs, beside the same work done otherwise.
// Usage: codec_sweep [ROUNDS] [DIRECTORY]
//
// Each round does, one after the other: our coders on one thread and on two, libavcodec alone with
// the same settings, and the command ffmpeg once for each codec. The figures are quotients of
// medians. At the end it prints the slowest codecs, and the memory before and after 20 more passes.
// DIRECTORY takes the raw material for the command.
#include <fmt/format.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>

#include "bench/BareEncoding.h"
#include "core/support/Exception.h"
#include "core/support/ThreadPool.h"
#include "tests/modules/Coders.h"

namespace Tarnex::Bench {
namespace {

using Ids = std::vector<std::string>;
using Seconds = std::vector<double>;

double Measure(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Processor seconds of this process and of those that it waited for.
double ProcessorTime() {
    double seconds = 0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        for (const timeval& time : {usage.ru_utime, usage.ru_stime}) {
            seconds += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
        }
    }
    return seconds;
}

double Median(Seconds values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// What the same work took in each round. Where others use the machine, the processor time tells
/// more.
struct Series {
    Seconds wall;
    Seconds processor;

    void Add(const std::function<void()>& work) {
        const double before = ProcessorTime();
        wall.push_back(Measure(work));
        processor.push_back(ProcessorTime() - before);
    }
    std::string ToText() const {
        return fmt::format("{:.2f} ({:.2f})", Median(wall), Median(processor));
    }
};

void EncodeOurs(const std::string& codecId) {
    const auto encoder = Tests::Encode(codecId);
    encoder->Seek(0, {});
    encoder->Prepare();
    if (!encoder->ReadNext()) {
        throw Exception(codecId + " gave nothing");
    }
}

/// Times of one pass by codec.
using Times = std::map<std::string, Seconds>;

void Sweep(const Ids& ids, std::size_t threads, void (*encode)(const std::string&),
           Times* times = nullptr) {
    Core::ThreadPool pool(threads);
    for (const std::string& id : ids) {
        pool.AddTask([&id, encode, times] {
            const double time = Measure([&] { encode(id); });
            if (times != nullptr) {
                (*times)[id].push_back(time);
            }
        });
    }
    pool.Stop();
}

long PeakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

/// The synthetic material as files without headers.
void WriteMaterial(const std::filesystem::path& directory) {
    const Proc::Pointer<Core::Utils::FakeStreamVideo> stream(
        new Core::Utils::FakeStreamVideo(Proc::ImplNames::FFMPEG, ""));
    const auto picture = stream->GetNextFrame();
    std::ofstream yuv(directory / "picture.yuv", std::ios::binary);
    int width = picture->GetFrameInfo().width;
    for (const Proc::Plane& plane : picture->GetPlanes()) {
        for (int row = 0; row < plane.height; ++row) {
            yuv.write(reinterpret_cast<const char*>(plane.data) +
                          static_cast<std::ptrdiff_t>(row) * plane.stride,
                      width);
        }
        width = picture->GetFrameInfo().width / 2;
    }
    const auto sound =
        Proc::Pointer<Core::Utils::FakeStreamAudio>(new Core::Utils::FakeStreamAudio())
            ->GetNextFrame();
    std::ofstream(directory / "sound.raw", std::ios::binary)
        .write(reinterpret_cast<const char*>(sound->GetSamples()),
               static_cast<std::streamsize>(4 * sound->GetSampleCount()));
}

/// How many of the codecs the command encodes.
int SweepCommand(const Ids& ids, const std::filesystem::path& directory) {
    int passed = 0;
    for (const std::string& id : ids) {
        const std::string input =
            Proc::IsVideoCodec(id)
                ? fmt::format(
                      "-f rawvideo -pix_fmt yuv420p -s 1920x1080 -r 25 -i {}/picture.yuv -c:v",
                      directory.string())
                : fmt::format("-f s16le -ar 44100 -ac 2 -i {}/sound.raw -c:a", directory.string());
        const std::string command = fmt::format(
            "ffmpeg -nostdin -loglevel quiet {} {} -strict experimental -f null - "
            ">/dev/null 2>&1",
            input, NameOfEncoder(id));
        passed += std::system(command.c_str()) == 0 ? 1 : 0;
    }
    return passed;
}

void PrintSlowest(const Times& times) {
    std::vector<std::pair<double, std::string>> order;
    double sum = 0;
    for (const auto& [id, values] : times) {
        order.emplace_back(Median(values), id);
        sum += order.back().first;
    }
    std::sort(order.rbegin(), order.rend());
    order.resize(std::min<std::size_t>(order.size(), 10));
    for (const auto& [time, id] : order) {
        fmt::print("  {:24} {:5.0f} ms {:5.1f} %\n", id, time * 1000, 100 * time / sum);
    }
}

void Run(std::size_t rounds, const std::filesystem::path& directory) {
    const Ids ids = Tests::Factory()->GetEncoderCodecs(Proc::ImplNames::FFMPEG);
    WriteMaterial(directory);
    Sweep(ids, 1, EncodeOurs);  // fills tables that libav makes once
    Times times;
    Series one;
    Series two;
    Series bare;
    Series command;
    int commandPassed = 0;
    for (std::size_t round = 0; round < rounds; ++round) {
        one.Add([&] { Sweep(ids, 1, EncodeOurs, &times); });
        bare.Add([&] { Sweep(ids, 1, EncodeBare); });
        two.Add([&] { Sweep(ids, 2, EncodeOurs); });
        command.Add([&] { commandPassed = SweepCommand(ids, directory); });
    }
    fmt::print(
        "Medians of {} rounds, wall and processor seconds: ours {}, ours on two threads {}, "
        "libavcodec alone {}, ffmpeg {}\n",
        rounds, one.ToText(), two.ToText(), bare.ToText(), command.ToText());
    fmt::print("{} codecs, {} of them by ffmpeg\n", ids.size(), commandPassed);
    const auto quotient = [](const char* text, const Series& above, const Series& below) {
        fmt::print("{}: wall {:.2f}, processor {:.2f}\n", text,
                   Median(above.wall) / Median(below.wall),
                   Median(above.processor) / Median(below.processor));
    };
    quotient("ffmpeg / ours on one thread", command, one);
    quotient("ffmpeg / ours on two threads", command, two);
    quotient("ours / libavcodec alone", one, bare);
    quotient("one thread / two", one, two);
    PrintSlowest(times);
    const long peak = PeakMegabytes();
    for (int sweep = 0; sweep < 20; ++sweep) {
        Sweep(ids, 1, EncodeOurs);
    }
    fmt::print("peak memory {} MB, after 20 more passes {} MB\n", peak, PeakMegabytes());
}

}  // namespace
}  // namespace Tarnex::Bench

int main(int argc, char** argv) {
    Tarnex::Core::CoreManager& core = Tarnex::Core::CoreManager::Instance();
    core.GetComputingResourceManager()->computingResourcesFlag = true;
    core.Initialize({}, {}, nullptr, nullptr, true);
    core.WaitUntilInitialized();
    Tarnex::Bench::Run(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 5,
                       argc > 2 ? argv[2] : std::filesystem::temp_directory_path());
    core.Uninitialize();
    return 0;
}
