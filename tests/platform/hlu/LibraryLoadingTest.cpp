#include <platform/hlu/hlu.h>

#include <support/TempDir.hpp>

#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace {

const std::string fixtureDir = SETTINGSCORE_TEST_FIXTURE_DIR;

bool lastErrorMentions(const std::string& part) {
    return std::string(hluLastLibraryError()).find(part) != std::string::npos;
}

}  // namespace

TEST(LibraryLoading, LoadsOnceFindsSymbolsAndReportsFailuresPerThread) {
    const std::string fixture = fixtureDir + "/hlufixture_library.so";
    int status = -1;
    void* handle = hluLoadLibrary(fixture.c_str(), &status);
    ASSERT_NE(nullptr, handle) << hluLastLibraryError();
    EXPECT_EQ(0, status);
    // Loading again gives the same library with its state, not a second copy.
    auto answer = reinterpret_cast<int (*)()>(hluFindSymbolInLibrary(handle, "hlufixture_answer"));
    ASSERT_NE(nullptr, answer);
    const int first = answer();
    EXPECT_EQ(handle, hluLoadLibrary(fixture.c_str(), &status));
    EXPECT_EQ(first + 1, answer());
    // The fixture formats through the platform library already in the process.
    auto format = reinterpret_cast<int (*)(double, char*, size_t)>(
        hluFindSymbolInLibrary(handle, "hlufixture_format"));
    char buffer[64];
    ASSERT_NE(nullptr, format);
    EXPECT_EQ(3, format(0.1, buffer, sizeof buffer));
    EXPECT_STREQ("0.1", buffer);
    EXPECT_EQ(nullptr, hluFindSymbolInLibrary(handle, "hlufixture_no_such_function"));
    EXPECT_TRUE(lastErrorMentions("hlufixture_no_such_function")) << hluLastLibraryError();
    // A null handle must not turn into a search of the whole process.
    EXPECT_EQ(nullptr, hluFindSymbolInLibrary(nullptr, "hluLoadLibrary"));

    testsupport::TempDir temp;
    testsupport::writeFile(temp.path() / "libnotalibrary.so", "plain text");
    // Every symbol is bound at load time, so a library with an unresolved one does not load.
    const std::pair<std::string, const char*> failures[] = {
        {(temp.path() / "absent.so").string(), "absent.so"},
        {(temp.path() / "libnotalibrary.so").string(), "libnotalibrary.so"},
        {fixtureDir + "/hlufixture_unresolved.so", "hlufixture_defined_nowhere"},
    };
    for (const auto& [library, mentioned] : failures) {
        EXPECT_EQ(nullptr, hluLoadLibrary(library.c_str(), &status)) << library;
        EXPECT_NE(0, status) << library;
        EXPECT_TRUE(lastErrorMentions(mentioned)) << hluLastLibraryError();
    }
    std::string other = "unset";  // each thread keeps its own last text
    std::thread([&] { other = hluLastLibraryError(); }).join();
    EXPECT_EQ("", other);
}
