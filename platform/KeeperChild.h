#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>

namespace Tarnex::Platform {

/// Processes that don't end within this time of SIGKILL are left alone.
inline constexpr std::chrono::seconds KILL_TIME{5};

/// A keeper as its owner sees it, from its start on. If it is lost, the owner ends what the keeper
/// would have ended: its descendants are the owner's then.
class KeeperChild {
public:
    /// Makes this process a reaper of orphans.
    explicit KeeperChild(pid_t pid);
    /// Ends and reaps the keeper, if that didn't happen yet.
    ~KeeperChild();

    KeeperChild(const KeeperChild&) = delete;
    KeeperChild& operator=(const KeeperChild&) = delete;

    /// By SIGSTOP or by a debugger. Looks a few times a second.
    bool IsStopped();

    /// One step of the end of a lost keeper and of what it left; it takes some milliseconds. True
    /// once nothing is left, or nothing but survivors of SIGKILL. Other keepers and theirs aren't
    /// touched.
    bool EndOrphans();

    /// After that: how an orphan ended, as `waitpid` returns it.
    std::optional<int> GetStatus(pid_t orphan) const;
    /// After that: numbers and names of the survivors.
    const std::string& GetSurvivors() const { return survivors; }

private:
    using Clock = std::chrono::steady_clock;

    bool Sweep();

    const pid_t pid;
    const unsigned long long started;
    bool reaped = false;
    Clock::time_point nextLook;
    std::optional<Clock::time_point> until;
    std::map<pid_t, int> ends;
    std::string survivors;
};

}  // namespace Tarnex::Platform
