// Type elements: the value text of every type word, scalar and array, read back whole by the
// parser at every level; any-type and undefined keys, run-time defaults by level, and the
// validator of a key that no later level defines.
#include "WritingFixture.hpp"

#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/xml/detail/NodeBuilder.hpp>

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

TEST_F(WritingTest, EveryTypeWordWritesItsValueTextAndReadsBackAtEveryLevelAndDepth) {
    using LL = long long;
    using ULL = unsigned long long;
    using US = unsigned short;
    const std::string unbounded = " minArraySize=\"0\" maxArraySize=\"0\"";
    struct Case {
        void (*declare)(WNode&);
        boost::any value;
        std::string element;
        boost::any readBack = {};  // when not the value itself
    };
    const Case cases[] = {
        {as<std::wstring>, std::wstring(L"a]]>b \u00e9\u20ac \U0001F600 <&>'\""),
         element("string",
                 {"<![CDATA[a]]]]><![CDATA[>b \xc3\xa9\xe2\x82\xac \xf0\x9f\x98\x80 <&>'\"]]>"})},
        {as<std::wstring, 0, 0>, std::vector<std::wstring>{L"", L"x]]>]]>"},
         element("string" + unbounded,
                 {"<![CDATA[]]>", "<![CDATA[x]]]]><![CDATA[>]]]]><![CDATA[>]]>"})},
        {as<bool>, true, element("bool", {"1"})},
        {as<bool, 0, 0>, std::vector<bool>{true, false}, element("bool" + unbounded, {"1", "0"})},
        {as<signed char>, static_cast<signed char>(-5), element("int8", {"-5"})},
        {as<signed char, 2, 5>, std::vector<signed char>{-128, 65},
         element("int8 minArraySize=\"2\" maxArraySize=\"5\"", {"-128", "65"})},
        {as<unsigned char>, static_cast<unsigned char>(200), element("uint8", {"200"})},
        {as<short>, short(-32768), element("int16", {"-32768"})},
        {as<short, 0, 0>, std::vector<short>{32767}, element("int16" + unbounded, {"32767"})},
        {as<US>, US(65535), element("uint16", {"65535"})},
        {as<US, 0, 0>, std::vector<US>{0, 1}, element("uint16" + unbounded, {"0", "1"})},
        {as<int, 1, 3>, std::vector<int>{-7, 8}, element("int32 maxArraySize=\"3\"", {"-7", "8"})},
        {as<int>, -2147483647 - 1, element("int32", {"-2147483648"})},
        {as<unsigned>, 4000000000u, element("uint32", {"4000000000"})},
        {as<unsigned, 0, 0>, std::vector<unsigned>{}, element("uint32" + unbounded, {})},
        {as<LL>, std::numeric_limits<LL>::min(), element("int64", {"-9223372036854775808"})},
        {as<LL, 0, 0>, std::vector<LL>{1LL << 40}, element("int64" + unbounded, {"1099511627776"})},
        {as<ULL>, std::numeric_limits<ULL>::max(), element("uint64", {"18446744073709551615"})},
        {as<ULL, 0, 0>, std::vector<ULL>{5}, element("uint64" + unbounded, {"5"})},
        {as<float>, 0.1f, element("float", {"0.10000000149"})},
        {as<float, 0, 0>, std::vector<float>{1.0f / 3, -2.25f},
         element("float" + unbounded, {"0.33333334327", "-2.25"})},
        {as<double>, 0.1, element("double", {"0.1"})},
        {as<double, 0, 0>, std::vector<double>{1e300, 1.0 / 3},
         element("double" + unbounded, {"1e+300", "0.3333333333333333"})},
        // A stored value of another type is written as the key's type.
        {as<double>, 3, element("double", {"3"}), 3.0},
        {as<unsigned char, 0, 0>, std::vector<int>{7}, element("uint8" + unbounded, {"7"}),
         std::vector<unsigned char>{7}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.element);
        auto key = makeWNode("k", true);
        c.declare(*key);
        key->put("user", c.value);
        EXPECT_EQ(documentStart(R"(<key name="k")") + c.element + "</key>\n",
                  written(*key, "user"));
        // Written from a product at any level, at depth 1 and 3, the file reads back equal.
        for (const std::string level : {"factory", "user", "session"}) {
            const auto product = makeWNode("p", false);
            const auto group = makeWNode("g", false, makeWNode("f", false, product));
            for (const auto& parent : {product, group}) {
                auto nested = makeWNode("k", true, parent);
                c.declare(*nested);
                nested->put(level, c.value);
            }
            const auto back = parse(written(*product, level));
            for (const char* path : {"k", "f.g.k"}) {
                const auto value = detail::NodeBuilder::getStoredValue(
                    *SettingsImpl::implOf(back->getNodeByPath(path)), "user");
                EXPECT_TRUE(value && ba::isEqual(*value, c.readBack.empty() ? c.value : c.readBack))
                    << level << " " << path;
            }
        }
    }
}

