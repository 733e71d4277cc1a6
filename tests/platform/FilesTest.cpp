#include "platform/Files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "platform/WideText.h"

namespace Tarnex::Platform {
namespace {

class Files : public testing::Test {
protected:
    Files() : root(testing::TempDir() + "platform_files") {
        std::filesystem::remove_all(root);
        std::filesystem::create_directories(root);
    }
    ~Files() override { std::filesystem::remove_all(root); }

    std::wstring Path(const std::string& name) const { return Widen((root / name).native()); }
    void Write(const std::string& name) const { std::ofstream(root / name) << "text"; }

    const std::filesystem::path root;
};

TEST_F(Files, CreatesDirectoriesWithTheirParents) {
    Write("file");
    EXPECT_EQ(CreateDirectories(Path("a/b/\xFF/")), Created::Done);
    EXPECT_TRUE(IsDirectory(Path("a/b/\xFF")));
    EXPECT_EQ(CreateDirectories(Path("a/b/")), Created::Exists);
    EXPECT_EQ(CreateDirectories(Path("file/")), Created::Exists);
    EXPECT_FALSE(IsDirectory(Path("file")));
    EXPECT_EQ(CreateDirectories(Path("file/below")), Created::Failed);
    EXPECT_EQ(CreateDirectories(Path(std::string(300, 'x'))), Created::Failed);
}

TEST_F(Files, FindsByPrefixWithTheTimeOfCreation) {
    const auto before = std::chrono::system_clock::now() - std::chrono::seconds(1);
    Write("App.one");
    Write("Apple");
    std::filesystem::create_directory(root / "App.folder");
    std::filesystem::last_write_time(
        root / "App.one", std::filesystem::file_time_type::min() + std::chrono::hours(24));

    const std::vector<FoundFile> found = FindFiles(Path(""), L"App.");
    ASSERT_EQ(found.size(), 2U);
    for (const FoundFile& file : found) {
        EXPECT_GT(file.created, before);
        EXPECT_LE(file.created, std::chrono::system_clock::now());
        EXPECT_EQ(RemoveFile(Path(Narrow(file.name))), file.name == L"App.one");
    }
    EXPECT_EQ(FindFiles(Path(""), L"").size(), 2U);
    EXPECT_TRUE(FindFiles(Path("missing"), L"").empty());
}

}  // namespace
}  // namespace Tarnex::Platform
