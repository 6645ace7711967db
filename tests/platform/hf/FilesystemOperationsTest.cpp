#include <platform/hf/filesystem/DirectoryIterator.hpp>
#include <platform/hf/filesystem/Operations.hpp>

#include "ChildProcess.hpp"
#include "Threads.hpp"

#include <support/TempDir.hpp>

#include <gtest/gtest.h>
#include <boost/exception_ptr.hpp>

#include <atomic>
#include <map>
#include <optional>
#include <string>

#include <sys/stat.h>

namespace fs = hf::filesystem;
using testsupport::readFile;
using testsupport::TempDir;
using testsupport::writeFile;

namespace {

// The class `op` throws after a trip through boost::exception_ptr, as callers make it: 0 none,
// 1 FileExistsError, 2 AccessDenied, 3 FsysExceptionBase only, 4 other; copied to `failure`.
template <class Op>
int thrownClass(Op op, std::optional<fs::FsysExceptionBase>* failure = nullptr) {
    boost::exception_ptr captured;
    try {
        op();
        return 0;
    } catch (...) {
        captured = boost::current_exception();
    }
    try {
        boost::rethrow_exception(captured);
    } catch (const fs::FsysExceptionBase& e) {
        if (failure) {
            failure->emplace(e);
        }
        return dynamic_cast<const fs::FileExistsError*>(&e) ? 1
               : dynamic_cast<const fs::AccessDenied*>(&e)  ? 2
                                                            : 3;
    } catch (...) {
        return 4;
    }
}

}  // namespace

TEST(FilesystemOperations, PathsJoinWithOneSeparatorAndNeverDropTheLeftSide) {
    EXPECT_EQ(L"/root/abs", (fs::upath(L"/root/") / L"//abs").wstring());  // not substituted
    EXPECT_EQ(L"/root", (fs::upath(L"/root") / L"").wstring());
    EXPECT_EQ(L"toolbox", (fs::upath() / L"toolbox").wstring());
}

TEST(FilesystemOperations, CreateDirectoriesTellsMadeNowFromWasThereFromCouldNot) {
    TempDir temp;
    const fs::upath deep = temp.wpath("a/b/c");
    EXPECT_EQ(0, thrownClass([&] { fs::create_directories(deep); }));  // parents included
    EXPECT_TRUE(std::filesystem::is_directory(temp.path() / "a/b/c"));

    // Was there: reported by FileExistsError, also with a final separator.
    EXPECT_EQ(1, thrownClass([&] { fs::create_directories(temp.wpath("a/b/c/")); }));
    std::optional<fs::FsysExceptionBase> failure;
    ASSERT_EQ(1, thrownClass([&] { fs::create_directories(deep); }, &failure));
    EXPECT_EQ(std::errc::file_exists, failure->code());
    EXPECT_EQ(deep, failure->path1());

    // Could not: a file where a parent or the folder itself should be is no "was there".
    writeFile(temp.path() / "file", "x");
    EXPECT_EQ(3, thrownClass([&] { fs::create_directories(temp.wpath("file/sub/deeper")); }));
    EXPECT_EQ(3, thrownClass([&] { fs::create_directories(temp.wpath("file")); }));
    EXPECT_EQ(3, thrownClass([&] { fs::create_directories(fs::upath()); }));
    EXPECT_EQ("x", readFile(temp.path() / "file"));

    // Racing threads: exactly one makes the folder, the others hear it was there.
    for (int round = 0; round < 10; ++round) {
        const fs::upath target = temp.wpath("race" + std::to_string(round) + "/parent/leaf");
        std::atomic<int> outcomes[5] = {};
        hftest::onThreads(
            6, [&](int) { ++outcomes[thrownClass([&] { fs::create_directories(target); })]; });
        EXPECT_EQ(1, outcomes[0].load());
        EXPECT_EQ(5, outcomes[1].load());
    }
}