TEST_F(WritingTest, AnyTypeUndefRunTimeDefaultsAndValidatorsAreWrittenByLevel) {
    auto group = makeWNode("g", false);
    makeWNode("bare", true, group)->declare<int>();
    makeWNode("fd", true, group)->declare<int>().runTimeDefault("fnF", "factory");
    makeWNode("list", true, group)->declareAnyType(0, 0).put("user", std::vector<int>{1, 2});
    auto ud = makeWNode("ud", true, group);
    ud->declare<int>().runTimeDefault("fnU", "user").put("factory", 3).put("user", 4);
    makeWNode("unset", true, group)->declareAnyType(1, 1).put("factory", 5.5);
    auto key = makeWNode("v", true, group);
    key->declare<int>().validate(sc::JValidator("jv", "check")).put("user", 1);
    EXPECT_EQ(documentStart(R"(<settings name="g")") + R"(    <key name="bare">
        <int32 undef="true">
        </int32>
    </key>
    <key name="fd">
        <int32>
        </int32>
    </key>
    <key name="list" anytype="true">
        <int32 minArraySize="0" maxArraySize="0">
            <value>1</value>
            <value>2</value>
        </int32>
    </key>
    <key name="ud">
        <int32>
            <runtimedefault type='JAVA' packagename='pkg' functionname='fnU'/>
        </int32>
    </key>
    <key name="unset" anytype="true">
    </key>
    <key name="v">
        <validationfunc type='JAVA' packagename='jv' functionname='check'/>
        <int32>
            <value>1</value>
        </int32>
    </key>
</settings>
)",
              written(*group, "user"));
    const std::string factory = written(*group, "factory");
    for (const char* expected :
         {"\"fd\">\n        <int32>\n            <runtimedefault type='JAVA' packagename='pkg' "
          "functionname='fnF'/>\n",
          "\"ud\">\n        <int32>\n            <value>3</value>\n",
          "\"unset\" anytype=\"true\">\n        <double>\n            <value>5.5</value>\n"}) {
        EXPECT_NE(std::string::npos, factory.find(expected)) << expected;
    }
    // No level: the strongest stored value; a run-time default belongs to no level then.
    EXPECT_NE(std::string::npos, written(*group, "")
                                     .find("\"ud\">\n        <int32>\n"
                                           "            <value>4</value>\n"));
    EXPECT_EQ(std::string::npos, written(*group, "").find("runtimedefault"));
    ud->put("session", 6);
    EXPECT_NE(std::string::npos, written(*group, "").find("<value>6</value>"));
    for (const char* level : {"User", "workgroup"}) {
        EXPECT_THROW(written(*group, level), sc::exception::UnSupportedLevel);
    }

    // The validator goes with the level that alone defines the key: none below it holds a value.
    const std::string validator = "<validationfunc type='JAVA' packagename='jv'";
    EXPECT_EQ(std::string::npos, written(*group, "session").find(validator));
    makeWNode("s", true, group)
        ->declare<int>()
        .validate(sc::CValidator("lib", "s"))
        .put("session", 5);
    EXPECT_NE(std::string::npos,
              written(*group, "session")
                  .find("    <key name=\"s\">\n        <validationfunc type='C' packagename='lib' "
                        "functionname='s'/>\n        <int32>\n"));
    key->put("factory", 2);
    for (const char* level : {"user", "session", ""}) {
        EXPECT_EQ(std::string::npos, written(*group, level).find(validator)) << level;
    }
    EXPECT_NE(std::string::npos, written(*group, "factory").find(validator));
}

}  // namespace
}  // namespace writingtest
