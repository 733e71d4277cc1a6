#include "reporting/Logging.h"

#include <glog/logging.h>
#include <gtest/gtest.h>

#include <set>

#include "core/support/Constants.h"

namespace Tarnex::Core::Utils {
namespace {

class LastRecord : public google::LogSink {
public:
    LastRecord() { google::AddLogSink(this); }
    ~LastRecord() override { google::RemoveLogSink(this); }
    LastRecord(const LastRecord&) = delete;
    LastRecord& operator=(const LastRecord&) = delete;

    void send(google::LogSeverity newSeverity, const char*, const char* newFile, int newLine,
              const google::LogMessageTime&, const char* message, std::size_t length) override {
        severity = newSeverity;
        file = newFile;
        line = newLine;
        text.assign(message, length);
    }

    google::LogSeverity severity = -1;
    std::string file;
    int line = 0;
    std::string text;
};

TEST(LogTagged, WritesTheRecordAtTheSeverityOfItsTag) {
    struct Case {
        std::string tag;
        std::string message;
        google::LogSeverity severity;
        std::string text;
    };
    const Case cases[] = {
        {ERROR_TAG, "broken", google::GLOG_ERROR, "[ERROR]broken[/ERROR]"},
        {WARNING_TAG, "", google::GLOG_WARNING, "[WARNING][/WARNING]"},
        {"warning", "{} %s", google::GLOG_ERROR, "[warning]{} %s[/warning]"},
        {"WARNINGS", "a", google::GLOG_ERROR, "[WARNINGS]a[/WARNINGS]"},
        {PLUGINS_TAG, "x[/PLUGINS]\n", google::GLOG_ERROR, "[PLUGINS]x[/PLUGINS]\n[/PLUGINS]"},
        {CODECS_TAG, std::string("a\0b", 3), google::GLOG_ERROR,
         std::string("[CODECS]a\0b[/CODECS]", 20)},
    };
    LastRecord last;
    for (const Case& c : cases) {
        LogTagged(c.tag, c.message);
        EXPECT_EQ(last.text, c.text);
        EXPECT_EQ(last.severity, c.severity) << c.tag;
        EXPECT_EQ(last.file, "Logging.cpp");
    }
}

TEST(LogTagged, TellsItsBranchesByTheLineNumber) {
    LastRecord last;
    std::set<int> lines;
    for (const char* tag : {ERROR_TAG, WARNING_TAG, PLUGINS_TAG, CODECS_TAG}) {
        LogTagged(tag, "");
        lines.insert(last.line);
    }
    EXPECT_EQ(lines.size(), 3U);
}

}  // namespace
}  // namespace Tarnex::Core::Utils
