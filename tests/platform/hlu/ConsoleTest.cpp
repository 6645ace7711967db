#include <platform/hlu/hlu.h>

#include <support/TempDir.hpp>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace {

// Sends standard output to a file for the life of the capture; text() reads what arrived at the
// file descriptor, so only output that was flushed shows.
class StdoutCapture {
public:
    StdoutCapture() {
        std::fflush(stdout);
        saved_ = ::dup(STDOUT_FILENO);
        const int file = ::open(file_.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ::dup2(file, STDOUT_FILENO);
        ::close(file);
    }
    ~StdoutCapture() {
        std::fflush(stdout);
        ::dup2(saved_, STDOUT_FILENO);
        ::close(saved_);
    }
    std::string text() const { return testsupport::readFile(file_); }

private:
    testsupport::TempDir temp_;
    std::string file_ = (temp_.path() / "stdout").string();
    int saved_ = -1;
};

}  // namespace

TEST(Console, PrintfAndPutsnReachStandardOutputAtOnceAndInOrder) {
    StdoutCapture capture;
    // No line end at the close: only the call's own flush can have put it out.
    const std::string warning = "Warning: failed to create /home/\xC3\xA9/pref.\nCheck it.";
    EXPECT_EQ(static_cast<int>(warning.size()),
              hluPrintf("Warning: failed to create %s.\nCheck it.", "/home/\xC3\xA9/pref"));
    EXPECT_EQ(warning, capture.text());

    hluPutsn("Could not copy a.settings");
    hluPutsn("");
    hluPutsn(nullptr);
    ASSERT_EQ(1, ::write(STDOUT_FILENO, "|", 1));  // past any buffer of the C library
    EXPECT_EQ(warning + "Could not copy a.settings\n\n\n|", capture.text());
}
