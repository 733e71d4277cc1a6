#include "exercise/clap/Host.h"

#include <cstdio>
#include <string_view>

#include "exercise/Records.h"

namespace Tarnex::Exercise {
namespace {

// Debian's headers lack the extension for log texts.
constexpr char LOG_ID[] = "clap.log";
using ClapLogSeverity = std::int32_t;
struct ClapHostLog {
    void(CLAP_ABI* log)(const clap_host_t* host, ClapLogSeverity severity, const char* text);
};

}  // namespace

/// The functions of the host's extensions, as the interface wants them.
struct ClapExtensions {
    static ClapHost& From(const clap_host_t* host) { return ClapHost::From(host); }

    static void Log(const clap_host_t* /*host*/, ClapLogSeverity /*severity*/, const char* text) {
        std::fprintf(stderr, "%s\n", text == nullptr ? "" : text);
    }

    static bool IsMainThread(const clap_host_t* host) {
        return std::this_thread::get_id() == From(host).mainThread;
    }

    static bool IsAudioThread(const clap_host_t* /*host*/) {
        return AudioThread::Get().IsCurrent();
    }

    static bool RegisterTimer(const clap_host_t* host, std::uint32_t /*milliseconds*/,
                              clap_id* id) {
        *id = From(host).nextTimer++;
        From(host).timers.insert(*id);
        return true;
    }

    static bool UnregisterTimer(const clap_host_t* host, clap_id id) {
        return From(host).timers.erase(id) != 0;
    }

    static std::uint32_t GetDialects(const clap_host_t* /*host*/) {
        return CLAP_NOTE_DIALECT_CLAP | CLAP_NOTE_DIALECT_MIDI;
    }

    static constexpr ClapHostLog LOG{Log};
    static constexpr clap_host_thread_check_t THREAD_CHECK{IsMainThread, IsAudioThread};
    static constexpr clap_host_timer_support_t TIMERS{RegisterTimer, UnregisterTimer};
    static constexpr clap_host_params_t PARAMS{
        [](const clap_host_t*, clap_param_rescan_flags) {},
        [](const clap_host_t*, clap_id, clap_param_clear_flags) {}, [](const clap_host_t*) {}};
    static constexpr clap_host_latency_t LATENCY{[](const clap_host_t*) {}};
    static constexpr clap_host_state_t STATE{[](const clap_host_t*) {}};
    static constexpr clap_host_audio_ports_t AUDIO_PORTS{
        [](const clap_host_t*, std::uint32_t) { return false; },
        [](const clap_host_t*, std::uint32_t) {}};
    static constexpr clap_host_note_ports_t NOTE_PORTS{GetDialects,
                                                       [](const clap_host_t*, std::uint32_t) {}};
};

ClapHost::ClapHost()
    : host{CLAP_VERSION,
           this,
           "assayer-exercise",
           "Assayer",
           "",
           "1",
           GetExtension,
           [](const clap_host_t*) {},
           [](const clap_host_t*) {},
           [](const clap_host_t* self) { From(self).wantsCallback = true; }} {}

ClapHost& ClapHost::From(const clap_host_t* host) {
    return *static_cast<ClapHost*>(host->host_data);
}

const void* ClapHost::GetExtension(const clap_host_t* /*host*/, const char* id) {
    using Entry = std::pair<std::string_view, const void*>;
    static constexpr Entry EXTENSIONS[]{
        {LOG_ID, &ClapExtensions::LOG},
        {CLAP_EXT_THREAD_CHECK, &ClapExtensions::THREAD_CHECK},
        {CLAP_EXT_TIMER_SUPPORT, &ClapExtensions::TIMERS},
        {CLAP_EXT_PARAMS, &ClapExtensions::PARAMS},
        {CLAP_EXT_LATENCY, &ClapExtensions::LATENCY},
        {CLAP_EXT_STATE, &ClapExtensions::STATE},
        {CLAP_EXT_AUDIO_PORTS, &ClapExtensions::AUDIO_PORTS},
        {CLAP_EXT_NOTE_PORTS, &ClapExtensions::NOTE_PORTS},
    };
    for (const auto& [name, extension] : EXTENSIONS) {
        if (name == id) {
            return extension;
        }
    }
    return nullptr;
}

void ClapHost::CallBack(const clap_plugin_t& plugin) {
    if (wantsCallback.exchange(false)) {
        Step("on_main_thread");
        plugin.on_main_thread(&plugin);
    }
}

void ClapHost::FireTimers(const clap_plugin_t& plugin) {
    const auto* const support = static_cast<const clap_plugin_timer_support_t*>(
        timers.empty() ? nullptr : plugin.get_extension(&plugin, CLAP_EXT_TIMER_SUPPORT));
    if (support == nullptr) {
        return;
    }
    const auto registered = timers;  // a timer may unregister itself
    for (const clap_id timer : registered) {
        Step("on_timer");
        support->on_timer(&plugin, timer);
    }
}

}  // namespace Tarnex::Exercise
