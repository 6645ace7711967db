// The numeric cells: integer ranges, floating to integer with truncation, double to float,
// and bool from numbers.
#include "ValueSamples.hpp"

#include <gtest/gtest.h>

#include <boost/numeric/conversion/cast.hpp>

#include <cmath>
#include <limits>

namespace ba = treestore::boostany;
using boost::numeric::bad_numeric_cast;
using boost::numeric::negative_overflow;
using boost::numeric::positive_overflow;
using boostanytest::forEachType;

namespace {

template <class T, class S>
T read(S source) {
    return ba::get<T>(source, true);
}

using IntegerTypes = boostanytest::TypeList<signed char, unsigned char, short, unsigned short, int,
                                            unsigned int, long long, unsigned long long>;

// Each integer target takes its min and max from the widest integers and refuses one beyond;
// no floating NaN fits any of them.
TEST(BoostAnyNumeric, IntegerTargetLimits) {
    forEachType(IntegerTypes{}, [](auto tag) {
        using T = typename decltype(tag)::type;
        using L = std::numeric_limits<T>;
        SCOPED_TRACE(ba::typeNameOf(T()));
        EXPECT_EQ(read<T>(static_cast<long long>(L::min())), L::min());
        EXPECT_EQ(read<T>(static_cast<unsigned long long>(L::max())), L::max());
        if constexpr (!L::is_signed) {
            EXPECT_THROW(read<T>(static_cast<signed char>(-1)), negative_overflow);
        } else if constexpr (sizeof(T) < sizeof(long long)) {
            EXPECT_THROW(read<T>(static_cast<long long>(L::min()) - 1), negative_overflow);
        }
        if constexpr (L::max() < std::numeric_limits<unsigned long long>::max()) {
            EXPECT_THROW(read<T>(static_cast<unsigned long long>(L::max()) + 1), positive_overflow);
        }
        EXPECT_THROW(read<T>(std::nan("")), bad_numeric_cast);
        EXPECT_THROW(read<std::vector<T>>(std::vector<float>{1.0f, NAN}), bad_numeric_cast);
    });
}

// (minimum - 1, maximum + 1) is accepted and truncated toward zero, exactly at the ends.
TEST(BoostAnyNumeric, IntegerTargetsFromFloating) {
    forEachType(boostanytest::TypeList<float, double>{}, [](auto tag) {
        using F = typename decltype(tag)::type;
        SCOPED_TRACE(ba::typeNameOf(F()));
        EXPECT_THROW(read<signed char>(F(-129)), negative_overflow);
        EXPECT_EQ(read<signed char>(F(-128.99)), -128);
        EXPECT_EQ(read<signed char>(F(-2.7)), -2);
        EXPECT_EQ(read<signed char>(F(127.99)), 127);
        EXPECT_THROW(read<signed char>(F(128)), positive_overflow);
        EXPECT_EQ(read<unsigned int>(F(-0.5)), 0u);
        EXPECT_THROW(read<unsigned char>(F(-1)), negative_overflow);
        EXPECT_THROW(read<unsigned short>(F(65536)), positive_overflow);

        // At the wide ends the minimum is an exact power of two that the target holds.
        const F int64Min = F(-9223372036854775808.0);
        EXPECT_EQ(read<int>(F(-2147483648.0)), std::numeric_limits<int>::min());
        EXPECT_EQ(read<long long>(int64Min), std::numeric_limits<long long>::min());
        EXPECT_THROW(read<long long>(std::nextafter(int64Min, F(-1e30))), negative_overflow);
        EXPECT_THROW(read<long long>(-int64Min), positive_overflow);
        const F belowTwo64 = std::nextafter(F(18446744073709551616.0), F(0));
        EXPECT_EQ(read<unsigned long long>(belowTwo64),
                  static_cast<unsigned long long>(belowTwo64));
        EXPECT_THROW(read<unsigned long long>(F(18446744073709551616.0)), positive_overflow);
        EXPECT_THROW(read<int>(-std::numeric_limits<F>::infinity()), negative_overflow);
    });
    EXPECT_EQ(read<int>(-2147483648.9), std::numeric_limits<int>::min());
    EXPECT_THROW(read<int>(-2147483649.0), negative_overflow);
}

TEST(BoostAnyNumeric, FloatingAndBoolTargets) {
    EXPECT_THROW(read<float>(1e39), positive_overflow);
    EXPECT_THROW(read<float>(-1e39), negative_overflow);
    EXPECT_THROW(read<float>(HUGE_VAL), positive_overflow);
    EXPECT_EQ(read<float>(3.4028234663852886e38), std::numeric_limits<float>::max());
    EXPECT_TRUE(std::isnan(read<float>(std::nan(""))));
    EXPECT_EQ(read<float>(16777217), 16777216.0f);  // plain, rounding conversion

    EXPECT_THROW(read<bool>(2ULL), positive_overflow);
    EXPECT_THROW(read<bool>(static_cast<signed char>(-1)), negative_overflow);
    EXPECT_TRUE(read<bool>(static_cast<unsigned short>(1)));
    EXPECT_FALSE(read<bool>(0.5));
    EXPECT_FALSE(read<bool>(-0.9f));
    EXPECT_TRUE(read<bool>(1.9));
    EXPECT_THROW(read<bool>(-1.0), negative_overflow);
    EXPECT_THROW(read<bool>(2.0f), positive_overflow);
    EXPECT_EQ(read<std::vector<float>>(std::vector<bool>{true, false}),
              (std::vector<float>{1.0f, 0.0f}));
}

}  // namespace
