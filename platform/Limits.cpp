#include "platform/Limits.h"

#include <sys/resource.h>

#include <algorithm>

namespace Tarnex::Platform {
namespace {

constexpr rlim_t MOST_FILES = 1'048'576;  // the kernel's own default for fs.nr_open

}  // namespace

void RaiseFileLimit() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = std::max(limit.rlim_cur, std::min(limit.rlim_max, MOST_FILES));
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

/// Not zero bytes, because the kernel then still starts a program that collects core dumps.
void PreventCoreFiles() {
    const rlimit limit{1, 1};
    setrlimit(RLIMIT_CORE, &limit);
}

}  // namespace Tarnex::Platform
