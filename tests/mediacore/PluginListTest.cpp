#include "mediacore/PluginList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/media/Factories.h"
#include "core/support/Exception.h"

namespace Tarnex::Core {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(PluginList, IsReadBesideTheProgram) {
    EXPECT_THAT(Proc::CodecFactoryImpl::GetPluginList(),
                ElementsAre("Refuses", "First", "Throws", "Second", "Absent"));
    EXPECT_THAT(Proc::MuxerFactoryImpl::GetPluginList(), testing::IsEmpty());
}

TEST(PluginList, FaultsNameFileAndText) {
    const std::pair<const char*, const char*> cases[] = {
        {"CodecFactory: a\nCodecsFactory: b\n", "line 2"},
        {"CodecFactory a\n", "line 1"},
        {"EffectFactory: good, ../bad\n", "\"../bad\""},
    };
    const std::string path = testing::TempDir() + "faulty.list";
    for (const auto& [content, text] : cases) {
        std::ofstream(path) << content;
        try {
            ReadPluginLists(path);
            ADD_FAILURE() << "no failure for " << content;
        } catch (const Exception& failure) {
            EXPECT_THAT(failure.what(), AllOf(HasSubstr(path), HasSubstr(text)));
        }
    }
    std::filesystem::remove(path);
    EXPECT_THROW(ReadPluginLists(path), Exception) << "a missing list isn't an empty one";
}

}  // namespace
}  // namespace Tarnex::Core
