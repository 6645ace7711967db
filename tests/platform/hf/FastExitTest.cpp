#include <platform/hf/app/FastExit.hpp>

#include "ChildProcess.hpp"

#include <support/TempDir.hpp>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

static std::string gMarkerPath;  // written by an exit handler

static void writeMarker() {
    if (std::FILE* marker = std::fopen(gMarkerPath.c_str(), "w")) {
        std::fclose(marker);
    }
}

TEST(FastExit, EndsAtOnceWithTheCodeSkippingExitHandlersAndBufferedOutput) {
    testsupport::TempDir temp;
    gMarkerPath = (temp.path() / "atexit-ran").string();
    const std::string bufferedPath = (temp.path() / "buffered").string();

    EXPECT_EQ(7, hftest::runInChild([&] {
                  std::atexit(writeMarker);
                  std::FILE* buffered = std::fopen(bufferedPath.c_str(), "w");
                  std::setvbuf(buffered, nullptr, _IOFBF, 4096);
                  std::fputs("never flushed", buffered);
                  hf::app::fast_exit(7);
                  return 0;
              }));
    EXPECT_FALSE(std::filesystem::exists(gMarkerPath));
    EXPECT_EQ(0u, std::filesystem::file_size(bufferedPath));

    // A child ending normally does run them, so the test can see the difference.
    EXPECT_EQ(3, hftest::runInChild([&] {
                  std::atexit(writeMarker);
                  std::exit(3);
                  return 0;
              }));
    EXPECT_TRUE(std::filesystem::exists(gMarkerPath));
}
