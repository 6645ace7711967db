// Hostile files given to the parser: each fails with the reader's failure class within the
// CPU and memory limits, in a child process of its own, and nothing crashes or hangs.
#include "HostileFiles.hpp"
#include "MeasuredChild.hpp"

#include <sys/stat.h>

#include <iostream>
#include <random>

namespace hostiletest {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::string noDoctype = "code 5: Settings files have no document type declaration";
const std::string tooDeep = "code 5: Elements nested deeper than 256 levels";
const std::string tooBig = "code 5: The file needs more than 16 MiB of parser memory";
const std::string parseError = "code 4: LineNum=";
const std::string tooLong = "code 5: Element texts longer than 1048576 characters";

constexpr std::size_t fiftyMegabytes = 50u << 20;

struct Case {
    std::string name;
    fs::path file;
    std::string expected;  // what the outcome starts with
};

class HostileParseTest : public ::testing::Test {
protected:
    HostileParseTest() {
        // Starts the parser library and compiles the schema in the parent, so that each child
        // measures its one parse and nothing else.
        EXPECT_EQ(parseOutcome(parser_, good()), "parsed 3");
    }

    fs::path file(const std::string& name) const { return dir_.path() / name; }

    // A valid product with three keys.
    fs::path good() {
        return testsupport::writeFile(
            file("good.settings"),
            readingtest::document(readingtest::key("a", "<int32><value>1</value></int32>") +
                                  readingtest::key("b", "<string><value>x</value></string>") +
                                  readingtest::key("c", "<bool><value>true</value></bool>")));
    }

    // Each case in a child: the outcome must start as expected, within the limits; `after`,
    // when given, is parsed next by the same parser and must give `afterExpected`.
    void expectRefusedWithinLimits(const std::vector<Case>& cases, const fs::path& after = {},
                                   const std::string& afterExpected = {}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(c.name);
            const ChildReport report = runMeasuredInChild([&] {
                std::string outcome = parseOutcome(parser_, c.file);
                if (!after.empty()) {
                    outcome += " | then " + parseOutcome(parser_, after);
                }
                return outcome;
            });
            ASSERT_EQ(report.kind, ChildReport::Kind::Returned)
                << kindName(report.kind) << ": " << report.text;
            EXPECT_THAT(report.text, StartsWith(c.expected));
            if (!after.empty()) {
                EXPECT_THAT(report.text, HasSubstr(" | then " + afterExpected));
            }
            EXPECT_LT(report.cpuMs, cpuLimitMs);
            EXPECT_LT(report.memoryGrowthKiB, memoryLimitKiB);
            std::cout << "[ measured ] " << c.name << ": " << report.cpuMs << " ms CPU, +"
                      << report.memoryGrowthKiB << " KiB peak; " << report.text.substr(0, 90)
                      << "\n";
        }
    }

    testsupport::TempDir dir_;
    sc::SettingsFileParser parser_;
};

