// Which Debian package owns a file.

#include <gmock/gmock.h>
#include <unistd.h>

#include "report/LoaderTrace.h"
#include "report/Packages.h"

namespace Tarnex::Reports {
namespace {

TEST(PackagesTest, NamesThePackageWithItsVersion) {
    if (access("/usr/bin/dpkg-query", X_OK) != 0) {
        GTEST_SKIP() << "not a Debian system";
    }
    const auto packages = FindPackages(
        {"/usr/bin/dpkg-query", "/usr/bin/[", "/usr/lib/x86_64-linux-gnu/libc.so.6", "/none"});
    EXPECT_THAT(packages.at("/usr/bin/dpkg-query"), testing::MatchesRegex("dpkg [0-9][^ ]*"));
    EXPECT_THAT(packages.at("/usr/bin/["), testing::StartsWith("coreutils "));
    EXPECT_FALSE(packages.contains("/none"));
}

TEST(LoaderTraceTest, NamesWhatTheLoaderWouldLoad) {
    const auto traces = TraceLoader({"/usr/bin/true", "/etc/hostname", "/usr/bin/dpkg-query"});
    ASSERT_EQ(traces.size(), 3U);
    EXPECT_TRUE(traces[0].names.contains("libc.so.6"));
    EXPECT_TRUE(traces[1].files.empty());
    EXPECT_TRUE(traces[2].names.contains("libc.so.6"));
}

}  // namespace
}  // namespace Tarnex::Reports
