// Hostile files given to the parser, each in a child process of its own: each fails with the
// reader's failure class within the CPU and memory limits, nothing crashes or hangs, and the
// same parser reads a good file next. The files just inside each limit are read whole.
#include "Hostile.hpp"

#include <sys/stat.h>

#include <iostream>

namespace hostiletest {
namespace {

using ::testing::StartsWith;

TEST(HostileParseTest, EveryHostileFileFailsWithinTheLimitsAndTheParserGoesOn) {
    testsupport::TempDir dir;
    const auto file = [&](const std::string& name) { return dir.path() / (name + ".settings"); };
    const std::string element = "<settings name=\"p\"" + std::string(settingsNamespace);
    const std::string value = "><key name=\"k\"><string><value>";
    const std::string valueEnd = "</value></string></key></settings>\n";
    const auto withDoctype = [&](const std::string& doctype, const std::string& text) {
        return declaration + doctype + element + value + text + valueEnd;
    };
    const auto nested = [&](const std::string& open, const std::string& close, std::size_t n) {
        return std::vector<Piece>{
            declaration + element + ">", {open, n}, {close, n}, "</settings>\n"};
    };
    // 800,000 attributes `prefix`<i>="u" in the document element (a file under 16 MiB).
    const auto numbered = [&](const std::string& prefix) {
        std::string text = declaration + element;
        for (int i = 0; i < 800000; ++i) {
            text += " " + prefix + std::to_string(i) + "=\"u\"";
        }
        return text + "/>\n";
    };
    std::string valid = declaration + element + ">";
    for (int i = 0; i < 1000; ++i) {
        valid += "<key name=\"k" + std::to_string(i) + "\"><int32><value>" + std::to_string(i) +
                 "</value></int32></key>\n";
    }
    valid += "</settings>\n";
    const std::string latin1 = element + value + "caf\xe9 cr\xe8me" + valueEnd;
    // Reading a named pipe that nobody writes to blocks for ever: an external subset or entity
    // read from one would be a hang.
    const std::string pipe = (dir.path() / "never-written.fifo").string();
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string group = "<settings name=\"g\">";
    // Files are read whole, up to 16 MiB: a hostile item that the parser's budget stops is
    // tried in a file of 15 MB (30 MB of parser text), a bigger file is refused unread.
    const std::size_t fifteenMegabytes = 15u << 20, mebi = 1u << 20;
    const std::string parsed = "parsed 1", parseError = "code 4: LineNum=";

    const std::tuple<std::string, fs::path, std::string> cases[] = {
        // Entities are refused with the declaration, before any is read or expanded. A bare
        // declaration can declare nothing and names nothing to read: it passes unreported.
        {"billion laughs",
         writePieces(file("laughs"),
                     {withDoctype("<!DOCTYPE settings [\n" + billionLaughs() + "]>\n", "&lol9;")}),
         "code 5: " + noDoctype},
        {"external subset that never ends",
         writePieces(file("subset"),
                     {withDoctype("<!DOCTYPE settings SYSTEM \"" + pipe + "\">", "v")}),
         "code 5: " + noDoctype},
        {"external entity that never ends",
         writePieces(
             file("entity"),
             {withDoctype("<!DOCTYPE settings [<!ENTITY e SYSTEM \"" + pipe + "\">]>", "&e;")}),
         "code 5: " + noDoctype},
        {"bare declaration", writePieces(file("bare"), {withDoctype("<!DOCTYPE settings>", "v")}),
         parsed},
        // The document element is level 1.
        {"300,000 groups", writePieces(file("groups"), nested(group, "</settings>", 300000)),
         "code 5: " + tooDeep},
        {"257 levels", writePieces(file("deep257"), nested(group, "</settings>", 256)),
         "code 5: " + tooDeep},
        {"256 levels", writePieces(file("deep256"), nested(group, "</settings>", 255)), parsed},
        // The parser reads every attribute of a tag (the first undeclared one too) before it
        // looks at any; no schema checks namespace declarations.
        {"15 MB undeclared attribute",
         writePieces(file("junk"),
                     {declaration + element + " junk=\"", {"A", fifteenMegabytes}, "\"/>"}),
         "code 5: " + tooBig},
        {"17 MB file",
         writePieces(file("huge"), {declaration + element + " junk=\"", {"A", 17 * mebi}, "\"/>"}),
         "code 4: LineNum=0  ColNum=00  read failed"},
        {"800,000 undeclared attributes", writePieces(file("attributes"), {numbered("a")}),
         "code 5: " + tooBig},
        {"800,000 namespace declarations", writePieces(file("namespaces"), {numbered("xmlns:n")}),
         "code 5: " + tooBig},
        {"15 MB comment",
         writePieces(
             file("comment"),
             {declaration + element + "><!--", {"<c>", fifteenMegabytes / 3}, "--></settings>"}),
         "code 5: " + tooBig},
        {"15 MB value",
         writePieces(file("value"),
                     {declaration + element + value, {"v", fifteenMegabytes}, valueEnd}),
         "code 5: " + tooLong},
        // A mebi-character text: far beyond any real setting, yet inside both limits.
        {"text at the limit",
         writePieces(file("limit"),
                     {declaration + element + value, {"v", mebi - 1}, "<![CDATA[w]]>" + valueEnd}),
         parsed},
        {"text one over",
         writePieces(file("over"),
                     {declaration + element + value, {"v", mebi}, "<![CDATA[w]]>" + valueEnd}),
         "code 5: " + tooLong},
        {"truncated in a tag",
         testsupport::writeFile(file("truncated"), valid.substr(0, valid.size() / 2)), parseError},
        {"0 bytes", testsupport::writeFile(file("empty"), ""), parseError},
        {"NUL bytes", writePieces(file("nul"), {{std::string(1, '\0'), mebi}}), parseError},
        {"Latin-1 declared as UTF-8", testsupport::writeFile(file("latin1"), declaration + latin1),
         parseError},
    };

    // The parser library is started and the schema compiled here, so that each child measures
    // its one parse and nothing else.
    sc::SettingsFileParser parser;
    const fs::path good = testsupport::writeFile(
        file("good"), readingtest::document(readingtest::key("a", "<int32/>") +
                                            readingtest::key("b", "<string/>") +
                                            readingtest::key("c", "<bool/>")));
    ASSERT_EQ(parseOutcome(parser, good), "parsed 3");
    for (const auto& [name, hostile, expected] : cases) {
        SCOPED_TRACE(name);
        const ChildReport report = runMeasuredInChild([&, hostile = hostile] {
            return parseOutcome(parser, hostile) + " | then " + parseOutcome(parser, good);
        });
        ASSERT_TRUE(report.returned) << report.text;
        EXPECT_THAT(report.text, StartsWith(expected));
        EXPECT_THAT(report.text, ::testing::EndsWith(" | then parsed 3"));
        EXPECT_LT(report.cpuMs, cpuLimitMs);
        EXPECT_LT(report.memoryGrowthKiB, memoryLimitKiB);
        std::cout << "[ measured ] " << name << ": " << report.cpuMs << " ms CPU, +"
                  << report.memoryGrowthKiB << " KiB peak; " << report.text.substr(0, 90) << "\n";
    }

    // What is admitted is read whole.
    std::string path = "g";
    for (int level = 3; level <= 256; ++level) {
        path += ".g";
    }
    const auto deepest = parser.parse(file("deep256").wstring())->getNodeByPath(path);
    ASSERT_TRUE(deepest);
    EXPECT_TRUE(deepest->getChildren().empty());
    const auto text = readingtest::stored(parser.parse(file("limit").wstring()), "k");
    ASSERT_TRUE(text);
    EXPECT_EQ(boost::any_cast<std::wstring>(*text), std::wstring(mebi - 1, L'v') + L"w");
}

}  // namespace
}  // namespace hostiletest
