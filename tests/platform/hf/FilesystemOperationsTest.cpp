#include <platform/hf/filesystem/Operations.hpp>

#include <platform/hf/filesystem/DirectoryIterator.hpp>

#include "ChildProcess.hpp"
#include "Threads.hpp"

#include <support/TempDir.hpp>

#include <gtest/gtest.h>
#include <boost/exception_ptr.hpp>

#include <atomic>
#include <optional>
#include <string>

namespace fs = hf::filesystem;
using testsupport::readFile;
using testsupport::TempDir;
using testsupport::writeFile;

namespace {

// Which class of the family `op` throws, after the trip through a boost::exception_ptr that
// the library's callers make: 0 none, 1 FileExistsError, 2 AccessDenied, 3 FsysExceptionBase
// only, 4 something else. A failure of the family is also copied to `failure`.
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
    EXPECT_EQ("create_directories", failure->operation());

    // Could not: a file where a parent or the folder itself should be is no "was there".
    writeFile(temp.path() / "file", "x");
    EXPECT_EQ(3, thrownClass([&] { fs::create_directories(temp.wpath("file/sub/deeper")); }));
    EXPECT_EQ(3, thrownClass([&] { fs::create_directories(temp.wpath("file")); }));
    EXPECT_EQ(3, thrownClass([&] { fs::create_directories(fs::upath()); }));
    EXPECT_EQ("x", readFile(temp.path() / "file"));
}

TEST(FilesystemOperations, CreateDirectoriesLetsExactlyOneOfManyRacingThreadsMakeTheFolder) {
    for (int round = 0; round < 20; ++round) {
        TempDir temp;
        const fs::upath target = temp.wpath("shared/parent/leaf");
        std::atomic<int> outcomes[5] = {};
        hftest::onThreads(
            6, [&](int) { ++outcomes[thrownClass([&] { fs::create_directories(target); })]; });
        EXPECT_EQ(1, outcomes[0].load());
        EXPECT_EQ(5, outcomes[1].load());
    }
}

TEST(FilesystemOperations, RenameReplacesAnExistingTargetAndReportsBothPathsOnFailure) {
    TempDir temp;
    writeFile(temp.path() / "new.settings.tmp", "new content");
    writeFile(temp.path() / "p.settings", "old content");
    const fs::upath target = temp.wpath("p.settings");

    fs::rename(temp.wpath("new.settings.tmp"), target);
    EXPECT_EQ("new content", readFile(temp.path() / "p.settings"));
    EXPECT_FALSE(fs::exists(temp.wpath("new.settings.tmp")));

    const fs::upath missing = temp.wpath("missing");
    std::optional<fs::FsysExceptionBase> failure;
    ASSERT_EQ(3, thrownClass([&] { fs::rename(missing, target); }, &failure));
    EXPECT_EQ(std::errc::no_such_file_or_directory, failure->code());
    EXPECT_EQ(missing, failure->path1());
    EXPECT_EQ(target, failure->path2());
    const std::string what = failure->what();
    for (const std::string& part :
         {std::string("rename"), missing.string(), target.string(), failure->code().message()}) {
        EXPECT_NE(std::string::npos, what.find(part)) << what;
    }
    EXPECT_EQ("new content", readFile(temp.path() / "p.settings"));

    // A folder can't replace a file: a failure of the family, not a silent success.
    std::filesystem::create_directory(temp.path() / "dir");
    EXPECT_EQ(3, thrownClass([&] { fs::rename(temp.wpath("dir"), target); }));
}

TEST(FilesystemOperations, CopyFileHonoursItsOptionOnNonAsciiPaths) {
    TempDir temp;
    const fs::upath dir = fs::upath(temp.wpath()) / L"pr\u00E9f\U0001F600";
    const auto read = [&](const wchar_t* name) { return readFile((dir / name).native_path()); };
    const auto copy = [&](const wchar_t* from, const wchar_t* to, fs::copy_option option) {
        return thrownClass([&] { fs::copy_file(dir / from, dir / to, option); });
    };
    writeFile((dir / L"from").native_path(), "source \xC3\xA9");
    writeFile((dir / L"to").native_path(), "existing");
    EXPECT_EQ(1, copy(L"from", L"to", fs::copy_option::fail_if_exists));
    EXPECT_EQ("existing", read(L"to"));
    EXPECT_EQ(0, copy(L"from", L"to", fs::copy_option::overwrite_if_exists));
    EXPECT_EQ("source \xC3\xA9", read(L"to"));
    EXPECT_EQ(0, copy(L"from", L"fresh", fs::copy_option::fail_if_exists));
    EXPECT_EQ("source \xC3\xA9", read(L"fresh"));
    EXPECT_EQ(3, copy(L"absent", L"other", fs::copy_option::overwrite_if_exists));
    EXPECT_FALSE(fs::exists(dir / L"other"));
}

// Run as root, permission bits stop nothing; an unprivileged child meets them for real.
TEST(FilesystemOperations, PermissionFailuresAreAccessDenied) {
    TempDir temp;
    writeFile(temp.path() / "private/file", "secret");
    std::filesystem::permissions(temp.path() / "private", std::filesystem::perms::owner_all);
    std::filesystem::permissions(
        temp.path(), std::filesystem::perms::owner_all | std::filesystem::perms::others_exec);
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root to switch to an unprivileged account";
    }

    const int status = hftest::runInChild([&]() -> int {
        if (!hftest::dropRootPrivileges()) {
            return 99;
        }
        const fs::upath file = temp.wpath("private/file");
        int failures = 0;
        failures += thrownClass([&] { fs::create_directories(temp.wpath("private/sub")); }) != 2;
        failures += thrownClass([&] { fs::rename(file, temp.wpath("private/moved")); }) != 2;
        failures +=
            thrownClass([&] {
                fs::copy_file(file, temp.wpath("copied"), fs::copy_option::overwrite_if_exists);
            }) != 2;
        failures += thrownClass([&] { fs::remove(file); }) != 2;
        failures += thrownClass([&] { fs::directory_iterator(temp.wpath("private")); }) != 2;
        return failures;
    });
    if (status == 99) {
        GTEST_SKIP() << "could not switch to an unprivileged account";
    }
    EXPECT_EQ(0, status) << "operations that did not throw AccessDenied";
    EXPECT_EQ("secret", readFile(temp.path() / "private/file"));
}
