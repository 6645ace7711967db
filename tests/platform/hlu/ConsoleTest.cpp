#include <platform/hlu/hlu.h>

#include "StdoutCapture.hpp"

#include <gtest/gtest.h>

#include <string>

#include <unistd.h>

TEST(Console, PrintfAndPutsnReachStandardOutputAtOnceAndInOrder) {
    // No line end at the close: only the call's own flush can have put it out.
    const std::string warning = "Warning: failed to create /home/\xC3\xA9/pref.\nCheck it.";
    {
        hlutest::StdoutCapture capture;
        const int length =
            hluPrintf("Warning: failed to create %s.\nCheck it.", "/home/\xC3\xA9/pref");
        EXPECT_EQ(warning, capture.text());
        EXPECT_EQ(static_cast<int>(warning.size()), length);
    }
    hlutest::StdoutCapture capture;
    hluPutsn("Could not copy a.settings");
    hluPutsn("");
    hluPutsn(nullptr);
    ASSERT_EQ(1, ::write(STDOUT_FILENO, "|", 1));  // past any buffer of the C library
    EXPECT_EQ("Could not copy a.settings\n\n\n|", capture.text());
}
