// Files read into trees: every type word as scalar and array, the count rule, undef, any-type
// keys, metadata, strings across CDATA sections, functions, and the shape of the tree.
#include "ReadingFixture.hpp"

#include <settingscore/core/exception/CalloutExceptions.hpp>
#include <settingscore/core/exception/ValidationExceptions.hpp>

#include <boost/lexical_cast.hpp>

namespace readingtest {
namespace {

using Strings = std::vector<std::wstring>;

// One type word: its text for a scalar and for two array elements, and what they read as.
struct TypeWordCase {
    const char* word;
    const char* scalarText;
    boost::any scalar;
    const char* firstText;
    const char* secondText;
    boost::any array;
};

std::vector<TypeWordCase> typeWordCases() {
    using SC = signed char;
    using UC = unsigned char;
    using US = unsigned short;
    using LL = long long;
    using ULL = unsigned long long;
    return {
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
}

TEST_F(ReadingTest, EveryTypeWordReadsBackAsScalarAndAsArray) {
    std::string body;
    for (const auto& c : typeWordCases()) {
        const std::string w = c.word;
        body += key(w, "<" + w + "><value>" + c.scalarText + "</value></" + w + ">");
        body += key(w + "s", "<" + w + " maxArraySize=\"0\"><value>" + c.firstText +
                                 "</value><value>" + c.secondText + "</value></" + w + ">");
    }
    const SettingsPtr top = parse(document(body));
    int code = 0;
    for (const auto& c : typeWordCases()) {
        ++code;  // the type words run in type-code order
        const std::string w = c.word;
        EXPECT_TRUE(storesValue(top, w, c.scalar)) << w;
        EXPECT_TRUE(storesValue(top, w + "s", c.array)) << w;
        EXPECT_EQ(NodeBuilder::getTypeCode(*nodeAt(top, w)), code) << w;
        EXPECT_EQ(NodeBuilder::getTypeCode(*nodeAt(top, w + "s")), code) << w;
        const auto bounds = NodeBuilder::getArraySizeBounds(*nodeAt(top, w + "s"));
        ASSERT_TRUE(bounds) << w;
        EXPECT_EQ(bounds->getMinArraySize(), 1u);  // the schema's default
        EXPECT_EQ(bounds->getMaxArraySize(), 0u);
        EXPECT_EQ(NodeBuilder::getTypeConformer(*nodeAt(top, w)),
                  sc::detail::conformerFor(code, false));
        EXPECT_EQ(NodeBuilder::getTypeConformer(*nodeAt(top, w + "s")),
                  sc::detail::conformerFor(code, true));
        EXPECT_EQ(NodeBuilder::getValueWriter(*nodeAt(top, w)),
                  sc::detail::valueWriterForTypeCode(code));
    }
}

TEST_F(ReadingTest, TheCountRuleDecidesBetweenScalarVectorNothingAndFailure) {
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
    const SettingsPtr top = parse(document(
        key("bothZero", int32(" minArraySize=\"0\" maxArraySize=\"0\"", "")) +
        key("upToThree", int32(" minArraySize=\"0\" maxArraySize=\"3\"", "")) +
        key("atLeastTwoNone", int32(" minArraySize=\"2\" maxArraySize=\"0\"", "")) +
        key("oneOfTwo", int32(" maxArraySize=\"2\"", values(1))) +
        key("unbounded", int32(" maxArraySize=\"0\"", values(5))) +
        key("exact", int32(" minArraySize=\"3\" maxArraySize=\"3\"", values(3))) +
        key("empty", "<int32><value/></int32><bool><value/></bool>") +
        key("bools", "<bool maxArraySize=\"3\"><value>true</value><value>TRUE</value></bool>") +
        key("emptyString", "<string><value></value></string>")));
    EXPECT_TRUE(storesValue(top, "bothZero", std::vector<int>()));
    EXPECT_TRUE(storesNothing(top, "upToThree"));
    EXPECT_TRUE(storesNothing(top, "atLeastTwoNone"));
    EXPECT_TRUE(storesValue(top, "oneOfTwo", std::vector<int>{1}));
    EXPECT_TRUE(storesValue(top, "unbounded", std::vector<int>{1, 2, 3, 4, 5}));
    EXPECT_TRUE(storesValue(top, "exact", std::vector<int>{1, 2, 3}));
    EXPECT_TRUE(storesValue(top, "empty", false));  // the last type element wins
    EXPECT_EQ(NodeBuilder::getTypeCode(*nodeAt(top, "empty")), ba::typeCodeOf<bool>());
    EXPECT_TRUE(storesValue(top, "bools", std::vector<bool>{true, false}));
    EXPECT_TRUE(storesValue(top, "emptyString", std::wstring()));

    using NumOfValue = TOLVAN::settings::core::XMLParserErrorNumOfValueNotInRange;
    const struct {
        std::string content;
        std::string expected;
    } failures[] = {
        {int32(" minArraySize=\"2\" maxArraySize=\"0\"", values(1)),
         messageText<NumOfValue>("k", "int32", 1, 2, "unbounded")},
        {int32("", values(2)), messageText<NumOfValue>("k", "int32", 2, 1, "1")},
        {"<double minArraySize=\"0\" maxArraySize=\"3\">" + values(4) + "</double>",
         messageText<NumOfValue>("k", "double", 4, 0, "3")},
    };
    for (const auto& failure : failures) {
        const auto error = readError(document(key("k", failure.content)));
        EXPECT_EQ(error.getErrorCode(), ErrorReadingSettingsData::SaxError);
        EXPECT_EQ(detailText(error), failure.expected);
    }
}

TEST_F(ReadingTest, UndefDropsTheValuesAndKeepsTheDeclaration) {
    const SettingsPtr top = parse(document(
        key("dropped", "<int16 undef=\"true\" maxArraySize=\"0\"><value>1</value></int16>") +
        key("tooMany", "<int16 undef=\"true\"><value>1</value><value>2</value></int16>") +
        key("notUndef", "<int16 undef=\"TRUE\"><value>3</value></int16>")));
    EXPECT_TRUE(storesNothing(top, "dropped"));
    EXPECT_TRUE(storesNothing(top, "tooMany"));  // no count rule without values
    EXPECT_EQ(NodeBuilder::getTypeCode(*nodeAt(top, "dropped")), ba::typeCodeOf<short>());
    EXPECT_EQ(NodeBuilder::getArraySizeBounds(*nodeAt(top, "dropped"))->getMaxArraySize(), 0u);
    EXPECT_EQ(NodeBuilder::getValueWriter(*nodeAt(top, "tooMany")),
              sc::detail::typedValueWriter<short>());
    EXPECT_TRUE(storesValue(top, "notUndef", short(3)));
}

TEST_F(ReadingTest, AnyTypeKeysHaveTheVoidCodeAndKeepTheTypeOfTheirValue) {
    const SettingsPtr top = parse(
        document(key("bare", "", " anytype=\"true\"") +
                 key("real", "<double><value>2.5</value></double>", " anytype=\"true\"") +
                 key("list", "<int32 maxArraySize=\"0\"><value>1</value><value>3</value></int32>",
                     " anytype=\"true\"")));
    for (const char* name : {"bare", "real", "list"}) {
        EXPECT_EQ(NodeBuilder::getTypeCode(*nodeAt(top, name)), ba::VoidTypeCode) << name;
        EXPECT_EQ(NodeBuilder::getValueWriter(*nodeAt(top, name)),
                  sc::detail::anyTypeValueWriter());
    }
    EXPECT_TRUE(storesNothing(top, "bare"));
    EXPECT_TRUE(storesValue(top, "real", 2.5));
    EXPECT_TRUE(storesValue(top, "list", std::vector<int>{1, 3}));
    // An any-type key takes any value; its element type is whatever the value brings.
    EXPECT_NO_THROW(top->validateAny("real", boost::any(std::wstring(L"text"))));

    using NoType = TOLVAN::settings::core::TypeNotSpecifiedForNoneAnyType;
    for (const char* attributes : {"", " anytype=\"TRUE\""}) {
        const auto error = readError(document(key("untyped", "", attributes)));
        EXPECT_EQ(error.getErrorCode(), ErrorReadingSettingsData::SaxError);
        EXPECT_EQ(detailText(error), messageText<NoType>("untyped"));
    }
}

TEST_F(ReadingTest, MetadataBoundsAreComparedWhicheverComesFirstAndGovernValidation) {
    const auto metadata = [](const std::string& word, const std::string& content) {
        return "<" + word + "><value>5</value><metadata>" + content + "</metadata></" + word + ">";
    };
    const SettingsPtr top =
        parse(document(key("range", metadata("int32",
                                             "<max>10</max><min>1</min><choices>20</choices>"
                                             "<choices>30</choices>")) +
                       key("equal", metadata("double", "<min>5</min><max>5</max>")) +
                       key("later", metadata("uint8", "<min>1</min><min>4</min>")) +
                       key("name",
                           "<string><value>abc</value><metadata><min>2</min><max>4</max>"
                           "<choices>lengthy</choices></metadata></string>") +
                       key("plain", "<int32><value>1</value><metadata/></int32>")));
    const auto range = NodeBuilder::getMetaData(*nodeAt(top, "range"));
    EXPECT_TRUE(ba::isEqual(range.getMin(), 1));
    EXPECT_TRUE(ba::isEqual(range.getMax(), 10));
    ASSERT_TRUE(range.getListOfChoice());
    EXPECT_EQ(range.getListOfChoice()->size(), 2u);
    EXPECT_TRUE(ba::isEqual(NodeBuilder::getMetaData(*nodeAt(top, "later")).getMin(),
                            static_cast<unsigned char>(4)));
    EXPECT_TRUE(NodeBuilder::getMetaData(*nodeAt(top, "plain")).isEmpty());
    // The limits work as validation reads them: string bounds are lengths.
    EXPECT_NO_THROW(top->validateAny("range", boost::any(20)));
    EXPECT_THROW(top->validateAny("range", boost::any(15)),
                 sc::exception::ValueIsNotOneOfTheChoicesAndNotInRange);
    EXPECT_NO_THROW(top->validateAny("equal", boost::any(5.0)));
    EXPECT_THROW(top->validateAny("later", boost::any(static_cast<unsigned char>(3))),
                 sc::exception::ValueIsNotInRange);
    EXPECT_NO_THROW(top->validateAny("name", boost::any(std::wstring(L"lengthy"))));
    EXPECT_NO_THROW(top->validateAny("name", boost::any(std::wstring(L"abcd"))));
    EXPECT_THROW(top->validateAny("name", boost::any(std::wstring(L"abcde"))),
                 sc::exception::ValueIsNotOneOfTheChoicesAndNotInRange);

    using MinAboveMax = TOLVAN::settings::core::XMLMetaDataParserError;
    for (const char* bounds : {"<min>7</min><max>3</max>", "<max>3</max><min>7</min>"}) {
        const auto error = readError(document(key("k", metadata("int32", bounds))));
        EXPECT_EQ(error.getErrorCode(), ErrorReadingSettingsData::SaxError);
        EXPECT_EQ(detailText(error), messageText<MinAboveMax>("k", "7", "3"));
    }
    const auto lengths = readError(
        document(key("k", "<string><metadata><max>2</max><min>10</min></metadata></string>")));
    EXPECT_EQ(detailText(lengths), messageText<MinAboveMax>("k", "10", "2"));
    using WrongValue = TOLVAN::settings::core::XMLParseErrorWrongValueForGivenType;
    const auto wrong = readError(document(key("k", metadata("int16", "<choices>x</choices>"))));
    EXPECT_EQ(detailText(wrong),
              messageText<WrongValue>("int16", "x", boost::bad_lexical_cast().what()));
}

TEST_F(ReadingTest, StringsJoinTheirCdataSectionsAndKeepEveryCharacter) {
    const SettingsPtr top = parse(
        document(key("split", "<string><value><![CDATA[one ]]><![CDATA[two]]></value></string>") +
                 key("bracket", "<string><value><![CDATA[a]]]]><![CDATA[>b]]></value></string>") +
                 key("mixed", "<string><value>x&amp;y <![CDATA[<z>]]></value></string>") +
                 key("wide",
                     "<string><value>Gr\xC3\xBC\xC3\x9F"
                     "e \xE2\x82\xAC \xF0\x9F\x98\x80</value>"
                     "</string>") +
                 key("blank", "<string><value>  two  blanks  </value></string>") +
                 key("number", "<int32><value>1&#50;</value></int32>")));
    EXPECT_TRUE(storesValue(top, "split", std::wstring(L"one two")));
    EXPECT_TRUE(storesValue(top, "bracket", std::wstring(L"a]]>b")));
    EXPECT_TRUE(storesValue(top, "mixed", std::wstring(L"x&y <z>")));
    EXPECT_TRUE(storesValue(top, "wide", std::wstring(L"Gr\u00FC\u00DFe \u20AC \U0001F600")));
    EXPECT_TRUE(storesValue(top, "blank", std::wstring(L"  two  blanks  ")));
    // A number's runs replace each other: the character reference comes as a run of its own.
    EXPECT_TRUE(storesValue(top, "number", 2));
}

TEST_F(ReadingTest, FunctionsAreInstalledWhereTheyStandAndRunTimeDefaultsStoreNoValue) {
    const std::string red = "tvutil_settings_unittest_only_RunTime_positive_red_color";
    const SettingsPtr top = parse(
        document("<validationfunc type='JAVA' packagename='com.example' functionname='check'/>" +
                 key("color",
                     "<string><value>green</value><runtimedefault type='C' packagename="
                     "'settingscore' functionname='" +
                         red + "'/></string>") +
                 key("size",
                     "<validationfunc type='TOLVAN' packagename='' functionname='checkSize'/>"
                     "<uint32><runtimedefault type='TOLVAN' packagename='' functionname='"
                     "defaultSize'/></uint32>") +
                 key("later",
                     "<int32><runtimedefault type='C' packagename='a' functionname='f'/>"
                     "<runtimedefault type='JAVA' packagename='b' functionname='g'/></int32>")));
    const auto productValidator = top->getValidator();
    ASSERT_EQ(productValidator.which(), 3);  // JValidator
    EXPECT_EQ(boost::get<sc::JValidator>(productValidator).getFunctionName(), "check");
    const auto sizeValidator = nodeAt(top, "size")->getValidator();
    ASSERT_EQ(sizeValidator.which(), 1);  // TValidator
    EXPECT_EQ(boost::get<sc::TValidator>(sizeValidator).getFunctionName(), "checkSize");

    EXPECT_FALSE(stored(top, "color"));  // the value element was dropped
    const auto colorDefault = NodeBuilder::getRunTimeDefault(*nodeAt(top, "color"));
    ASSERT_EQ(colorDefault.which(), 2);  // CRunTimeDefault
    EXPECT_EQ(boost::get<sc::CRunTimeDefault>(colorDefault).getPackageName(), "settingscore");
    EXPECT_EQ(NodeBuilder::getRunTimeDefault(*nodeAt(top, "size")).which(), 1);
    EXPECT_EQ(boost::get<sc::JRunTimeDefault>(NodeBuilder::getRunTimeDefault(*nodeAt(top, "later")))
                  .getFunctionName(),
              "g");
}

TEST_F(ReadingTest, TheTreeKeepsNamesFlagsVersionsAndNesting) {
    const SettingsPtr top = parse(document(
        key("shown", "<int8/>", " visible=\"true\" readonly=\"true\"") +
            key("loud", "<int8/>", " visible=\"TRUE\" readonly=\"1\"") +
            key("outer", "<int8/>" + key("inner", "<int8><value>1</value></int8>")) +
            "<settings name=\"a\" readonly=\"true\"><settings name=\"b\" visible=\"true\">"
            "<settings name=\"c\" version=\"9\">" +
            key("deep", "<uint8><value>7</value></uint8>") + "</settings></settings></settings>",
        " visible=\"true\" version=\"42\""));
    EXPECT_EQ(top->getName(), "p");
    EXPECT_TRUE(top->isVisible());
    EXPECT_EQ(top->getProductVersion(), 42u);
    EXPECT_TRUE(nodeAt(top, "shown")->isVisible());
    EXPECT_TRUE(nodeAt(top, "shown")->isReadOnly());
    EXPECT_FALSE(nodeAt(top, "loud")->isVisible());
    EXPECT_FALSE(nodeAt(top, "loud")->isReadOnly());
    EXPECT_EQ(nodeAt(top, "outer.inner")->getFullName(), "p.outer.inner");
    EXPECT_TRUE(storesValue(top, "outer.inner", static_cast<signed char>(1)));
    const auto deep = nodeAt(top, "a.b.c.deep");
    EXPECT_EQ(deep->getFullName(), "p.a.b.c.deep");
    EXPECT_TRUE(deep->isKey());
    EXPECT_FALSE(nodeAt(top, "a.b.c")->isKey());
    EXPECT_TRUE(nodeAt(top, "a")->isReadOnly());
    EXPECT_TRUE(nodeAt(top, "a.b")->isReadOnly());  // inherited from "a"
    EXPECT_FALSE(nodeAt(top, "a")->isVisible());
    EXPECT_TRUE(nodeAt(top, "a.b")->isVisible());
    EXPECT_TRUE(storesValue(top, "a.b.c.deep", static_cast<unsigned char>(7)));
}

}  // namespace
}  // namespace readingtest
