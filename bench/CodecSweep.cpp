// Measures a sweep over all of libavcodec's encoders, and the same work done in other ways.
// Usage: codec_sweep [ROUNDS] [DIRECTORY]
//
// Each round runs, one after the other: our coders on one thread and on two; libavcodec alone with
// the same settings; and the ffmpeg command, once for each codec it encodes, beside our coders for
// the same codecs. The figures are ratios of medians. The end shows the slowest codecs, and the
// memory before and after 20 more sweeps. DIRECTORY receives the raw material for the command. If
// any encoder returns nothing, there are no figures. The exit status is 1 then, and if a figure
// exceeds its limit.
#include <fmt/format.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>

#include "bench/BareEncoding.h"
#include "core/media/CoreManager.h"
#include "core/media/Presets.h"
#include "core/support/Exception.h"
#include "core/support/ThreadPool.h"
#include "streams/FakeStreamAudio.h"
#include "streams/FakeStreamVideo.h"

namespace Tarnex::Bench {
namespace {

constexpr double MAX_RATIO = 1.05;  // of processor time, to libavcodec alone
constexpr long MAX_PEAK_MEGABYTES = 420;

using Ids = std::vector<std::string>;
using Seconds = std::vector<double>;

double Measure(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Processor seconds of this process and of the child processes that have ended.
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

/// The times of the same work in each round. On a busy machine the processor time is more
/// reliable.
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

Proc::Pointer<Proc::ICodecFactory> Factory() {
    return Core::CoreManager::Instance().GetCodecFactory();
}

Proc::Pointer<Proc::ICodedStream> MakeEncoder(const std::string& codecId) {
    const char* const implementation = Proc::ImplNames::FFMPEG;
    const auto preset = [&](const char* key) {
        return Conf::CreateDataHelper(key, codecId)->GetPresetProperty();
    };
    if (Proc::IsVideoCodec(codecId)) {
        return Factory()->CreateVideoEncoder(
            new Core::Utils::FakeStreamVideo(implementation, codecId),
            preset(Conf::IPreset::KEY_FILTER_VIDEO_CODEC), implementation, {});
    }
    return Factory()->CreateAudioEncoder(new Core::Utils::FakeStreamAudio(),
                                         preset(Conf::IPreset::KEY_FILTER_AUDIO_CODEC),
                                         implementation, {});
}

void EncodeOurs(const std::string& codecId) {
    const auto encoder = MakeEncoder(codecId);
    encoder->Seek(0, {});
    encoder->Prepare();
    if (!encoder->ReadNext()) {
        throw Exception(codecId + " returned nothing");
    }
}

/// The times of a sweep, by codec.
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

/// Writes the synthetic material as files without headers.
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

/// The command that encodes the material, without the output.
std::string MakeCommand(const std::string& id, const std::filesystem::path& directory) {
    const std::string input =
        Proc::IsVideoCodec(id)
            ? fmt::format("-f rawvideo -pix_fmt yuv420p -s 1920x1080 -r 25 -i {}/picture.yuv -c:v",
                          directory.string())
            : fmt::format("-f s16le -ar 44100 -ac 2 -i {}/sound.raw -c:a", directory.string());
    return fmt::format("ffmpeg -nostdin -loglevel quiet {} {} -strict experimental", input,
                       NameOfEncoder(id));
}

bool Succeeds(const std::string& command) {
    return std::system(command.c_str()) == 0;
}

/// The codecs for which the command writes a packet; its status alone doesn't say so.
Ids FindIdsOfCommand(const Ids& ids, const std::filesystem::path& directory) {
    Ids encoded;
    std::copy_if(ids.begin(), ids.end(), std::back_inserter(encoded), [&](const std::string& id) {
        return Succeeds(MakeCommand(id, directory) +
                        " -f framecrc - 2>/dev/null | grep -q '^[^#]'");
    });
    return encoded;
}

void SweepCommand(const Ids& ids, const std::filesystem::path& directory) {
    for (const std::string& id : ids) {
        if (!Succeeds(MakeCommand(id, directory) + " -f null - >/dev/null 2>&1")) {
            throw Exception("ffmpeg encoded " + id + " once, but not again");
        }
    }
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

void PrintQuotient(const char* text, const Series& above, const Series& below) {
    fmt::print("{}: wall {:.2f}, processor {:.2f}\n", text, Median(above.wall) / Median(below.wall),
               Median(above.processor) / Median(below.processor));
}

/// Gives the processor time as a multiple of the library's.
double CompareWithLibrary(const Ids& ids, std::size_t rounds) {
    Times times;
    Series one;
    Series two;
    Series bare;
    for (std::size_t round = 0; round < rounds; ++round) {
        one.Add([&] { Sweep(ids, 1, EncodeOurs, &times); });
        bare.Add([&] { Sweep(ids, 1, EncodeBare); });
        two.Add([&] { Sweep(ids, 2, EncodeOurs); });
    }
    fmt::print(
        "{} codecs, medians of {} rounds, wall and processor seconds: ours {}, ours on two threads "
        "{}, libavcodec alone {}\n",
        ids.size(), rounds, one.ToText(), two.ToText(), bare.ToText());
    PrintQuotient("ours / libavcodec alone", one, bare);
    PrintQuotient("one thread / two", one, two);
    PrintSlowest(times);
    return Median(one.processor) / Median(bare.processor);
}

void CompareWithCommand(const Ids& all, std::size_t rounds,
                        const std::filesystem::path& directory) {
    WriteMaterial(directory);
    const Ids ids = FindIdsOfCommand(all, directory);
    fmt::print("ffmpeg encodes {} of {} codecs\n", ids.size(), all.size());
    if (ids.empty()) {
        throw Exception("there is nothing to compare with ffmpeg");
    }
    Series one;
    Series two;
    Series command;
    for (std::size_t round = 0; round < rounds; ++round) {
        one.Add([&] { Sweep(ids, 1, EncodeOurs); });
        two.Add([&] { Sweep(ids, 2, EncodeOurs); });
        command.Add([&] { SweepCommand(ids, directory); });
    }
    fmt::print("these {}: ours {}, ours on two threads {}, ffmpeg {}\n", ids.size(), one.ToText(),
               two.ToText(), command.ToText());
    PrintQuotient("ffmpeg / ours on one thread", command, one);
    PrintQuotient("ffmpeg / ours on two threads", command, two);
}

/// Gives the peak so far.
long MeasureMemory(const Ids& ids) {
    const long peak = PeakMegabytes();
    for (int sweep = 0; sweep < 20; ++sweep) {
        Sweep(ids, 1, EncodeOurs);
    }
    fmt::print("peak memory {} MB, after 20 more sweeps {} MB\n", peak, PeakMegabytes());
    return peak;
}

/// False if a figure exceeds its limit.
bool Run(std::size_t rounds, const std::filesystem::path& directory) {
    const Ids ids = Factory()->GetEncoderCodecs(Proc::ImplNames::FFMPEG);
    Sweep(ids, 1, EncodeOurs);  // fills the tables that libav computes once
    const double ratio = CompareWithLibrary(ids, rounds);
    const long peak = MeasureMemory(ids);
    CompareWithCommand(ids, rounds, directory);
    return ratio <= MAX_RATIO && peak <= MAX_PEAK_MEGABYTES;
}

}  // namespace
}  // namespace Tarnex::Bench

int main(int argc, char** argv) {
    Tarnex::Core::CoreManager& core = Tarnex::Core::CoreManager::Instance();
    core.GetComputingResourceManager()->computingResourcesFlag = true;
    core.Initialize({}, {}, nullptr, nullptr, true);
    core.WaitUntilInitialized();
    int status = 0;
    try {
        const bool isGood =
            Tarnex::Bench::Run(argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 5,
                               argc > 2 ? argv[2] : std::filesystem::temp_directory_path());
        status = isGood ? 0 : 1;
    } catch (const std::exception& error) {
        fmt::print("codec_sweep: {}\n", error.what());
        status = 1;
    }
    core.Uninitialize();
    return status;
}
