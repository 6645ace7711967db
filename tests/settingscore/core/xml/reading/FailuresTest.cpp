// Files that fail: the parser's errors with their position text, the reader's own refusals
// (which hold whatever the schema admits), and the failures that pass through unchanged.
#include "ReadingFixture.hpp"

#include <boost/lexical_cast.hpp>
#include <boost/numeric/conversion/converter_policies.hpp>

#include <regex>

namespace readingtest {
namespace {

using IllegalTag = TOLVAN::settings::core::XMLParserErrorIllegalTagName;
using UnexpectedText = TOLVAN::settings::core::XMLParserErrorUnexpectedTextContent;
using WrongValue = TOLVAN::settings::core::XMLParseErrorWrongValueForGivenType;

constexpr char declaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

TEST_F(ReadingTest, ParserErrorsGiveCodeFourWithTheLineAndTheRunTogetherColumn) {
    // The column field repeats the line's digits before the column's.
    const auto missingName = readError(document(key("a", "<int32/>") + "<key><int32/></key>"));
    EXPECT_EQ(missingName.getErrorCode(), ErrorReadingSettingsData::ParseError);
    EXPECT_EQ(detailText(missingName), "LineNum=4  ColNum=46  missing required attribute 'name'");

    const std::string padding(9, '\n');  // pushes the faults to line 12 and beyond
    const std::pair<std::string, unsigned> cases[] = {
        {document(padding + key("k", "<int32></int64>")), 12},  // not well formed
        {document(padding + key("k",
                                "<validationfunc type='PYTHON' packagename='p' "
                                "functionname='f'/><int32/>")),
         12},
        {document(padding + key("k", "text<int32/>")), 12},  // no text in a key
        {document(padding + key("k", "<colour/>")), 12},
        {document(padding + "\n\n" + key("k", "<int32 maxArraySize=\"-1\"/>")), 14},
        {std::string(declaration) + "<settings name=\"p\" xmlns=\"urn:other\"/>", 2},
    };
    const std::regex form("LineNum=(\\d+)  ColNum=(\\d+)  (.+)");
    for (const auto& c : cases) {
        const auto error = readError(c.first);
        EXPECT_EQ(error.getErrorCode(), ErrorReadingSettingsData::ParseError) << c.first;
        std::smatch match;
        const std::string text = detailText(error);
        ASSERT_TRUE(std::regex_match(text, match, form)) << text;
        EXPECT_EQ(match[1].str(), std::to_string(c.second)) << text;
        EXPECT_EQ(match[2].str().substr(0, match[1].length()), match[1].str()) << text;
        EXPECT_GT(match[2].length(), match[1].length()) << text;
    }
    try {
        sc::SettingsFileParser().parse(dir_.wpath("absent.settings"));
        ADD_FAILURE() << "an absent file parsed";
    } catch (const ErrorReadingSettingsData& failure) {
        EXPECT_EQ(failure.getErrorCode(), ErrorReadingSettingsData::ParseError);
        EXPECT_THAT(detailText(failure), ::testing::HasSubstr("absent.settings"));
    }
}

TEST_F(ReadingTest, MessageFailuresBecomeCodeFiveOthersPassThroughUnchanged) {
    expectCodeFive(std::string(declaration) +
                       "<key name=\"k\" xmlns=\"urn:lindqvare.tolvan.settings\">"
                       "<int32><value>1</value></int32></key>",
                   "Illegal tag encountered at the beginning of the Settings XMLfile");
    expectCodeFive(document(key("k", "<double><value>0abc</value></double>")),
                   messageText<WrongValue>("double", "0abc", boost::bad_lexical_cast().what()));
    EXPECT_TRUE(
        storesValue(parse(document(key("k", "<double><value>1.5abc</value></double>"))), "k", 1.5));
    // A nested group admits no "additionalpath", though the schema lets it through.
    expectCodeFive(
        document("<settings name=\"g\"><additionalpath>x.settings</additionalpath></settings>"),
        messageText<IllegalTag>("g", "additionalpath", "settings"));

    EXPECT_THROW(parse(document(key("k", "<int8><value>128</value></int8>"))),
                 boost::numeric::positive_overflow);
    EXPECT_THROW(parse(document(key("k",
                                    "<uint8 maxArraySize=\"0\"><value>1</value>"
                                    "<value>300</value></uint8>"))),
                 boost::numeric::positive_overflow);
    // Two siblings of one name: the tree's own failure, nothing merges inside one file.
    for (const std::string& twice : std::vector<std::string>{
             key("k", "<int8/>") + key("k", "<int16/>"),
             "<settings name=\"g\"/><settings name=\"g\"/>",
             key("g", "<int8/>") + "<settings name=\"g\"/>",
             "<settings name=\"g\">" + key("k", "<int8/>") + key("k", "<int8/>") + "</settings>"}) {
        EXPECT_THROW(parse(document(twice)), sc::exception::ErrorAddingChildNodeOrKey) << twice;
    }
}

// The lax schema below a root whose path has blanks (which the schema location must survive).
class LaxSchemaTest : public ReadingTest {
protected:
    LaxSchemaTest() : root_(dir_.path() / "install root with blanks"), guard_(root_.wstring()) {
        installSchema(root_, laxSchema);
    }

