#include "parent/Records.h"

#include <gtest/gtest.h>

#include "parent/Follower.h"

namespace {

using Tarnex::Parent::Record;
using Tarnex::Parent::RecordReader;

const std::string PREFIX = "E20261123 07:45:31.922710 11142 Logging.cpp:19";

/// "TAG=message;" for each record of a text that comes in pieces of this size, "TAG?message;" for
/// one without a prefix, then what isn't a record.
std::string Read(std::string_view text, std::size_t size) {
    std::string found, rest;
    RecordReader reader(
        Tarnex::Parent::AllTags(),
        [&](const Record& record) {
            found.append(record.tag).append(record.thread == 11142 ? "=" : "?");
            found.append(record.message).append(";");
        },
        [&](std::string_view part) { rest += part; });
    for (; !text.empty(); text.remove_prefix(std::min(size, text.size()))) {
        reader.Feed(text.substr(0, size));
    }
    reader.Finish();
    return found + rest;
}

TEST(Records, AreFoundWhereverThePiecesEnd) {
    const std::string noise(70000, 'x');
    const struct {
        std::string text, found;
    } rows[] = {
        {PREFIX + "] [PLUGINS]amp[/PLUGINS]\n", "PLUGINS=amp;\n"},
        {"words" + PREFIX + "] [ERROR]two\nlines[/ERROR]more", "ERROR=two\nlines;wordsmore"},
        {PREFIX + "] [ERROR]a[/PLUGINS][/ERROR]", "ERROR=a[/PLUGINS];"},
        {"[PLUGINS]a[/PLUGINS] ] [OTHER]x[/OTHER]", "[PLUGINS]a[/PLUGINS] ] [OTHER]x[/OTHER]"},
        // Digits in groups, as a module's locale may have them.
        {"E2.0261123 07:45:31.922.710 11.142 Logging.cpp:19] [CODECS]a[/CODECS]", "CODECS=a;"},
        // Somebody else's.
        {"] [PLUGINS]amp[/PLUGINS]", "PLUGINS?amp;"},
        {"E1 a.cpp:1] [PLUGINS]amp[/PLUGINS]", "PLUGINS?amp;E1 a.cpp:1"},
        {"] [PLUGINS] [PLUGINS]amp[/PLUGINS]", "PLUGINS? [PLUGINS]amp;"},
        // A name may look like a record.
        {PREFIX + "] [PLUGINS]a] [ERROR]b[/PLUGINS]", "PLUGINS=a] [ERROR]b;"},
        {PREFIX + "] [PLUGINS]E20261123 07:45:31.9 1 a.cpp:1] [ERROR]b[/PLUGINS]",
         "PLUGINS=E20261123 07:45:31.9 1 a.cpp:1] [ERROR]b;"},
        // Cut: the last line isn't whole.
        {PREFIX + "] [ERROR]one\ntwo\n" + PREFIX + "] [CODECS]a.b[/CODECS]",
         "ERROR=one\ntwo;CODECS=a.b;"},
        {PREFIX + "] [ERROR]one" + PREFIX + "] [ERROR]two[/ERROR]", "ERROR=;ERROR=two;"},
        {PREFIX + "] [STATISTICS]{\"a\":\n1", "STATISTICS={\"a\":;"},
        // No record is so long: what follows counts again.
        {PREFIX + "] [ERROR]a\n" + noise + "[/ERROR]" + PREFIX + "] [PLUGINS]amp[/PLUGINS]",
         "ERROR=a;PLUGINS=amp;" + noise.substr(0, 70000 - 65536 + 2) + "[/ERROR]"},
        {noise + PREFIX + "] [PLUGINS]amp[/PLUGINS]", "PLUGINS=amp;" + noise},
    };
    for (const auto& [text, found] : rows) {
        for (const std::size_t size : {1U, 2U, 3U, 7U, 4096U, 1000000U}) {
            EXPECT_EQ(Read(text, size), found) << text.substr(0, 80) << " by " << size;
        }
    }
}

}  // namespace
