#include <platform/hf/filesystem/DirectoryIterator.hpp>

#include <support/TempDir.hpp>

#include <gtest/gtest.h>

#include <map>
#include <string>

#include <sys/stat.h>

namespace fs = hf::filesystem;
using testsupport::TempDir;
using testsupport::writeFile;

TEST(DirectoryIterator, ListsEveryEntryOnceWithStatusFollowingLinks) {
    TempDir temp;
    EXPECT_TRUE(fs::directory_iterator(temp.wpath()) == fs::directory_iterator());

    writeFile(temp.path() / "p.settings", "x");
    writeFile(temp.path() / "sub/inner", "y");
    writeFile(temp.path() / "\xC3\xA9t\xC3\xA9", "z");
    std::filesystem::create_symlink(temp.path() / "p.settings", temp.path() / "linkToFile");
    std::filesystem::create_directory_symlink(temp.path() / "sub", temp.path() / "linkToDir");
    std::filesystem::create_symlink(temp.path() / "gone", temp.path() / "dangling");
    std::filesystem::create_symlink("loop", temp.path() / "loop");
    ASSERT_EQ(0, ::mkfifo((temp.path() / "fifo").c_str(), 0600));

    std::map<std::wstring, fs::file_type> types;
    for (fs::directory_iterator it(temp.wpath()); it != fs::directory_iterator(); ++it) {
        EXPECT_EQ(fs::upath(temp.wpath()), it->path().parent_path());
        EXPECT_TRUE(types.emplace(it->path().filename().wstring(), it->status().type()).second);
    }
    const std::map<std::wstring, fs::file_type> expected{
        {L"p.settings", fs::file_type::regular},    {L"sub", fs::file_type::directory},
        {L"\u00E9t\u00E9", fs::file_type::regular}, {L"linkToFile", fs::file_type::regular},
        {L"linkToDir", fs::file_type::directory},   {L"dangling", fs::file_type::not_found},
        {L"loop", fs::file_type::not_found},        {L"fifo", fs::file_type::other},
    };
    EXPECT_EQ(expected, types);

    EXPECT_THROW(fs::directory_iterator(temp.wpath("missing")), fs::FsysExceptionBase);
    try {
        fs::directory_iterator it(temp.wpath("p.settings"));
        FAIL() << "a file is no folder";
    } catch (const fs::FsysExceptionBase& e) {
        EXPECT_EQ(std::errc::not_a_directory, e.code());
        EXPECT_EQ(fs::upath(temp.wpath("p.settings")), e.path1());
    }
}
