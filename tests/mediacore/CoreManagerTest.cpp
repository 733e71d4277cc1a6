#include "core/media/CoreManager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/media/ClientAPI.h"
#include "core/media/Presets.h"
#include "core/support/Exception.h"

namespace Tarnex::Core {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

class CoreManagerTest : public testing::Test {
protected:
    ~CoreManagerTest() override { core.Uninitialize(); }

    void Start(const std::vector<std::string>& disabled) {
        const CoreOptions options{{MODULE_PLUGIN_LOADER, {{OPT_DISABLED_PLUGINS, disabled}}}};
        core.Initialize({}, options, nullptr, nullptr, true);
        core.WaitUntilInitialized();
    }

    /// The implementation whose module the factory asked, empty if none.
    std::string AskedForEncoder(const std::string& codecId, const char* implementation) {
        const auto preset = Conf::CreateDataHelper(Conf::IPreset::KEY_FILTER_VIDEO_CODEC, codecId);
        const auto factory = core.GetCodecFactory();
        try {
            const auto coder =
                implementation == nullptr
                    ? factory->CreateDefaultVideoEncoder({}, preset->GetPresetProperty())
                    : factory->CreateVideoEncoder({}, preset->GetPresetProperty(), implementation,
                                                  {});
            EXPECT_EQ(coder, nullptr);
            return {};
        } catch (const Exception& asked) {
            return asked.what();
        }
    }

    CoreManager& core = CoreManager::Instance();
};

TEST_F(CoreManagerTest, OffersWhatTheStartedModulesOffer) {
    Start({});
    const auto factory = core.GetCodecFactory();
    EXPECT_THAT(factory->GetEncoderCodecs("SECOND_IMPL"), ElementsAre("B", "A"));
    EXPECT_THAT(factory->GetDecoderCodecs("SECOND_IMPL"), IsEmpty());
    EXPECT_EQ(AskedForEncoder("A", nullptr), "FIRST_IMPL");
    EXPECT_EQ(AskedForEncoder("B", nullptr), "SECOND_IMPL");
    EXPECT_EQ(AskedForEncoder("A", "SECOND_IMPL"), "SECOND_IMPL");
    EXPECT_EQ(AskedForEncoder("B", "FIRST_IMPL"), "") << "no fall-back to another implementation";
    EXPECT_TRUE(Proc::IsVideoCodec("A"));
    EXPECT_TRUE(Proc::IsAudioCodec("B"));
    EXPECT_FALSE(Proc::IsVideoCodec("C") || Proc::IsAudioCodec("C"));
}

TEST_F(CoreManagerTest, LeavesDisabledPluginsOut) {
    Start({"First"});
    EXPECT_THAT(core.GetCodecFactory()->GetEncoderCodecs("FIRST_IMPL"), IsEmpty());
    EXPECT_EQ(AskedForEncoder("A", nullptr), "SECOND_IMPL");
}

std::string OpeningFailure() {
    try {
        ClientAPI::OpenSource("some.file");
    } catch (const Exception& failure) {
        return failure.what();
    }
    return "none";
}

TEST_F(CoreManagerTest, SaysWhyNoParserOpensAFile) {
    Start({});
    EXPECT_THAT(OpeningFailure(),
                MatchesRegex("No module can open some.file; .*int.*; not my format"));
    core.Uninitialize();
    Start({"BadParser"});
    EXPECT_EQ(OpeningFailure(), "No module can open some.file; not my format");
    core.Uninitialize();
    EXPECT_EQ(OpeningFailure(), "No module can open some.file; none is started");
}

TEST_F(CoreManagerTest, IsUpBetweenStartAndEnd) {
    EXPECT_THROW(core.WaitUntilInitialized(), Exception);
    EXPECT_THROW(core.GetCodecFactory(), Exception);
    Start({});
    EXPECT_TRUE(core.IsInitialized());
    EXPECT_THROW(Start({}), Exception);
    core.Uninitialize();
    EXPECT_FALSE(core.IsInitialized());
    EXPECT_FALSE(Proc::IsVideoCodec("A"));
    Start({});
    EXPECT_TRUE(Proc::IsVideoCodec("A")) << "after a second start";
}

}  // namespace
}  // namespace Tarnex::Core
