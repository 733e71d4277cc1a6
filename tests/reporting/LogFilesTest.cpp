#include "reporting/LogFiles.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <set>

#include "core/support/Constants.h"
#include "platform/Files.h"
#include "reporting/Logging.h"
#include "reporting/OldLogs.h"

namespace Tarnex::Core::Utils {
namespace {

/// Each case logs in a child: glog starts once in a process.
class LogFiles : public testing::Test {
protected:
    LogFiles() : root(testing::TempDir() + "log_files") {
        testing::FLAGS_gtest_death_test_style = "threadsafe";
        std::filesystem::remove_all(root);
        std::filesystem::create_directories(root / "Tarnex/Logs/Assayer");
        std::ofstream(root / "Tarnex/Logs/Assayer/test_reporting.old") << "text";
        setenv("LOCALAPPDATA", root.c_str(), 1);
        setenv("USERNAME", "user", 1);
        unsetenv("TarnexLogPath");
        unsetenv("GLOG_PRODUCT_NAME");
    }
    ~LogFiles() override { std::filesystem::remove_all(root); }

    /// Ends with 0 if logging was started and published its directory.
    [[noreturn]] void Log(const std::string& product, int minSeverity, int maxAgeDays = 10) const {
        const bool started = InitLogging(product, minSeverity, maxAgeDays);
        LogTagged(ERROR_TAG, "line");
        ShutdownLogging();
        LogTagged(WARNING_TAG, "after the end");
        std::_Exit(started && std::getenv("TarnexLogPath") != nullptr ? 0 : 1);
    }

    /// The log files of a directory below Logs, without time and process number and without links.
    std::set<std::string> Stems(const std::string& product) const {
        std::set<std::string> stems;
        std::error_code ignored;
        for (const auto& entry :
             std::filesystem::directory_iterator(root / "Tarnex/Logs" / product, ignored)) {
            const std::string name = entry.path().filename();
            if (!entry.is_symlink()) {
                stems.insert(name.substr(0, name.find(".20")));
            }
        }
        return stems;
    }

    const std::filesystem::path root;
};

using Names = std::set<std::string>;

TEST_F(LogFiles, HaveTheirPlaceAndNames) {
    EXPECT_EXIT(Log("Assayer", 0), testing::ExitedWithCode(0), "line(.|\n)*after the end");
    EXPECT_EQ(Stems("Assayer"), (Names{"test_reporting.old", "test_reporting.user.ERROR",
                                       "test_reporting.user.INFO", "test_reporting.user.WARNING"}));
    setenv("USERNAME", "a/b", 1);
    EXPECT_EXIT(Log("Assayer", 2, 0), testing::ExitedWithCode(0), "line");
    EXPECT_EQ(Stems("Assayer"), Names{"test_reporting.a_b.ERROR"});
    unsetenv("USERNAME");
    setenv("GLOG_PRODUCT_NAME", "fromVariable", 1);
    EXPECT_EXIT(Log("", 2), testing::ExitedWithCode(0), "line");
    EXPECT_EQ(Stems("fromVariable"), Names{"test_reporting.UNKNOWN.ERROR"});
    EXPECT_EXIT(Log("a/b\\c \xFF", 3), testing::ExitedWithCode(0), "line");
    EXPECT_TRUE(std::filesystem::is_directory(root / "Tarnex/Logs/c \xFF"));
    EXPECT_EQ(Stems("c \xFF"), Names{});
    setenv("LOCALAPPDATA", "", 1);
    EXPECT_EXIT(Log("Assayer", 0), testing::ExitedWithCode(1), "line");
}

TEST_F(LogFiles, OldOnesAreDeletedByTheirCreationTime) {
    const std::string directory = root.native() + Platform::PATH_SEPARATOR;
    std::filesystem::create_directory(root / "App.directory");
    for (const char* name : {"Apple.INFO", "Other.App.", "App.user.INFO.1"}) {
        std::ofstream(root / name) << "text";
    }
    const auto created = Platform::FindFiles(directory, "App.user").at(0).created;
    // However long ago it was written to, creation counts.
    std::filesystem::last_write_time(
        root / "App.user.INFO.1",
        std::filesystem::file_time_type::clock::now() - std::chrono::hours(24 * 365));
    DeleteOldLogs(directory, "App", created);
    EXPECT_TRUE(std::filesystem::exists(root / "App.user.INFO.1"));
    DeleteOldLogs(directory, "App", created + std::chrono::nanoseconds(1));
    EXPECT_FALSE(std::filesystem::exists(root / "App.user.INFO.1"));
    for (const char* name : {"Apple.INFO", "Other.App.", "App.directory"}) {
        EXPECT_TRUE(std::filesystem::exists(root / name)) << name;
    }
}

TEST(LogAgeLimit, CountsWholeDaysAndNeverOverflows) {
    const auto now = std::chrono::system_clock::now();
    EXPECT_EQ(now - LogAgeLimit(now, 10), std::chrono::hours(240));
    EXPECT_EQ(LogAgeLimit(now, 0), now);
    EXPECT_LT(LogAgeLimit(now, std::numeric_limits<std::int64_t>::max()), now);
    EXPECT_GT(LogAgeLimit(now, std::numeric_limits<std::int64_t>::min()), now);
}

}  // namespace
}  // namespace Tarnex::Core::Utils
