// Replaces the phases: the linker prefers this RunChecks to the library's, because it comes
// first.

#include <gtest/gtest.h>

#include <stdexcept>

#include "core/support/Exception.h"
#include "run/Assayer.h"
#include "run/RunChecks.h"

namespace Tarnex::Core::Utils {
namespace {

std::function<CheckResult()> phases;

int RunWith(std::function<CheckResult()> replacement) {
    phases = std::move(replacement);
    std::string arguments[] = {"Assayer", "codecs", "60", "I", "C"};
    char* argv[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(),
                    arguments[3].data(), arguments[4].data(), nullptr};
    return Assayer(5, argv);
}

TEST(ExitCode, SaysHowTheRunEnded) {
    EXPECT_EQ(RunWith([]() -> CheckResult { throw Exception("a"); }), 4);
    EXPECT_EQ(RunWith([]() -> CheckResult { throw std::runtime_error("b"); }), 5);
    EXPECT_EQ(RunWith([]() -> CheckResult { throw 6; }), 6);
}

}  // namespace

CheckResult RunChecks(PluginChecker&, CodecChecker&, const Config&) {
    return phases();
}

}  // namespace Tarnex::Core::Utils
