#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "core/media/AppLocations.h"
#include "core/media/Factories.h"
#include "core/media/OglManager.h"

namespace Tarnex::Proc {
namespace {

std::string LoadFailure(void (*load)(const std::string&), const std::string& plugin) {
    try {
        load(plugin);
    } catch (const std::exception& failure) {
        return failure.what();
    }
    return plugin + ": no failure";
}

TEST(Modules, EachStepOfALoadFailsWithItsOwnReason) {
    struct Case {
        void (*load)(const std::string&);
        std::string plugin;
        std::string reason;
    };
    const Case cases[] = {
        {CodecFactoryImpl::TryToLoadModule, "Absent", "No such file"},
        {CodecFactoryImpl::TryToLoadModule, "Refuses", "refused to initialise"},
        {CodecFactoryImpl::TryToLoadModule, "BadName", "implementation name \"A.B\""},
        {CodecFactoryImpl::TryToLoadModule, "Parser", "offers no codecs"},
        {MuxerFactoryImpl::TryToLoadModule, "Parser", "offers no muxer"},
        {ParserFactoryImpl::TryToLoadModule, "First", "offers no parser"},
        {EffectFactory::TryToLoadModule, "NegativeEffect", "refused to initialise (-1)"},
        {EffectFactory::TryToLoadModule, "First", "no entry point f0r_init"},
        {FilterFactory::TryToLoadModule, "First", "no entry point ladspa_descriptor"},
        {FilterFactory::TryToLoadModule, "BothInterfaces", "no failure"},
        {FilterFactory::TryToLoadModule, "EmptyLadspa", "describes no LADSPA filter"},
        {FilterFactory::TryToLoadModule, "EmptyLv2", "describes no LV2 filter"},
        {FilterFactory::TryToLoadModule, "SecondWithoutRun", "filter 1 has no run"},
        {FilterFactory::TryToLoadModule, "FilterLibrary", "no failure"},
        {AnalyzerFactory::TryToLoadModule, "First", "no entry point vampGetPluginDescriptor"},
    };
    for (const Case& each : cases) {
        const std::string failure = LoadFailure(each.load, each.plugin);
        EXPECT_THAT(failure, testing::HasSubstr(each.reason));
        EXPECT_THAT(failure, testing::HasSubstr(each.plugin));
        EXPECT_EQ(failure, LoadFailure(each.load, each.plugin)) << "at the second load";
    }
}

TEST(Modules, ASecondNameOfAModuleThatFailedTellsTheFirst) {
    namespace fs = std::filesystem;
    const ioPath directory = Core::AppLocations::GetLocations().GetApplicationDirectory();
    const fs::path link = (directory / "OtherName.so").utf8string();
    fs::remove(link);
    fs::create_symlink("NegativeEffect.so", link);
    const std::string first = LoadFailure(EffectFactory::TryToLoadModule, "NegativeEffect");
    const std::string second = LoadFailure(EffectFactory::TryToLoadModule, "OtherName");
    EXPECT_THAT(second, testing::StartsWith("Plugin OtherName"));
    EXPECT_THAT(second, testing::EndsWith("failed before. " + first));
    fs::remove(link);
}

// The fixture aborts if it is initialised twice.
TEST(Modules, AFileWithSeveralNamesIsInitialisedOnce) {
    namespace fs = std::filesystem;
    const ioPath directory = Core::AppLocations::GetLocations().GetApplicationDirectory();
    const fs::path app = directory.utf8string();
    const fs::path names[] = {app / "Folder", app / "Spelled.so", app / "Linked.so",
                              app / "HardLinked.so"};
    for (const fs::path& name : names) {
        fs::remove(name);
    }
    fs::create_directory_symlink(".", names[0]);
    fs::create_symlink("./Second.so", names[1]);
    fs::create_symlink("Folder/Second.so", names[2]);
    fs::create_hard_link(app / "Second.so", names[3]);
    for (const char* name : {"Second", "Spelled", "Linked", "HardLinked"}) {
        EXPECT_NO_THROW(CodecFactoryImpl::TryToLoadModule(name)) << name;
        EXPECT_EQ(Core::FindModuleFile(name).utf8string(), (app / "Second.so").string());
    }
}

TEST(Modules, OnlyANegativeResultRefusesAnEffect) {
    EXPECT_NO_THROW(EffectFactory::TryToLoadModule("Effect"));
}

TEST(OglManager, StopsBeforeItStartsAgain) {
    Ogl::OglManager& manager = Ogl::OglManager::GetInstance();
    manager.Initialize();
    EXPECT_NO_THROW(manager.Initialize());
    manager.Deinitialize();
}

}  // namespace
}  // namespace Tarnex::Proc
