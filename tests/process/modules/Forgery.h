#pragma once

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>

/// What a module can write in Assayer's name.
namespace Forgery {

/// A record with a true prefix. `thread`: the number in it, by default that of the main thread.
inline std::string Record(const std::string& tag, const std::string& message,
                          pid_t thread = getpid()) {
    char date[64];
    const std::time_t now = std::time(nullptr);
    std::strftime(date, sizeof date, "E%Y%m%d %H:%M:%S", std::localtime(&now));
    return std::string(date) + ".000001 " + std::to_string(thread) + " Logging.cpp:24] [" + tag +
           "]" + message + "[/" + tag + "]\n";
}

inline void Write(const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        done += static_cast<std::size_t>(
            std::max<ssize_t>(write(STDERR_FILENO, text.data() + done, text.size() - done), 0));
    }
}

/// Blames the plugin `victim`, which comes next, and claims the end of the phase.
inline void Blame(const std::string& victim) {
    Write(Record("LOAD_PLUGIN_NAME", victim) + Record("PLUGINS", victim) +
          Record("ERROR", "forged") + Record("LOADED_PLUGINS", "true"));
}

/// Claims an error of the whole run.
[[noreturn]] inline void FailRun() {
    Write(Record("CODECS", "x") + Record("ERROR", "forged"));
    std::_Exit(4);
}

/// Looks alive until somebody ends the process.
inline void ReportForEver() {
    std::atexit([] {
        for (;;) {
            Write(Record("STATISTICS", "{}"));
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
        }
    });
}

/// `count`: below zero for ever.
inline void Repeat(const std::string& text, int count) {
    constexpr int AT_ONCE = 1000;
    std::string block;
    for (int i = 0; i < AT_ONCE; ++i) {
        block += text;
    }
    for (int i = 0; i != count; i += count < 0 ? 0 : AT_ONCE) {
        Write(block);
    }
}

inline void BlameStrangers() {
    const std::string record = Record("LOAD_PLUGIN_NAME", "stranger ");
    const std::size_t end = record.rfind("[/");
    std::string all;
    for (int i = 0; i < 250'000; ++i) {
        all.append(record, 0, end).append(std::to_string(i)).append(record, end);
    }
    Write(all);
}

}  // namespace Forgery
