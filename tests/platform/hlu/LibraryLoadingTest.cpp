#include <platform/hlu/hlu.h>

#include <support/TempDir.hpp>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

namespace {

const std::string fixtureDir = SETTINGSCORE_TEST_FIXTURE_DIR;

// Whether the calling thread's last loader text mentions `part`.
bool lastErrorMentions(const char* part) {
    return std::strstr(hluLastLibraryError(), part) != nullptr;
}

}  // namespace

TEST(LibraryLoading, LoadsAFixtureFindsItsSymbolsAndReportsWhatIsMissing) {
    const std::string fixture = fixtureDir + "/hlufixture_library.so";
    int status = -1;
    void* handle = hluLoadLibrary(fixture.c_str(), &status);
    ASSERT_NE(nullptr, handle) << hluLastLibraryError();
    EXPECT_EQ(0, status);

    // Loading again gives the same library with its state, not a second copy.
    using Answer = int (*)();
    auto answer = reinterpret_cast<Answer>(hluFindSymbolInLibrary(handle, "hlufixture_answer"));
    ASSERT_NE(nullptr, answer);
    const int first = answer();
    void* again = hluLoadLibrary(fixture.c_str(), &status);
    EXPECT_EQ(handle, again);
    EXPECT_EQ(first + 1,
              reinterpret_cast<Answer>(hluFindSymbolInLibrary(again, "hlufixture_answer"))());

    // The fixture calls back into this process's platform library.
    using Format = int (*)(double, char*, size_t);
    auto format = reinterpret_cast<Format>(hluFindSymbolInLibrary(handle, "hlufixture_format"));
    ASSERT_NE(nullptr, format);
    char buffer[64];
    EXPECT_EQ(3, format(0.1, buffer, sizeof buffer));
    EXPECT_STREQ("0.1", buffer);

    EXPECT_EQ(nullptr, hluFindSymbolInLibrary(handle, "hlufixture_no_such_function"));
    EXPECT_TRUE(lastErrorMentions("hlufixture_no_such_function")) << hluLastLibraryError();
    // A null handle must not turn into a search of the whole process.
    EXPECT_EQ(nullptr, hluFindSymbolInLibrary(nullptr, "hluLoadLibrary"));
    EXPECT_STRNE("", hluLastLibraryError());
}

TEST(LibraryLoading, FailuresGiveNonZeroStatusAndTheLoadersTextOfTheCallingThread) {
    testsupport::TempDir temp;
    testsupport::writeFile(temp.path() / "libnotalibrary.so", "plain text");
    // Every symbol is bound at load time, so a library with an unresolved one does not load.
    const std::pair<std::string, const char*> cases[] = {
        {(temp.path() / "hlufixture_absent.so").string(), "hlufixture_absent.so"},
        {(temp.path() / "libnotalibrary.so").string(), "libnotalibrary.so"},
        {fixtureDir + "/hlufixture_unresolved.so", "hlufixture_defined_nowhere"},
        {"", ""},
    };
    for (const auto& [library, mentioned] : cases) {
        int status = 0;
        EXPECT_EQ(nullptr, hluLoadLibrary(library.c_str(), &status)) << library;
        EXPECT_NE(0, status) << library;
        EXPECT_TRUE(lastErrorMentions(mentioned)) << hluLastLibraryError();
        EXPECT_STRNE("", hluLastLibraryError());
    }
    EXPECT_EQ(nullptr, hluLoadLibrary(nullptr, nullptr));

    // Each thread keeps its own last text.
    EXPECT_EQ(nullptr, hluLoadLibrary("/nonexistent/main-thread.so", nullptr));
    std::string otherBefore, otherAfter;
    std::thread([&] {
        otherBefore = hluLastLibraryError();
        hluLoadLibrary("/nonexistent/other-thread.so", nullptr);
        otherAfter = hluLastLibraryError();
    }).join();
    EXPECT_EQ("", otherBefore);
    EXPECT_NE(std::string::npos, otherAfter.find("other-thread.so")) << otherAfter;
    EXPECT_TRUE(lastErrorMentions("main-thread.so")) << hluLastLibraryError();
}
