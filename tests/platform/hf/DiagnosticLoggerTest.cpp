#include <platform/hf/log/DiagnosticLogger.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

namespace {

// Sends std::clog, where the default sink writes, to a string for the life of the capture.
class ClogCapture {
public:
    ClogCapture() { hf::log::use_default_sink(true); }
    ~ClogCapture() {
        hf::log::use_default_sink(false);
        std::clog.rdbuf(saved_);
    }
    std::string text() const { return text_.str(); }

private:
    std::ostringstream text_;
    std::streambuf* saved_ = std::clog.rdbuf(text_.rdbuf());
};

}  // namespace

TEST(DiagnosticLogger, ChannelsAreOffUntilEnabledAndFilterBySeverity) {
    const hf::log::basic_diagnostic_logger<char> a("test::a");
    const hf::log::basic_diagnostic_logger<char> b("test::b");
    const hf::log::basic_diagnostic_logger<wchar_t> wide("test::wide");
    ClogCapture clog;
    a.log(0, "never written");

    hf::log::enable_channel("test::a", 2);
    hf::log::enable_channel("test::wide", 1);
    EXPECT_TRUE(a.is_enabled(2));
    EXPECT_FALSE(a.is_enabled(3));
    EXPECT_FALSE(b.is_enabled(1));
    a.log(1, "SaveObj : p Level : user");
    a.log(3, "too detailed");
    b.log(1, "other channel is off");
    const hf::log::basic_diagnostic_logger<char> copy = a;  // writes to the same channel
    copy.log(-5, "from the copy");
    wide.log(1, L"pr\u00E9f \U0001F600");  // arrives as UTF-8
    wide.log(2, L"filtered");
    hf::log::enable_channel("test::a", 0);  // a new maximum replaces the old one
    a.log(1, "after lowering");
    hf::log::disable_channel("test::a");
    a.log(0, "after disabling");
    EXPECT_EQ(
        "[test::a:1] SaveObj : p Level : user\n[test::a:-5] from the copy\n"
        "[test::wide:1] pr\xC3\xA9"
        "f \xF0\x9F\x98\x80\n",
        clog.text());

    hf::log::disable_channel("test::wide");
}

// Reads the variable the way a fresh process does and answers the number of wrong answers.
static int probeEnvironment(const char* value) {
    ::setenv("HF_DIAGNOSTIC_CHANNELS", value, 1);
    using Logger = hf::log::basic_diagnostic_logger<char>;
    const Logger core("settings::core"), all("all"), bad("bad"), neg("neg"),
        sub("settings::core::sub"), other("other");
    int wrong = !core.is_enabled(1) + core.is_enabled(2);
    wrong += !all.is_enabled(1000000) + !all.is_enabled(-1) + bad.is_enabled(0);
    wrong += !neg.is_enabled(-2) + neg.is_enabled(-1);
    wrong += !sub.is_enabled(0) + sub.is_enabled(1) + other.is_enabled(0);
    // Read once: a later change of the variable has no effect; the host's calls do.
    ::setenv("HF_DIAGNOSTIC_CHANNELS", "other", 1);
    wrong += other.is_enabled(0);
    hf::log::disable_channel("settings::core");
    return wrong + core.is_enabled(1);
}

// The variable is read once per process, so the probe runs in a freshly started copy of this
// program (the "threadsafe" death-test style re-executes it).
TEST(DiagnosticLoggerEnvironment, VariableEnablesChannelsWithOptionalMaximum) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::_Exit(probeEnvironment(
                    " settings::core=1 , all ,bad=x,=3,neg=-2,settings::core::sub=0")),
                ::testing::ExitedWithCode(0), "");
}
