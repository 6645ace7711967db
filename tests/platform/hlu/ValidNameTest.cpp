#include <platform/hlu/tv_is_valid_name.h>

#include <gtest/gtest.h>

#include <string>

TEST(ValidName, LetterThenLettersDigitsUnderscoresUpTo63Characters) {
    for (const char* name : {"a", "Z", "fontSize", "x_1", "a_", "A1b2C3", "settings_core_2"}) {
        EXPECT_EQ(1, tv_is_valid_name(name)) << name;
    }
    const std::string longest = "n" + std::string(61, 'a') + "9";
    ASSERT_EQ(63u, longest.size());
    EXPECT_EQ(1, tv_is_valid_name(longest.c_str()));
    EXPECT_EQ(0, tv_is_valid_name((longest + "x").c_str()));
    EXPECT_EQ(0, tv_is_valid_name((longest + std::string(1000, 'x')).c_str()));

    for (const char* name : {"", "1abc", "_abc", "9", "a-b", "a b", "a.b", "a:b", " a", "a ",
                             "\xC3\xA9t\xC3\xA9", "a\xC3\xA9", "a$", "\t"}) {
        EXPECT_EQ(0, tv_is_valid_name(name)) << '"' << name << '"';
    }
    EXPECT_EQ(0, tv_is_valid_name(nullptr));
}
