// Values written at "user" come back from the file after a restart (a new root over the same
// folders, or another process), for every type word, scalar and array; "session" values and
// changes made with saving off never reach the disk.
#include "SavingFixture.hpp"

#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <sys/wait.h>
#include <unistd.h>

#include <limits>

namespace savingtest {
namespace {

struct Sample {
    const char* word;
    boost::any scalar;
    boost::any array;
};

std::vector<Sample> samples() {
    return {
        {"int8", static_cast<signed char>(-7), std::vector<signed char>{-128, 0, 127}},
        {"uint8", static_cast<unsigned char>(200), std::vector<unsigned char>{0, 255}},
        {"int16", static_cast<short>(-30000), std::vector<short>{1, -2}},
        {"uint16", static_cast<unsigned short>(65000), std::vector<unsigned short>{7}},
        {"int32", -2000000000, std::vector<int>{1, 2, 3}},
        {"uint32", 4000000000u, std::vector<unsigned int>{}},
        {"int64", std::numeric_limits<long long>::min(), std::vector<long long>{1LL << 40}},
        {"uint64", std::numeric_limits<unsigned long long>::max(),
         std::vector<unsigned long long>{5}},
        {"float", 0.1f, std::vector<float>{1.5f, -3.25e-3f}},
        {"double", 0.1, std::vector<double>{1e300, -2.5}},
        {"bool", true, std::vector<bool>{true, false, true}},
        {"string", std::wstring(L"caf\u00e9 ]]> <tag> & \u6f22"),
         std::vector<std::wstring>{L"one", L"", L"three"}},
    };
}

// A factory file declaring a scalar key "<word>" and an array key "<word>s" for every word.
std::string factoryFile() {
    std::string text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<settings name=\"p\" visible=\"true\" xmlns=\"urn:lindqvare.tolvan.settings\" "
        "xsi:schemaLocation=\"urn:lindqvare.tolvan.settings settings.xsd\" "
        "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">\n"
        "<settings name=\"g\" visible=\"true\">\n";
    for (const auto& sample : samples()) {
        const std::string word = sample.word;
        text +=
            "<key name=\"" + word + "\" visible=\"true\"><" + word + " undef=\"true\"/></key>\n";
        text += "<key name=\"" + word + "s\" visible=\"true\"><" + word +
                " minArraySize=\"0\" maxArraySize=\"0\" undef=\"true\"/></key>\n";
    }
    return text + "</settings>\n</settings>\n";
}

class PersistenceTest : public SavingTest {
protected:
    PersistenceTest() {
        testsupport::writeFile(dir_.path() / "factory" / "p" / "p.settings", factoryFile());
    }

    // Every sample read back through a fresh root equals what was written.
    void expectAllBack() {
        auto group = root()->getNodeByPath("p.g");
        ASSERT_TRUE(group);
        for (const auto& sample : samples()) {
            const std::string word = sample.word;
            EXPECT_TRUE(treestore::boostany::isEqual(sample.scalar, group->getAny(word, "user")))
                << word;
            EXPECT_TRUE(
                treestore::boostany::isEqual(sample.array, group->getAny(word + "s", "user")))
                << word << "s";
        }
    }
};

TEST_F(PersistenceTest, UserValuesOfEveryTypeSurviveARestartAndReachAnotherProcess) {
    auto group = root()->getNodeByPath("p.g");
    ASSERT_TRUE(group);
    for (const auto& sample : samples()) {
        group->setAny(sample.word, sample.scalar, "user");
        group->setAny(std::string(sample.word) + "s", sample.array, "user");
    }
    group->setAny("int32", 5, "session");  // memory only

    sc::TSettings::reset(AnyInstanceID);
    expectAllBack();
    EXPECT_TRUE(root()->getNodeByPath("p.g")->getAny("int32", "session").empty());

    const pid_t child = ::fork();
    if (child == 0) {
        sc::TSettings::reset(AnyInstanceID);
        expectAllBack();
        ::_exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(child, ::waitpid(child, &status, 0));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the second process disagreed";
}

TEST_F(PersistenceTest, SavingOffAndSessionValuesLeaveTheDiskAlone) {
    auto group = root()->getNodeByPath("p.g");
    group->setAny("int32", 1, "user");
    const std::string saved = testsupport::readFile(userFile());
    group->setAny("int32", 2, "session");
    EXPECT_EQ(saved, testsupport::readFile(userFile()));

    sc::turnOffSettingsSaving();
    group->setAny("int32", 3, "user");
    EXPECT_EQ(3, boost::any_cast<int>(group->getAny("int32", "user")));
    sc::TSettings::reset(AnyInstanceID);
    EXPECT_EQ(1, boost::any_cast<int>(root()->getNodeByPath("p.g")->getAny("int32", "user")));
}

}  // namespace
}  // namespace savingtest
