#include "platform/KeeperChild.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <set>
#include <vector>

#include "platform/ProcessTable.h"

namespace Tarnex::Platform {
namespace {

constexpr std::chrono::milliseconds LOOK_TIME{250};
constexpr std::chrono::milliseconds STEP_TIME{20};
constexpr useconds_t SWEEP_TIME = 1000;  // microseconds

/// Of this process.
std::set<pid_t>& GetKeepers() {
    static std::set<pid_t> keepers;
    return keepers;
}

/// What a lost keeper left. The descendants of other keepers are no children of this process, and
/// what was there before the keeper isn't of its run.
std::vector<ProcessState> FindOrphans(unsigned long long since) {
    std::vector<ProcessState> children = FindChildren();
    std::erase_if(children, [&](const ProcessState& child) {
        return child.started < since || GetKeepers().contains(child.pid);
    });
    return children;
}

}  // namespace

KeeperChild::KeeperChild(pid_t pid) : pid(pid), started(GetProcessState(pid).started) {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    GetKeepers().insert(pid);
}

KeeperChild::~KeeperChild() {
    if (!reaped) {
        kill(pid, SIGKILL);
        while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    GetKeepers().erase(pid);
}

bool KeeperChild::IsStopped() {
    const Clock::time_point now = Clock::now();
    if (now < nextLook) {
        return false;
    }
    nextLook = now + LOOK_TIME;
    return GetProcessState(pid).IsStopped();
}

bool KeeperChild::EndOrphans() {
    const Clock::time_point now = Clock::now();
    until = until.value_or(now + KILL_TIME);
    while (Sweep()) {
        if (Clock::now() >= *until) {
            survivors = NameProcesses(FindOrphans(started));
            return true;
        }
        if (Clock::now() >= now + STEP_TIME) {
            return false;
        }
        usleep(SWEEP_TIME);
    }
    return true;
}

/// Whether there was anything left. The keeper's children are ours only once it has ended.
bool KeeperChild::Sweep() {
    if (!reaped) {
        kill(pid, SIGKILL);
        reaped = waitpid(pid, nullptr, WNOHANG) != 0;
    }
    const std::vector<ProcessState> orphans = FindOrphans(started);
    for (const ProcessState& orphan : orphans) {
        kill(orphan.pid, SIGKILL);
        int status = 0;
        if (waitpid(orphan.pid, &status, WNOHANG) == orphan.pid) {
            ends[orphan.pid] = status;
        }
    }
    return !reaped || !orphans.empty();
}

std::optional<int> KeeperChild::GetStatus(pid_t orphan) const {
    const auto end = ends.find(orphan);
    return end == ends.end() ? std::nullopt : std::optional(end->second);
}

}  // namespace Tarnex::Platform
