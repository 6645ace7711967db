#include <platform/hlu/hlu.h>

#include "CommaLocale.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <tuple>

namespace {

constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double qnan = std::numeric_limits<double>::quiet_NaN();

std::string format(double value) {
    char buffer[64];
    const int length = hluFormatG(hluFpcContext(), buffer, sizeof buffer, value);
    EXPECT_EQ(length, static_cast<int>(std::strlen(buffer)));
    return buffer;
}

double fromBits(std::uint64_t bits) {
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// Every bit equal; for NaN the kind and the sign.
bool same(double a, double b) {
    return std::isnan(a) ? std::isnan(b) && std::signbit(a) == std::signbit(b)
                         : std::memcmp(&a, &b, sizeof a) == 0;
}

// Writes `value` with a context of its own and reads it back; true when every bit survives.
bool roundTrips(double value) {
    char buffer[64];
    HluFpcContext context;
    hluInitializeFpcContext(&context, hluMemoryContext());
    const int length = hluFormatG(&context, buffer, sizeof buffer, value);
    hluClearFpcContext(&context);
    char* end = nullptr;
    const double back = hluStrtod(hluFpcContext(), buffer, &end, 0);
    return length > 0 && end == buffer + length && same(value, back);
}

}  // namespace

TEST(NumberText, WritesTheShortestFormThatReadsBackExactly) {
    std::string written;
    for (double value : {0.1, 1e300, -0.0, 123456789012.0, inf, -inf, qnan, 5e-324, DBL_MAX}) {
        written += format(value) + " ";
    }
    EXPECT_EQ("0.1 1e+300 -0 123456789012 inf -inf nan 5e-324 1.7976931348623157e+308 ", written);

    // Random bit patterns (every class of double), subnormals, and hard cases near the edges.
    std::mt19937_64 random(2041);
    for (int i = 0; i < 200000; ++i) {
        const double value = fromBits(random());
        ASSERT_TRUE(roundTrips(value)) << format(value);
    }
    for (std::uint64_t bits = 1; bits < (std::uint64_t{1} << 52); bits = bits * 3 + 1) {
        ASSERT_TRUE(roundTrips(fromBits(bits))) << format(fromBits(bits));
    }
    for (double value : {DBL_MIN, 1.0 + DBL_EPSILON, 9007199254740993.0, 0.1 + 0.2, 1e23,
                         2.2250738585072009e-308, -qnan}) {
        EXPECT_TRUE(roundTrips(value)) << format(value);
    }

    // Too small a buffer is refused without writing past it.
    char buffer[8];
    std::memset(buffer, 'X', sizeof buffer);
    EXPECT_EQ(-1, hluFormatG(nullptr, buffer, 4, 0.125));  // "0.125" needs 6 bytes
    EXPECT_TRUE(buffer[0] == '\0' && buffer[4] == 'X');
    EXPECT_EQ(5, hluFormatG(nullptr, buffer, 6, 0.125));
}

// Like strtod: the longest prefix that is a number, with ERANGE for values out of range.
TEST(NumberText, ReadsTheLongestNumberPrefix) {
    const std::string huge = "1" + std::string(400, '0');
    const std::string tiny = "0." + std::string(400, '0') + "1";
    // Plain prefixes; nothing to read (the end stays at the very start); infinity and NaN in any
    // case, with or without a payload; out of range, also where the digits alone do not show it.
    const std::tuple<const char*, double, std::ptrdiff_t, int> cases[] = {
        {"1.5abc", 1.5, 3, 0},
        {"  \t\n+2.5e1x", 25.0, 10, 0},
        {".5", 0.5, 2, 0},
        {"1e+", 1.0, 1, 0},
        {"1E-2", 0.01, 4, 0},
        {"0x1p3", 0.0, 1, 0},
        {"1,5", 1.0, 1, 0},
        {"", 0.0, 0, 0},
        {"   ", 0.0, 0, 0},
        {"+-1", 0.0, 0, 0},
        {"in", 0.0, 0, 0},
        {"-Infinity", -inf, 9, 0},
        {"infinit", inf, 3, 0},
        {"-nan", -qnan, 4, 0},
        {"NaN(abc_9)x", qnan, 10, 0},
        {"nan(abc", qnan, 3, 0},
        {"-1e400", -HUGE_VAL, 6, ERANGE},
        {"0.001e312", HUGE_VAL, 9, ERANGE},
        {"-1e-400", -0.0, 7, ERANGE},
        {"1e99999999999999999999 rest", HUGE_VAL, 22, ERANGE},
        {huge.c_str(), HUGE_VAL, 401, ERANGE},
        {tiny.c_str(), 0.0, 403, ERANGE},
    };
    for (const auto& [text, expected, consumed, error] : cases) {
        char* end = nullptr;
        errno = 0;
        const double value = hluStrtod(hluFpcContext(), text, &end, 0);
        EXPECT_TRUE(same(expected, value)) << text << " read as " << value;
        EXPECT_EQ(consumed, end - text) << text;
        EXPECT_EQ(error, errno) << text;
    }
    EXPECT_EQ(4.25, hluStrtod(nullptr, "4.25", nullptr, 0));  // as the value reader calls it
}

TEST(NumberText, CommaLocaleChangesNothing) {
    hlutest::CommaLocale comma;
    if (!comma.active()) {
        GTEST_SKIP() << "no locale with a decimal comma could be installed or built";
    }
    EXPECT_EQ("-0.001 1.5e-300", format(-0.001) + " " + format(1.5e-300));
    EXPECT_EQ(2.75, hluStrtod(nullptr, "2.75", nullptr, 0));
    char* end = nullptr;
    EXPECT_EQ(1.0, hluStrtod(nullptr, "1,5", &end, 0));
    EXPECT_STREQ(",5", end);
}
