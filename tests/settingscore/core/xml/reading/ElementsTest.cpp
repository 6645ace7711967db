// Files read into trees: every type word, the count rule, undef, any-type keys, text runs,
// metadata, functions, and the shape of the tree.
#include "ReadingFixture.hpp"

#include <settingscore/core/exception/ValidationExceptions.hpp>

#include <boost/lexical_cast.hpp>

namespace readingtest {
namespace {

using Strings = std::vector<std::wstring>;
using NumOfValue = TOLVAN::settings::core::XMLParserErrorNumOfValueNotInRange;

TEST_F(ReadingTest, EveryTypeWordReadsBackAsScalarAndAsArray) {
    using SC = signed char;
    using UC = unsigned char;
    using US = unsigned short;
    using LL = long long;
    using ULL = unsigned long long;
    // Word, scalar text and value, two array element texts and the array; in type-code order.
    const struct {
        std::string word, scalarText;
        boost::any scalar;
        std::string first, second;
        boost::any array;
    } cases[] = {
        {"string", "plain", std::wstring(L"plain"), "a", " b ", Strings{L"a", L" b "}},
        {"bool", "true", true, "1", "yes", std::vector<bool>{true, false}},
        {"int8", "-128", SC(-128), "127", "0", std::vector<SC>{127, 0}},
        {"uint8", "255", UC(255), "0", "7", std::vector<UC>{0, 7}},
        {"int16", "-32768", short(-32768), "1", "-1", std::vector<short>{1, -1}},
        {"uint16", "65535", US(65535), "2", "3", std::vector<US>{2, 3}},
        {"int32", "-7", -7, "2147483647", "0", std::vector<int>{2147483647, 0}},
        {"uint32", "4294967295", 4294967295u, "1", "2", std::vector<unsigned>{1, 2}},
        {"int64", "-9000000000", LL(-9000000000), "5", "6", std::vector<LL>{5, 6}},
        {"uint64", "18000000000000000000", ULL(18000000000000000000ULL), "0", "1",
         std::vector<ULL>{0, 1}},
        {"float", "0.1", 0.1f, "1.5", "-2", std::vector<float>{1.5f, -2.0f}},
        {"double", "1e-300", 1e-300, "0.1", "2.5", std::vector<double>{0.1, 2.5}},
    };
    std::string body;
    for (const auto& c : cases) {
        const std::string& w = c.word;
        body += key(w, "<" + w + "><value>" + c.scalarText + "</value></" + w + ">") +
                key(w + "s", "<" + w + " maxArraySize=\"0\"><value>" + c.first + "</value><value>" +
                                 c.second + "</value></" + w + ">");
    }
    const SettingsPtr top = parse(document(body));
    int code = 0;
    for (const auto& c : cases) {
        ++code;
        SCOPED_TRACE(c.word);
        const auto scalar = nodeAt(top, c.word);
        const auto array = nodeAt(top, c.word + "s");
        EXPECT_TRUE(storesValue(top, c.word, c.scalar));
        EXPECT_TRUE(storesValue(top, c.word + "s", c.array));
        EXPECT_EQ(NodeBuilder::getTypeCode(*scalar), code);
        EXPECT_EQ(NodeBuilder::getTypeCode(*array), code);
        const auto bounds = NodeBuilder::getArraySizeBounds(*array);
        ASSERT_TRUE(bounds);
        EXPECT_EQ(bounds->getMinArraySize(), 1u);  // the schema's default
        EXPECT_EQ(bounds->getMaxArraySize(), 0u);
        EXPECT_EQ(NodeBuilder::getTypeConformer(*scalar), sc::detail::conformerFor(code, false));
        EXPECT_EQ(NodeBuilder::getTypeConformer(*array), sc::detail::conformerFor(code, true));
        EXPECT_EQ(NodeBuilder::getValueWriter(*scalar), sc::detail::valueWriterForTypeCode(code));
    }
}

TEST_F(ReadingTest, TheCountRuleUndefAndAnyTypeDecideWhatAKeyStores) {
    const auto values = [](int n) {
        std::string text;
        for (int i = 1; i <= n; ++i) {
            text += "<value>" + std::to_string(i) + "</value>";
        }
        return text;
    };
    const auto int32 = [](const std::string& attributes, const std::string& content) {
        return "<int32" + attributes + ">" + content + "</int32>";
    };
    const std::string anyType = " anytype=\"true\"";
    const SettingsPtr top = parse(document(
        key("bothZero", int32(" minArraySize=\"0\" maxArraySize=\"0\"", "")) +
        key("upToThree", int32(" minArraySize=\"0\" maxArraySize=\"3\"", "")) +
        key("oneOfTwo", int32(" maxArraySize=\"2\"", values(1))) +
        key("unbounded", int32(" maxArraySize=\"0\"", values(5))) +
        key("empty", "<int32><value/></int32><bool><value/></bool>") +
        key("bools", "<bool maxArraySize=\"3\"><value>true</value><value>TRUE</value></bool>") +
        key("emptyString", "<string><value></value></string>") +
        key("mixed", "<string><value>x&amp;y <![CDATA[<z>]]></value></string>") +
        key("number", int32("", "<value>1&#50;</value>")) +
        key("dropped", "<int16 undef=\"true\" maxArraySize=\"0\"><value>1</value></int16>") +
        key("tooMany", "<int16 undef=\"true\"><value>1</value><value>2</value></int16>") +
        key("notUndef", "<int16 undef=\"TRUE\"><value>3</value></int16>") +
        key("bare", "", anyType) + key("real", "<double><value>2.5</value></double>", anyType) +
        key("list", int32(" maxArraySize=\"0\"", values(2)), anyType)));
    const int int32Code = ba::typeCodeOf<int>(), boolCode = ba::typeCodeOf<bool>();
    const int int16Code = ba::typeCodeOf<short>(), anyCode = ba::VoidTypeCode;
    // Name, type code, stored value (empty: none). Undef drops the values, and with them the
    // count rule, and keeps the declaration; any-type keys take the type their value brings.
    const std::tuple<const char*, int, boost::any> expected[] = {
        {"bothZero", int32Code, std::vector<int>()},
        {"upToThree", int32Code, {}},
        {"oneOfTwo", int32Code, std::vector<int>{1}},
        {"unbounded", int32Code, std::vector<int>{1, 2, 3, 4, 5}},
        {"empty", boolCode, false},  // the last type element wins
        {"bools", boolCode, std::vector<bool>{true, false}},
        {"emptyString", ba::typeCodeOf<std::wstring>(), std::wstring()},
        {"mixed", ba::typeCodeOf<std::wstring>(), std::wstring(L"x&y <z>")},  // runs join
        {"number", int32Code, 2},  // the reference is a run of its own, which replaces "1"
        {"dropped", int16Code, {}},
        {"tooMany", int16Code, {}},
        {"notUndef", int16Code, short(3)},
        {"bare", anyCode, {}},
        {"real", anyCode, 2.5},
        {"list", anyCode, std::vector<int>{1, 2}},
    };
    for (const auto& [name, code, value] : expected) {
        const auto held = stored(top, name);
        EXPECT_TRUE(value.empty() ? !held || held->empty() : held && ba::isEqual(*held, value))
            << name;
        EXPECT_EQ(NodeBuilder::getTypeCode(*nodeAt(top, name)), code) << name;
        EXPECT_EQ(NodeBuilder::getValueWriter(*nodeAt(top, name)),
                  code == anyCode ? sc::detail::anyTypeValueWriter()
                                  : sc::detail::valueWriterForTypeCode(code))
            << name;
    }
    EXPECT_EQ(NodeBuilder::getArraySizeBounds(*nodeAt(top, "dropped"))->getMaxArraySize(), 0u);
    EXPECT_NO_THROW(top->validateAny("real", boost::any(std::wstring(L"text"))));

    expectCodeFive(document(key("k", int32(" minArraySize=\"2\" maxArraySize=\"0\"", values(1)))),
                   messageText<NumOfValue>("k", "int32", 1, 2, "unbounded"));
    expectCodeFive(document(key("k", int32("", values(2)))),
                   messageText<NumOfValue>("k", "int32", 2, 1, "1"));
    expectCodeFive(document(key("k", "<double minArraySize=\"0\" maxArraySize=\"3\">" + values(4) +
                                         "</double>")),
                   messageText<NumOfValue>("k", "double", 4, 0, "3"));
    using NoType = TOLVAN::settings::core::TypeNotSpecifiedForNoneAnyType;
    for (const char* attributes : {"", " anytype=\"TRUE\""}) {
        expectCodeFive(document(key("untyped", "", attributes)), messageText<NoType>("untyped"));
    }
}

TEST_F(ReadingTest, MetadataBoundsAreComparedWhicheverComesFirstAndGovernValidation) {
    const auto metadata = [](const std::string& word, const std::string& content) {
        return "<" + word + "><value>5</value><metadata>" + content + "</metadata></" + word + ">";
    };
    const SettingsPtr top = parse(
        document(key("range", metadata("int32", "<max>10</max><min>1</min><choices>20</choices>")) +
                 key("equal", metadata("double", "<min>5</min><max>5</max>")) +
                 key("later", metadata("uint8", "<min>1</min><min>4</min>")) +
                 key("name",
                     "<string><value>abc</value><metadata><min>2</min><max>4</max>"
                     "<choices>lengthy</choices></metadata></string>") +
                 key("plain", "<int32><value>1</value><metadata/></int32>")));
    // The limits work in the key's type, string bounds are lengths; equal bounds are admitted.
    using Refused = sc::exception::ValueIsNotOneOfTheChoicesAndNotInRange;
    EXPECT_NO_THROW(top->validateAny("range", boost::any(20)));
    EXPECT_THROW(top->validateAny("range", boost::any(0)), Refused);
    EXPECT_THROW(top->validateAny("range", boost::any(15)), Refused);
    EXPECT_THROW(top->validateAny("later", boost::any(static_cast<unsigned char>(3))),
                 sc::exception::ValueIsNotInRange);
    EXPECT_NO_THROW(top->validateAny("name", boost::any(std::wstring(L"lengthy"))));
    EXPECT_THROW(top->validateAny("name", boost::any(std::wstring(L"abcde"))), Refused);
    using MinAboveMax = TOLVAN::settings::core::XMLMetaDataParserError;
    for (const char* bounds : {"<min>7</min><max>3</max>", "<max>3</max><min>7</min>"}) {
        expectCodeFive(document(key("k", metadata("int32", bounds))),
                       messageText<MinAboveMax>("k", "7", "3"));
    }
    expectCodeFive(
        document(key("k", "<string><metadata><max>2</max><min>10</min></metadata></string>")),
        messageText<MinAboveMax>("k", "10", "2"));
    using WrongValue = TOLVAN::settings::core::XMLParseErrorWrongValueForGivenType;
    expectCodeFive(document(key("k", metadata("int16", "<choices>x</choices>"))),
                   messageText<WrongValue>("int16", "x", boost::bad_lexical_cast().what()));
}

TEST_F(ReadingTest, TheTreeKeepsNamesFlagsVersionsNestingAndFunctions) {
    // No key has a value: the product's validator would run for it.
    const SettingsPtr top = parse(
        document("<validationfunc type='JAVA' packagename='com.example' functionname='check'/>" +
                     key("shown", "<int8/>", " visible=\"true\" readonly=\"true\"") +
                     key("loud", "<int8/>", " visible=\"TRUE\" readonly=\"1\"") +
                     key("outer", "<int8/>" + key("inner", "<int8/>")) +
                     "<settings name=\"a\" readonly=\"true\"><settings name=\"b\" visible=\"true\">"
                     "<settings name=\"c\">" +
                     key("deep", "<uint8/>") + "</settings></settings></settings>" +
                     key("color",
                         "<string><value>green</value><runtimedefault type='C' packagename="
                         "'settingscore' functionname='red'/></string>") +
                     key("size",
                         "<validationfunc type='TOLVAN' packagename='' functionname='checkSize'/>"
                         "<uint32><runtimedefault type='TOLVAN' packagename='' functionname='"
                         "defaultSize'/></uint32>") +
                     key("later",
                         "<int32><runtimedefault type='C' packagename='a' functionname='f'/>"
                         "<runtimedefault type='JAVA' packagename='b' functionname='g'/></int32>"),
                 " visible=\"true\" version=\"42\""));
    const std::string tree = "\n" + describeTree(nodeAt(top, ""));
    for (const char* line :
         {"\np group visible=1 readonly=0 version=42 validator=3:com.example/check\n",
          "\np.shown key visible=1 readonly=1", "\np.loud key visible=0 readonly=0",
          "\np.a group visible=0 readonly=1", "\np.a.b group visible=1 readonly=1",  // inherited
          "\np.a.b.c group", "\np.a.b.c.deep key", "\np.outer.inner key",
          "\np.size key visible=0 readonly=0 version=42 validator=1:/checkSize",
          // The last of two run-time defaults wins.
          "default=2:settingscore/red@", "default=1:/defaultSize@", "default=3:b/g@"}) {
        EXPECT_THAT(tree, ::testing::HasSubstr(line)) << tree;
    }
    EXPECT_FALSE(stored(top, "color"));  // a run-time default drops the value element
}

}  // namespace
}  // namespace readingtest