    std::filesystem::path root_;
    InstallRootGuard guard_;
};

TEST_F(LaxSchemaTest, TheReaderRefusesStrayTextAndTagsIgnoresUnknownFunctionsAndDefaultsNoSize) {
    const std::string int32 = "<int32 minArraySize=\"1\" maxArraySize=\"1\">";
    const std::pair<std::string, std::string> cases[] = {
        {key("k", "text"), messageText<UnexpectedText>("k", "key")},
        {key("k", int32 + "7</int32>"), messageText<UnexpectedText>("k", "int32")},
        {key("k", int32 + "<metadata>1</metadata></int32>"),
         messageText<UnexpectedText>("k", "metadata")},
        {key("k", "<validationfunc type='C' packagename='a' functionname='f'>x</validationfunc>"),
         messageText<UnexpectedText>("k", "validationfunc")},
        {key("k", "<colour/>"), messageText<IllegalTag>("k", "colour", "key")},
        {key("k", "<value>1</value>"), messageText<IllegalTag>("k", "value", "key")},
        {key("k", int32 + "<min>1</min></int32>"), messageText<IllegalTag>("k", "min", "int32")},
        {key("k", int32 + "<value><b/></value></int32>"),
         messageText<IllegalTag>("k", "b", "value")},
        {"<settings name=\"g\"><int32/></settings>",
         messageText<IllegalTag>("g", "int32", "settings")},
    };
    for (const auto& c : cases) {
        expectCodeFive(document(c.first), c.second);
    }
    // Unknown function types are ignored; an empty version is none.
    const SettingsPtr top = parse(
        document("<validationfunc type='PYTHON' packagename='p' functionname='f'/>" +
                     key("k",
                         "<int32 minArraySize=\"1\" maxArraySize=\"1\"><value>3</value>"
                         "<runtimedefault type='c' packagename='p' functionname='f'/></int32>"),
                 " version=\"\""));
    EXPECT_EQ(top->getValidator().which(), 0);
    EXPECT_EQ(NodeBuilder::getRunTimeDefault(*nodeAt(top, "k")).which(), 0);
    EXPECT_TRUE(storesValue(top, "k", 3));  // no run-time default, so the value counts
    EXPECT_FALSE(top->getProductVersion());

    EXPECT_THROW(parse(document("", " version=\"abc\"")), boost::bad_lexical_cast);
    for (const char* attributes :
         {"", " maxArraySize=\"1\"", " minArraySize=\"1\" maxArraySize=\"\""}) {
        EXPECT_THROW(parse(document(key("k", std::string("<int32") + attributes + "/>"))),
                     boost::bad_lexical_cast)
            << attributes;
    }
}

}  // namespace
}  // namespace readingtest
