#include "parent/Records.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Tarnex::Parent::Record;
using Tarnex::Parent::RecordReader;

/// "TAG=message;" for each record of a text that comes in pieces of this size.
std::string Read(std::string_view text, std::size_t size) {
    std::string found;
    RecordReader reader([&](const Record& record) {
        found.append(record.tag).append("=").append(record.message).append(";");
    });
    for (; !text.empty(); text.remove_prefix(std::min(size, text.size()))) {
        reader.Feed(text.substr(0, size));
    }
    reader.Finish();
    return found;
}

TEST(Records, AreFoundWhereverThePiecesEnd) {
    const std::string noise(70000, 'x');
    const struct {
        std::string text, found;
    } rows[] = {
        {"E1 a.cpp:1] [PLUGINS]amp[/PLUGINS]\n", "PLUGINS=amp;"},
        {"noise] [E1 a.cpp:1] [ERROR]two\nlines[/ERROR]noise", "ERROR=two\nlines;"},
        {"] [ERROR]a[/PLUGINS][/ERROR]", "ERROR=a[/PLUGINS];"},
        {"[PLUGINS]amp[/PLUGINS] ] [OTHER]x[/OTHER] ] [PLUGINS", ""},
        // Cut: the last line isn't whole.
        {"] [ERROR]one\ntwo\nE1 a.cpp:1] [CODECS]a.b.c[/CODECS]", "ERROR=one\ntwo;CODECS=a.b.c;"},
        {"] [ERROR]one] [ERROR]two[/ERROR]", "ERROR=;ERROR=two;"},
        {"] [STATISTICS]{\"a\":\n1", "STATISTICS={\"a\":;"},
        // No record is so long: what follows counts again.
        {"] [ERROR]a\n" + noise + "[/ERROR]] [PLUGINS]amp[/PLUGINS]", "ERROR=a;PLUGINS=amp;"},
        {noise + "] [PLUGINS]amp[/PLUGINS]", "PLUGINS=amp;"},
    };
    for (const auto& [text, found] : rows) {
        for (const std::size_t size : {1U, 2U, 3U, 7U, 4096U, 1000000U}) {
            EXPECT_EQ(Read(text, size), found) << text.substr(0, 80) << " by " << size;
        }
    }
}

}  // namespace