TEST_F(HostileParseTest, DocumentTypeDeclarationsAreRefusedBeforeAnyEntityIsRead) {
    // A billion expansions of "lol" from a file of under a kilobyte.
    std::string laughs = "<!ENTITY lol0 \"lol\">\n";
    for (int level = 1; level <= 9; ++level) {
        std::string body;
        for (int i = 0; i < 10; ++i) {
            body += "&lol" + std::to_string(level - 1) + ";";
        }
        laughs += "<!ENTITY lol" + std::to_string(level) + " \"" + body + "\">\n";
    }
    const auto withDoctype = [&](const std::string& name, const std::string& doctype,
                                 const std::string& value) {
        return FileWriter(file(name))
            .text(std::string(declaration) + doctype + "<settings name=\"p\"" + settingsNamespace +
                  "><key name=\"k\"><string><value>" + value + "</value></string></key>" +
                  "</settings>\n")
            .done();
    };
    // Reading a named pipe that nobody writes to blocks for ever: an external subset or
    // entity read from one turns into a hang that the child's patience catches.
    const fs::path pipe = file("never-written.fifo");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string big(100000, 'x');

    expectRefusedWithinLimits(
        {
            {"billion laughs",
             withDoctype("laughs.settings", "<!DOCTYPE settings [\n" + laughs + "]>\n", "&lol9;"),
             noDoctype},
            {"one big entity used a hundred thousand times",
             FileWriter(file("quadratic.settings"))
                 .text(std::string(declaration) + "<!DOCTYPE settings [<!ENTITY big \"" + big +
                       "\">]>\n<settings name=\"p\"" + settingsNamespace +
                       "><key name=\"k\"><string><value>")
                 .repeat("&big;", 100000)
                 .text("</value></string></key></settings>\n")
                 .done(),
             noDoctype},
            {"external subset that never ends",
             withDoctype("subset.settings",
                         "<!DOCTYPE settings SYSTEM \"" + pipe.string() + "\">\n", "v"),
             noDoctype},
            {"external entity that never ends",
             withDoctype("entity.settings",
                         "<!DOCTYPE settings [<!ENTITY e SYSTEM \"" + pipe.string() + "\">]>\n",
                         "&e;"),
             noDoctype},
            {"public identifier only",
             withDoctype("public.settings",
                         "<!DOCTYPE settings PUBLIC \"-//x//y\" \"" + pipe.string() + "\">\n", "v"),
             noDoctype},
            // Without a subset a declaration can declare nothing and names nothing to read:
            // the parser does not even report it, and it does no harm.
            {"bare declaration", withDoctype("bare.settings", "<!DOCTYPE settings>\n", "v"),
             "parsed 1"},
        },
        good(), "parsed 3");
}

TEST_F(HostileParseTest, NestingIsAdmittedUpToTheLimitAndRefusedBelowIt) {
    // The document element is level 1: `groups` nested groups below it reach level groups + 1.
    const auto nested = [&](const std::string& name, const std::string& open,
                            const std::string& close, std::size_t count) {
        return FileWriter(file(name))
            .text(std::string(declaration) + "<settings name=\"p\"" + settingsNamespace + ">")
            .repeat(open, count)
            .repeat(close, count)
            .text("</settings>\n")
            .done();
    };
    const std::string group = "<settings name=\"g\">";
    expectRefusedWithinLimits(
        {
            {"a million groups", nested("groups.settings", group, "</settings>", 1000000), tooDeep},
            {"a million keys", nested("keys.settings", "<key name=\"k\">", "</key>", 1000000),
             tooDeep},
            {"257 levels", nested("deep257.settings", group, "</settings>", 256), tooDeep},
            {"256 levels", nested("deep256.settings", group, "</settings>", 255), "parsed 1"},
        },
        good(), "parsed 3");

    // The deepest admitted file is read whole.
    sc::SettingsFileParser parser;
    const auto top = parser.parse(file("deep256.settings").wstring());
    std::string path = "g";
    for (int level = 3; level <= 256; ++level) {
        path += ".g";
    }
    EXPECT_TRUE(top->getNodeByPath(path));
    EXPECT_TRUE(top->getNodeByPath(path)->getChildren().empty());
}

TEST_F(HostileParseTest, OversizedAttributesTagsAndTextsRunOutOfParserMemoryAndTheParserGoesOn) {
    const std::string top = std::string(declaration) + "<settings";
    const std::string typeOpen = "><key name=\"k\"><string><value>";
    const std::string typeClose = "</value></string></key></settings>\n";
    expectRefusedWithinLimits(
        {
            {"50 MB undeclared attribute",
             FileWriter(file("junk.settings"))
                 .text(top + " name=\"p\"" + settingsNamespace + " junk=\"")
                 .repeat("A", fiftyMegabytes)
                 .text("\"/>\n")
                 .done(),
             tooBig},
            {"50 MB name, which the schema admits",
             FileWriter(file("name.settings"))
                 .text(top + settingsNamespace + " name=\"")
                 .repeat("N", fiftyMegabytes)
                 .text("\"/>\n")
                 .done(),
             tooBig},
            // The first is unknown to the schema, yet the parser reads them all before it looks.
            {"a million undeclared attributes",
             FileWriter(file("attributes.settings"))
                 .text(top + " name=\"p\"" + settingsNamespace)
                 .text([] {
                     std::string many;
                     many.reserve(12u << 20);
                     for (int i = 0; i < 1000000; ++i) {
                         many += " a" + std::to_string(i) + "=\"\"";
                     }
                     return many;
                 }())
                 .text("/>\n")
                 .done(),
             tooBig},
            {"a million namespace declarations, which no schema checks",
             FileWriter(file("namespaces.settings"))
                 .text(top + " name=\"p\"" + settingsNamespace)
                 .text([] {
                     std::string many;
                     many.reserve(18u << 20);
                     for (int i = 0; i < 1000000; ++i) {
                         many += " xmlns:n" + std::to_string(i) + "=\"u\"";
                     }
                     return many;
                 }())
                 .text("/>\n")
                 .done(),
             tooBig},
            {"50 MB value",
             FileWriter(file("value.settings"))
                 .text(top + " name=\"p\"" + settingsNamespace + typeOpen)
                 .repeat("v", fiftyMegabytes)
                 .text(typeClose)
                 .done(),
             tooLong},
            {"50 MB comment",
             FileWriter(file("comment.settings"))
                 .text(top + " name=\"p\"" + settingsNamespace + "><!--")
                 .repeat("<c>", fiftyMegabytes / 3)
                 .text("--></settings>\n")
                 .done(),
             tooBig},
        },
        good(), "parsed 3");
}

