// The POSIX file system behind the seam: folders made once and told apart from existing ones,
// lists with link targets' types, whole-file reads that refuse what is no regular file or too
// big without waiting on it, writes and renames that replace, the lock that orders processes,
// and the failure classes callers act on (AccessDenied met by an unprivileged child).
#include <platform/hf/filesystem/FileSystem.hpp>
#include <platform/hf/filesystem/FilesystemError.hpp>

#include "ChildProcess.hpp"

#include <support/TempDir.hpp>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <map>
#include <thread>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = hf::filesystem;
using testsupport::readFile;
using testsupport::TempDir;
using testsupport::writeFile;

TEST(PosixFileSystem, FoldersFilesRenamesAndListsBehaveAsTheSeamPromises) {
    TempDir temp;
    fs::FileSystem& files = fs::FileSystem::posix();
    EXPECT_EQ("/a/b", (fs::upath("/a/") / fs::upath("/b")).string()) << "one separator, left kept";
    // Made now, parents included, each once; then there already.
    const fs::upath deep = temp.wpath("x/y/z");
    EXPECT_EQ(3u, fs::makeFolders(files, deep, true).size());
    EXPECT_TRUE(fs::makeFolders(files, deep, true).empty());
    EXPECT_THROW(files.makeFolder(deep), fs::FileExistsError);

    const fs::FileInfo written = files.writeFile(temp.wpath("x/f"), "old", true);
    files.writeFile(temp.wpath("x/g"), "new", false);
    files.rename(temp.wpath("x/g"), temp.wpath("x/f"));  // replaces
    fs::FileInfo read;
    EXPECT_EQ("new", files.readFile(temp.wpath("x/f"), &read));
    EXPECT_FALSE(fs::isSameVersion(written, read));
    EXPECT_TRUE(fs::isSameVersion(read, files.examine(temp.wpath("x/f"))));
    EXPECT_THROW(files.readFile(temp.wpath("x/f"), nullptr, 2), fs::FsysExceptionBase);
    EXPECT_FALSE(files.examine(temp.wpath("x/none")).exists());
    EXPECT_FALSE(files.checkWritable(temp.wpath("x/none"))) << "a first save may make it";

    // Nothing but a regular file is read, and a FIFO nobody writes to does not block.
    ASSERT_EQ(0, ::mkfifo((temp.path() / "x/fifo").c_str(), 0600));
    ASSERT_EQ(0, ::symlink("f", (temp.path() / "x/link").c_str()));
    ASSERT_EQ(0, ::symlink("gone", (temp.path() / "x/dangling").c_str()));
    EXPECT_THROW(files.readFile(temp.wpath("x/fifo"), nullptr), fs::FsysExceptionBase);
    EXPECT_THROW(files.readFile(temp.wpath("x"), nullptr), fs::FsysExceptionBase);
    EXPECT_EQ(std::errc::is_a_directory, files.checkWritable(temp.wpath("x")));
    std::map<std::string, fs::file_type> listed;
    for (const fs::FolderEntry& entry : files.listFolder(temp.wpath("x"))) {
        listed[entry.name] = entry.type;
    }
    EXPECT_EQ((std::map<std::string, fs::file_type>{{"y", fs::file_type::directory},
                                                    {"f", fs::file_type::regular},
                                                    {"fifo", fs::file_type::other},
                                                    {"link", fs::file_type::regular},
                                                    {"dangling", fs::file_type::not_found}}),
              listed);
    EXPECT_FALSE(files.remove(temp.wpath("x/none")));
    fs::removeTree(files, temp.wpath("x"));
    EXPECT_FALSE(files.examine(temp.wpath("x")).exists());
}

TEST(PosixFileSystem, TheLockOrdersProcessesAndAnUnprivilegedUserMeetsAccessDenied) {
    TempDir temp;
    fs::FileSystem& files = fs::FileSystem::posix();
    const fs::upath lockFile = temp.wpath("p.lock");
    // A child holds the lock for a moment: this process waits its patience out meanwhile, and
    // gets it once the child is gone.
    int ready[2];
    ASSERT_EQ(0, ::pipe(ready));
    const pid_t holder = ::fork();
    if (holder == 0) {
        const auto held = files.lockFile(lockFile, std::chrono::seconds(1));
        ::_exit(held && ::write(ready[1], "x", 1) == 1 &&
                        (std::this_thread::sleep_for(std::chrono::milliseconds(300)), true)
                    ? 0
                    : 1);
    }
    char signal;
    ASSERT_EQ(1, ::read(ready[0], &signal, 1));
    EXPECT_FALSE(files.lockFile(lockFile, std::chrono::milliseconds(50)));
    EXPECT_TRUE(files.lockFile(lockFile, std::chrono::seconds(10)));
    int status = 0;
    ASSERT_EQ(holder, ::waitpid(holder, &status, 0));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);

    writeFile(temp.path() / "private/file", "secret");
    std::filesystem::permissions(temp.path() / "private", std::filesystem::perms::owner_all);
    std::filesystem::permissions(temp.path(), std::filesystem::perms::all);
    status = hftest::runInChild([&]() -> int {
        if (!hftest::dropRootPrivileges()) {
            return 99;
        }
        int wrong = 0;
        for (const auto& operation : std::vector<std::function<void()>>{
                 [&] { files.makeFolder(temp.wpath("private/sub")); },
                 [&] { files.readFile(temp.wpath("private/file"), nullptr); },
                 [&] { files.rename(temp.wpath("private/file"), temp.wpath("moved")); },
                 [&] { files.listFolder(temp.wpath("private")); }}) {
            try {
                operation();
                ++wrong;
            } catch (const fs::AccessDenied&) {
            } catch (...) {
                ++wrong;
            }
        }
        return wrong;
    });
    if (status == 99) {
        GTEST_SKIP() << "could not switch to an unprivileged account";
    }
    EXPECT_EQ(0, status) << "operations that did not throw AccessDenied";
    EXPECT_EQ("secret", readFile(temp.path() / "private/file"));
}

}  // namespace
