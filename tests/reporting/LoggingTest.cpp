#include "reporting/Logging.h"

#include <gtest/gtest.h>

#include "core/support/Constants.h"

namespace Tarnex::Core::Utils {
namespace {

TEST(LogTagged, WritesTheRecordAtTheSeverityOfItsTag) {
    const std::tuple<std::string, std::string, char, std::string> cases[] = {
        {ERROR_TAG, "broken", 'E', "[ERROR]broken[/ERROR]\n"},
        {WARNING_TAG, "", 'W', "[WARNING][/WARNING]\n"},
        {"warning", "{} %s", 'E', "[warning]{} %s[/warning]\n"},
        {PLUGINS_TAG, "x[/PLUGINS]\n", 'E', "[PLUGINS]x[/PLUGINS]\n[/PLUGINS]\n"},
    };
    LogTagged(PLUGINS_TAG, "glog puts a warning before the first line");
    for (const auto& [tag, message, severity, record] : cases) {
        testing::internal::CaptureStderr();
        LogTagged(tag, message);
        const std::string line = testing::internal::GetCapturedStderr();
        EXPECT_NE(line.find(" Logging.cpp:"), std::string::npos);
        EXPECT_TRUE(line.ends_with("] " + record)) << line;
        EXPECT_EQ(line.front(), severity) << line;
    }
}

}  // namespace
}  // namespace Tarnex::Core::Utils