TEST(FilesystemOperations, RenameAndCopyReplaceOrRefuseAsAsked) {
    TempDir temp;
    const fs::upath dir = fs::upath(temp.wpath()) / L"pr\u00E9f\U0001F600";
    const auto read = [&](const wchar_t* name) { return readFile((dir / name).native_path()); };
    writeFile((dir / L"new.tmp").native_path(), "new \xC3\xA9");
    writeFile((dir / L"p.settings").native_path(), "old");
    const fs::upath target = dir / L"p.settings";
    fs::rename(dir / L"new.tmp", target);
    EXPECT_EQ("new \xC3\xA9", read(L"p.settings"));
    EXPECT_FALSE(fs::exists(dir / L"new.tmp"));

    const fs::upath missing = dir / L"missing";
    std::optional<fs::FsysExceptionBase> failure;
    ASSERT_EQ(3, thrownClass([&] { fs::rename(missing, target); }, &failure));
    EXPECT_EQ(std::errc::no_such_file_or_directory, failure->code());
    EXPECT_EQ(missing, failure->path1());
    EXPECT_EQ(target, failure->path2());
    EXPECT_EQ("rename failed for \"" + missing.string() + "\" and \"" + target.string() +
                  "\": " + failure->code().message(),
              failure->what());
    std::filesystem::create_directory((dir / L"dir").native_path());
    EXPECT_EQ(3, thrownClass([&] { fs::rename(dir / L"dir", target); }));  // no silent success

    const auto copy = [&](const wchar_t* from, const wchar_t* to, fs::copy_option option) {
        return thrownClass([&] { fs::copy_file(dir / from, dir / to, option); });
    };
    writeFile((dir / L"to").native_path(), "existing");
    EXPECT_EQ(1, copy(L"p.settings", L"to", fs::copy_option::fail_if_exists));
    EXPECT_EQ("existing", read(L"to"));
    EXPECT_EQ(0, copy(L"p.settings", L"to", fs::copy_option::overwrite_if_exists));
    EXPECT_EQ("new \xC3\xA9", read(L"to"));
    EXPECT_EQ(0, copy(L"p.settings", L"fresh", fs::copy_option::fail_if_exists));
    EXPECT_EQ("new \xC3\xA9", read(L"fresh"));
    EXPECT_EQ(3, copy(L"absent", L"other", fs::copy_option::overwrite_if_exists));
    EXPECT_FALSE(fs::exists(dir / L"other"));
}

TEST(FilesystemOperations, DirectoryIteratorListsEveryEntryOnceWithStatusFollowingLinks) {
    TempDir temp;
    EXPECT_TRUE(fs::directory_iterator(temp.wpath()) == fs::directory_iterator());
    writeFile(temp.path() / "p.settings", "x");
    writeFile(temp.path() / "sub/inner", "y");
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
        {L"p.settings", fs::file_type::regular}, {L"sub", fs::file_type::directory},
        {L"linkToFile", fs::file_type::regular}, {L"linkToDir", fs::file_type::directory},
        {L"dangling", fs::file_type::not_found}, {L"loop", fs::file_type::not_found},
        {L"fifo", fs::file_type::other}};
    EXPECT_EQ(expected, types);
    EXPECT_EQ(3, thrownClass([&] { fs::directory_iterator(temp.wpath("missing")); }));
    EXPECT_EQ(3, thrownClass([&] { fs::directory_iterator(temp.wpath("p.settings")); }));
}

// Run as root, permission bits stop nothing; an unprivileged child meets them for real.
TEST(FilesystemOperations, PermissionFailuresAreAccessDenied) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root to switch to an unprivileged account";
    }
    TempDir temp;
    writeFile(temp.path() / "private/file", "secret");
    std::filesystem::permissions(temp.path() / "private", std::filesystem::perms::owner_all);
    std::filesystem::permissions(
        temp.path(), std::filesystem::perms::owner_all | std::filesystem::perms::others_exec);
    const int status = hftest::runInChild([&]() -> int {
        if (!hftest::dropRootPrivileges()) {
            return 99;
        }
        const fs::upath file = temp.wpath("private/file");
        const auto overwrite = fs::copy_option::overwrite_if_exists;
        return (thrownClass([&] { fs::create_directories(temp.wpath("private/sub")); }) != 2) +
               (thrownClass([&] { fs::rename(file, temp.wpath("private/moved")); }) != 2) +
               (thrownClass([&] { fs::copy_file(file, temp.wpath("c"), overwrite); }) != 2) +
               (thrownClass([&] { fs::remove(file); }) != 2) +
               (thrownClass([&] { fs::directory_iterator(temp.wpath("private")); }) != 2);
    });
    if (status == 99) {
        GTEST_SKIP() << "could not switch to an unprivileged account";
    }
    EXPECT_EQ(0, status) << "operations that did not throw AccessDenied";
    EXPECT_EQ("secret", readFile(temp.path() / "private/file"));
}