TEST_F(HostileParseTest, TextsUpToTheLimitAreReadWholeAndOneCharacterMoreIsRefused) {
    // A mebi-character: far beyond any real setting, yet inside both limits.
    const auto valueFile = [&](const std::string& name, std::size_t length) {
        return FileWriter(file(name))
            .text(std::string(declaration) + "<settings name=\"p\"" + settingsNamespace +
                  "><key name=\"k\"><string><value>")
            .repeat("v", length - 1)
            .text("<![CDATA[w]]></value></string></key></settings>\n")
            .done();
    };
    const auto top = parser_.parse(valueFile("limit.settings", 1u << 20).wstring());
    const auto value = readingtest::stored(top, "k");
    ASSERT_TRUE(value);
    const auto text = boost::any_cast<std::wstring>(*value);
    EXPECT_EQ(text.size(), 1u << 20);
    EXPECT_EQ(text.back(), L'w');

    expectRefusedWithinLimits({{"one over", valueFile("over.settings", (1u << 20) + 1), tooLong}},
                              good(), "parsed 3");
}

TEST_F(HostileParseTest, BrokenFilesFailAsParseErrorsQuickly) {
    std::string valid = std::string(declaration) + "<settings name=\"p\"" + settingsNamespace + ">";
    for (int i = 0; i < 1000; ++i) {
        valid += "<key name=\"k" + std::to_string(i) + "\"><int32><value>" + std::to_string(i) +
                 "</value></int32></key>\n";
    }
    valid += "</settings>\n";
    std::mt19937 random(20240611);
    std::string noise(1u << 20, '\0');
    for (char& c : noise) {
        c = static_cast<char>(random());
    }
    const std::string latin1Value = "caf\xe9 cr\xe8me";
    const std::string latin1 = "<settings name=\"p\"" + std::string(settingsNamespace) +
                               "><key name=\"k\"><string><value>" + latin1Value +
                               "</value></string></key></settings>\n";
    expectRefusedWithinLimits(
        {
            {"truncated in a tag",
             testsupport::writeFile(file("truncated.settings"), valid.substr(0, valid.size() / 2)),
             parseError},
            {"truncated before the end tag",
             testsupport::writeFile(
                 file("unclosed.settings"),
                 valid.substr(0, valid.size() - std::string("</settings>\n").size())),
             parseError},
            {"0 bytes", testsupport::writeFile(file("empty.settings"), ""), parseError},
            {"NUL bytes",
             FileWriter(file("nul.settings")).repeat(std::string(1, '\0'), 1u << 20).done(),
             parseError},
            {"noise", testsupport::writeFile(file("noise.settings"), noise), parseError},
            {"Latin-1 declared as UTF-8",
             testsupport::writeFile(file("latin1.settings"), declaration + latin1), parseError},
            {"Latin-1 without declaration",
             testsupport::writeFile(file("latin1-bare.settings"), latin1), parseError},
        },
        good(), "parsed 3");
}

}  // namespace
}  // namespace hostiletest
