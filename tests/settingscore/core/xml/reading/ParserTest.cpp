// The parser as a whole: the paths a file names, one parser across files, the shared compiled
// schema, and (in a child process) the sample products and parsers on several threads.
#include "ReadingFixture.hpp"

#include <sys/wait.h>

#include <atomic>
#include <cstdlib>
#include <regex>
#include <set>
#include <thread>

namespace readingtest {
namespace {

namespace fs = std::filesystem;
using SC = signed char;

TEST_F(ReadingTest, NamedFilesComeBackLastFirstAndOneParserServesManyFiles) {
    sc::SettingsFileParser parser;
    const SettingsPtr first = parser.parse(write(document(
        "<additionalpath>a.settings</additionalpath>" + key("k", "<int8><value>1</value></int8>") +
        "<additionalpath>sub/b.settings</additionalpath><additionalpath>/abs/c x.settings"
        "</additionalpath>")));
    std::wstring path;
    ASSERT_TRUE(parser.popAdditionalPath(path));
    EXPECT_EQ(path, L"/abs/c x.settings");
    // A failure in the middle of a document leaves the parser fit for the next file.
    EXPECT_THROW(
        parser.parse(write(document("<settings name=\"g\">" +
                                    key("k", "<int8><value>x</value></int8>") + "</settings>"),
                           "bad.settings")),
        ErrorReadingSettingsData);
    const SettingsPtr second =
        parser.parse(write(document(key("k", "<int8><value>2</value></int8>") +
                                    "<additionalpath>d.settings</additionalpath>"),
                           "second.settings"));
    EXPECT_TRUE(storesValue(first, "k", SC(1)));
    EXPECT_TRUE(storesValue(second, "k", SC(2)));
    std::vector<std::wstring> rest;
    while (parser.popAdditionalPath(path)) {
        rest.push_back(path);
    }
    EXPECT_EQ(rest, (std::vector<std::wstring>{L"d.settings", L"sub/b.settings", L"a.settings"}));
    EXPECT_EQ(path, L"a.settings");  // untouched when nothing is left
}

// Refused by the schema (code 4); the lax schema lets it through to the reader (code 5).
const std::string unknownType = document(key("k", "<colour/>"));
// Valid under both; the lax schema supplies no defaults, so the array sizes are spelt out.
const std::string valid =
    document(key("k", "<uint16 minArraySize=\"1\" maxArraySize=\"1\"><value>5</value></uint16>"));

class SchemaGrammarTest : public ReadingTest {
protected:
    // What a new parser makes of `text`: "ok", or "code <n>".
    std::string outcome(const std::string& text) {
        try {
            return storesValue(parse(text), "k", static_cast<unsigned short>(5)) ? "ok" : "wrong";
        } catch (const ErrorReadingSettingsData& failure) {
            return "code " + std::to_string(failure.getErrorCode());
        }
    }
};

TEST_F(SchemaGrammarTest, ASchemaReplacedRemovedOrBrokenOnDiskIsWhatTheNextParserSees) {
    {
        // Every white-space character becomes "%20", which only a blank survives.
        const InstallRootGuard guard((dir_.path() / "a\tb\nc  d").wstring());
        EXPECT_EQ(sc::SettingsFileParser::schemaLocation(),
                  "urn:lindqvare.tolvan.settings " + dir_.path().string() +
                      "/a%20b%20c%20%20d/toolbox/tolvan/configtools/settings.xsd");
    }
    const fs::path root = dir_.path() / "Program Files" / "TOLVAN  R2041b";
    const InstallRootGuard guard(root.wstring());
    installSchema(root, builtSchema());
    EXPECT_EQ(outcome(valid), "ok");
    EXPECT_EQ(outcome(unknownType), "code 4");
    installSchema(root, laxSchema);
    expectCodeFive(unknownType, messageText<TOLVAN::settings::core::XMLParserErrorIllegalTagName>(
                                    "k", "colour", "key"));
    // Gone: every parse fails (at the document element: the warning about the schema is
    // ignored); broken: no parse gets through; a good schema put back is taken up.
    fs::remove(root / "toolbox" / "tolvan" / "configtools" / "settings.xsd");
    for (int i = 0; i < 2; ++i) {
        EXPECT_THAT(detailText(readError(valid)), ::testing::HasSubstr("no declaration found"));
    }
    installSchema(root, "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"><xs:element");
    EXPECT_EQ(outcome(valid), "code 4");
    installSchema(root, builtSchema());
    EXPECT_EQ(outcome(valid), "ok");
    EXPECT_EQ(outcome(unknownType), "code 4");

    // More roots than the cache remembers, strict and lax in turn, each visited twice.
    std::vector<fs::path> roots;
    for (int i = 0; i < 12; ++i) {
        roots.push_back(dir_.path() / ("root " + std::to_string(i)));
        installSchema(roots.back(), i % 2 ? laxSchema : builtSchema());
    }
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < roots.size(); ++i) {
            const InstallRootGuard other(roots[i].wstring());
            EXPECT_EQ(outcome(valid), "ok") << roots[i];
            EXPECT_EQ(outcome(unknownType), i % 2 ? "code 5" : "code 4") << roots[i];
        }
    }
}

// Some of the self-test callouts the samples name run while a file is read. Their package is
// found on the loader path, which counts only when a process starts (and which a sanitizer's
// interception of the loader narrows): so the test runs again in a child with the library on it.
TEST_F(ReadingTest, SampleFilesCoverTheFormatAndParseTheSameOnSeveralThreads) {
    if (!std::getenv("READINGTEST_CHILD")) {
        const fs::path log = dir_.path() / "child.log";
        const int status = std::system(
            ("READINGTEST_CHILD=1 LD_LIBRARY_PATH='" + std::string(SETTINGSCORE_BUILD_ROOT) +
             "/lib' '" + fs::read_symlink("/proc/self/exe").string() +
             "' --gtest_filter='*SampleFilesCover*' > '" + log.string() + "' 2>&1")
                .c_str());
        const std::string output = testsupport::readFile(log);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << output;
        // Guards against a filter that matches nothing and so passes.
        EXPECT_THAT(output, ::testing::HasSubstr("[  PASSED  ] 1 test.")) << output;
        return;
    }
    const fs::path examples = fs::path(SETTINGSCORE_SOURCE_ROOT) / "examples";
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(examples)) {
        if (entry.path().extension() == ".settings") {
            files.push_back(entry.path());
        }
    }
    const fs::path root = dir_.path() / "root";
    const InstallRootGuard guard(root.wstring());
    installSchema(root, builtSchema());
    ASSERT_GE(files.size(), 6u);
    std::vector<SettingsPtr> trees;
    std::set<std::string> products;
    std::set<int> scalarCodes, arrayCodes;
    std::size_t named = 0;
    const std::regex keyLine(" key [^\n]* type=(\\d+) bounds=(\\d+)\\.\\.(\\d+)");
    for (const auto& file : files) {
        sc::SettingsFileParser parser;
        ASSERT_NO_THROW(trees.push_back(parser.parse(file.wstring()))) << file;
        for (std::wstring path; parser.popAdditionalPath(path); ++named) {
            EXPECT_TRUE(fs::exists(file.parent_path() / path)) << file;
        }
        if (file.parent_path().parent_path().filename() == "factory") {
            EXPECT_EQ(trees.back()->getName(), file.parent_path().filename().string()) << file;
            products.insert(trees.back()->getName());
            const std::string tree = describeTree(nodeAt(trees.back(), ""));
            for (std::sregex_iterator m(tree.begin(), tree.end(), keyLine), end; m != end; ++m) {
                const bool scalar = (*m)[2] == "1" && (*m)[3] == "1";
                (scalar ? scalarCodes : arrayCodes).insert(std::stoi((*m)[1]));
            }
        }
    }
    EXPECT_GE(products.size(), 3u);
    for (int code = 1; code <= 12; ++code) {
        EXPECT_TRUE(scalarCodes.count(code)) << "no scalar key of type code " << code;
    }
    EXPECT_GE(arrayCodes.size(), 6u);
    EXPECT_GT(named, 0u);
    // Spot checks: a hidden read-only key, a run-time default run, a string in two CDATA sections.
    const SettingsPtr editor =
        sc::SettingsFileParser().parse((examples / "factory/editor/editor.settings").wstring());
    EXPECT_THAT(describeTree(nodeAt(editor, "")),
                ::testing::HasSubstr("\neditor.buildTag key visible=0 readonly=1"));
    EXPECT_TRUE(ba::isEqual(nodeAt(editor, "colors.selection")->readValue("user", true),
                            std::wstring(L"blue")));
    EXPECT_TRUE(
        storesValue(sc::SettingsFileParser().parse((examples / "user/editor.settings").wstring()),
                    "recentFiles",
                    std::vector<std::wstring>{L"/home/user/models/heat_transfer.tv",
                                              L"/home/user/notes ]]> draft.txt"}));

    // Threads with a new parser (which looks the shared grammar up) per round, while the schema
    // is replaced by one file after another that a parser must compile anew.
    std::atomic<bool> stop{false};
    std::atomic<int> rounds{0}, wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            try {
                while (!stop.load() || rounds.load() < 8) {
                    sc::SettingsFileParser parser;
                    for (std::size_t i = 0; i < files.size(); ++i) {
                        wrong += sameTree(parser.parse(files[i].wstring()), trees[i]) ? 0 : 1;
                    }
                    ++rounds;
                }
            } catch (...) {
                ++wrong;
            }
        });
    }
    for (int swap = 0; swap < 40; ++swap) {
        installSchema(root, builtSchema() + "<!-- " + std::to_string(swap) + " -->\n");
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    stop = true;
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong.load(), 0);
}

}  // namespace
}  // namespace readingtest
