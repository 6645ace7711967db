// Type elements: the value text of every type word, scalar and array, the array attributes,
// any-type keys, undefined keys, run-time defaults by level, and the validator of a key that no
// later level defines. That a parser reads the text back whole is the saving tests' round trip.
#include "WritingFixture.hpp"

#include <limits>

namespace writingtest {
namespace {

template <class T, unsigned Min = 1, unsigned Max = 1>
void as(WNode& key) {
    key.declare<T>(Min, Max);
}

// A type element at depth 1 with its values at depth 2; `open` is the tag's inside.
std::string element(const std::string& open, std::initializer_list<std::string> values) {
    std::string text = "    <" + open + ">\n";
    for (const auto& value : values) {
        text += "        <value>" + value + "</value>\n";
    }
    return text + "    </" + open.substr(0, open.find(' ')) + ">\n";
}

TEST_F(WritingTest, EveryTypeWordWritesItsValueTextScalarAndArray) {
    using LL = long long;
    using ULL = unsigned long long;
    struct Case {
        void (*declare)(WNode&);
        boost::any value;
        std::string element;
    };
    const Case cases[] = {
        {as<std::wstring>, std::wstring(L"a]]>b \u00e9\u20ac <&>'\""),
         element("string", {"<![CDATA[a]]]]><![CDATA[>b \xc3\xa9\xe2\x82\xac <&>'\"]]>"})},
        {as<std::wstring, 0, 0>, std::vector<std::wstring>{L"", L"x]]>]]>"},
         element("string minArraySize=\"0\" maxArraySize=\"0\"",
                 {"<![CDATA[]]>", "<![CDATA[x]]]]><![CDATA[>]]]]><![CDATA[>]]>"})},
        {as<bool>, true, element("bool", {"1"})},
        {as<bool, 0, 0>, std::vector<bool>{true, false},
         element("bool minArraySize=\"0\" maxArraySize=\"0\"", {"1", "0"})},
        {as<signed char>, static_cast<signed char>(-5), element("int8", {"-5"})},
        {as<signed char, 2, 5>, std::vector<signed char>{-128, 65},
         element("int8 minArraySize=\"2\" maxArraySize=\"5\"", {"-128", "65"})},
        {as<unsigned char>, static_cast<unsigned char>(200), element("uint8", {"200"})},
        {as<short>, short(-32768), element("int16", {"-32768"})},
        {as<unsigned short>, static_cast<unsigned short>(65535), element("uint16", {"65535"})},
        {as<int, 1, 3>, std::vector<int>{-7, 8}, element("int32 maxArraySize=\"3\"", {"-7", "8"})},
        {as<unsigned>, 4000000000u, element("uint32", {"4000000000"})},
        {as<LL>, std::numeric_limits<LL>::min(), element("int64", {"-9223372036854775808"})},
        {as<ULL>, std::numeric_limits<ULL>::max(), element("uint64", {"18446744073709551615"})},
        {as<float>, 0.1f, element("float", {"0.10000000149"})},
        {as<float, 0, 0>, std::vector<float>{1.0f / 3, -2.25f},
         element("float minArraySize=\"0\" maxArraySize=\"0\"", {"0.33333334327", "-2.25"})},
        {as<double>, 0.1, element("double", {"0.1"})},
        {as<double, 0, 0>, std::vector<double>{1e300, 1.0 / 3},
         element("double minArraySize=\"0\" maxArraySize=\"0\"", {"1e+300", "0.3333333333333333"})},
        // A stored value of another type is written as the key's type.
        {as<double>, 3, element("double", {"3"})},
        {as<unsigned char, 0, 0>, std::vector<int>{7},
         element("uint8 minArraySize=\"0\" maxArraySize=\"0\"", {"7"})},
    };
    for (const Case& c : cases) {
        auto key = makeWNode("k", true);
        c.declare(*key);
        key->put("user", c.value);
        EXPECT_EQ(documentStart(R"(<key name="k")") + c.element + "</key>\n", written(*key, "user"))
            << c.element;
    }
}

TEST_F(WritingTest, AnyTypeKeysWriteTheTypeOfTheValueAtTheLevel) {
    auto group = makeWNode("g", false);
    makeWNode("list", true, group)->declareAnyType(0, 0).put("user", std::vector<int>{1, 2});
    makeWNode("text", true, group)->declareAnyType(1, 1).put("user", std::wstring(L"t"));
    makeWNode("unset", true, group)->declareAnyType(1, 1).put("factory", 5.5);
    EXPECT_EQ(documentStart(R"(<settings name="g")") + R"(    <key name="list" anytype="true">
        <int32 minArraySize="0" maxArraySize="0">
            <value>1</value>
            <value>2</value>
        </int32>
    </key>
    <key name="text" anytype="true">
        <string>
            <value><![CDATA[t]]></value>
        </string>
    </key>
    <key name="unset" anytype="true">
    </key>
</settings>
)",
              written(*group, "user"));
    EXPECT_NE(std::string::npos, written(*group, "factory")
                                     .find("\"unset\" anytype=\"true\">\n        <double>\n"
                                           "            <value>5.5</value>\n"));
}

TEST_F(WritingTest, UndefAndRunTimeDefaultsByTheLevelTheyBelongTo) {
    auto group = makeWNode("g", false);
    makeWNode("bare", true, group)->declare<int>();
    makeWNode("fd", true, group)->declare<int>().runTimeDefault("fnF", "factory");
    makeWNode("ud", true, group)
        ->declare<int>()
        .runTimeDefault("fnU", "user")
        .put("factory", 3)
        .put("user", 4);
    const std::string bare = R"(    <key name="bare">
        <int32 undef="true">
        </int32>
    </key>
)";
    EXPECT_EQ(documentStart(R"(<settings name="g")") + bare + R"(    <key name="fd">
        <int32>
        </int32>
    </key>
    <key name="ud">
        <int32>
            <runtimedefault type='JAVA' packagename='pkg' functionname='fnU'/>
        </int32>
    </key>
</settings>
)",
              written(*group, "user"));
    EXPECT_EQ(documentStart(R"(<settings name="g")") + bare + R"(    <key name="fd">
        <int32>
            <runtimedefault type='JAVA' packagename='pkg' functionname='fnF'/>
        </int32>
    </key>
    <key name="ud">
        <int32>
            <value>3</value>
        </int32>
    </key>
</settings>
)",
              written(*group, "factory"));
}

