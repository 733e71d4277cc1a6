#pragma once

#include <clap/ext/audio-ports.h>
#include <clap/ext/latency.h>
#include <clap/ext/note-ports.h>
#include <clap/ext/params.h>
#include <clap/ext/state.h>
#include <clap/ext/thread-check.h>
#include <clap/ext/timer-support.h>
#include <clap/host.h>

#include <atomic>
#include <set>

#include "exercise/clap/AudioThread.h"

namespace Tarnex::Exercise {

/// The host as a plugin sees it: it answers what hosts answer and keeps what the plugin asks for.
class ClapHost {
public:
    ClapHost();

    ClapHost(const ClapHost&) = delete;
    ClapHost& operator=(const ClapHost&) = delete;

    const clap_host_t* Get() const { return &host; }

    /// On the main thread, between other calls: the callback that the plugin asked for.
    void CallBack(const clap_plugin_t& plugin);

    /// On the main thread: each of the plugin's timers once.
    void FireTimers(const clap_plugin_t& plugin);

private:
    static const void* GetExtension(const clap_host_t* host, const char* id);
    static ClapHost& From(const clap_host_t* host);

    clap_host_t host;
    std::thread::id mainThread = std::this_thread::get_id();
    std::atomic<bool> wantsCallback = false;
    std::set<clap_id> timers;
    clap_id nextTimer = 1;

    friend struct ClapExtensions;
};

}  // namespace Tarnex::Exercise