TEST_F(WritingTest, KeyValidatorGoesWithTheLevelThatAloneDefinesTheKey) {
    auto group = makeWNode("g", false);
    auto key = makeWNode("v", true, group);
    key->declare<int>().validate(settings::core::JValidator("jv", "check")).put("user", 1);
    const std::string validator =
        "        <validationfunc type='JAVA' packagename='jv' functionname='check'/>\n";
    EXPECT_EQ(documentStart(R"(<settings name="g")") + "    <key name=\"v\">\n" + validator +
                  "        <int32>\n            <value>1</value>\n        </int32>\n"
                  "    </key>\n</settings>\n",
              written(*group, "user"));
    EXPECT_EQ(std::string::npos, written(*group, "session").find(validator));  // "user" has it

    auto sessionOnly = makeWNode("s", true, group);
    sessionOnly->declare<int>().validate(settings::core::CValidator("lib", "s")).put("session", 5);
    EXPECT_NE(std::string::npos,
              written(*group, "session")
                  .find("    <key name=\"s\">\n        <validationfunc type='C' packagename='lib' "
                        "functionname='s'/>\n        <int32>\n"));

    key->put("factory", 2);
    EXPECT_EQ(std::string::npos, written(*group, "user").find(validator));
    EXPECT_EQ(std::string::npos, written(*group, "session").find(validator));
    EXPECT_EQ(std::string::npos, written(*group, "").find(validator));
    EXPECT_NE(std::string::npos, written(*group, "factory").find(validator));
}

}  // namespace
}  // namespace writingtest
