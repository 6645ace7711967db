// The parser as a whole: the paths a file names, one parser across files and failures, the
// schema location, parsers on several threads at once, and the sample products of examples/.
#include "ReadingFixture.hpp"

#include "settingscore/core/callouts/CalloutTestSupport.hpp"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <set>
#include <thread>

namespace readingtest {
namespace {

namespace fs = std::filesystem;

// Calls `visit` on `node` and on every node below it.
template <class Visit>
void walk(const SettingsPtr& node, const Visit& visit) {
    visit(sc::SettingsImpl::implOf(node));
    for (const auto& child : node->getChildren()) {
        walk(child, visit);
    }
}

// Equal as far as a file tells: names, kinds, type codes, values, children.
bool sameTree(const SettingsPtr& a, const SettingsPtr& b) {
    const auto x = sc::SettingsImpl::implOf(a);
    const auto y = sc::SettingsImpl::implOf(b);
    const auto xs = a->getChildren();
    const auto ys = b->getChildren();
    const auto xv = NodeBuilder::getStoredValue(*x, "user");
    const auto yv = NodeBuilder::getStoredValue(*y, "user");
    if (x->getFullName() != y->getFullName() || x->isKey() != y->isKey() ||
        NodeBuilder::getTypeCode(*x) != NodeBuilder::getTypeCode(*y) || bool(xv) != bool(yv) ||
        (xv && !ba::isEqual(*xv, *yv)) || xs.size() != ys.size()) {
        return false;
    }
    for (std::size_t i = 0; i < xs.size(); ++i) {
        if (!sameTree(xs[i], ys[i])) {
            return false;
        }
    }
    return true;
}

std::vector<fs::path> sampleFiles() {
    std::vector<fs::path> files;
    for (const auto& entry :
         fs::recursive_directory_iterator(fs::path(SETTINGSCORE_SOURCE_ROOT) / "examples")) {
        if (entry.path().extension() == ".settings") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

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
                           "bad2.settings")),
        ErrorReadingSettingsData);
    const SettingsPtr second =
        parser.parse(write(document(key("k", "<int8><value>2</value></int8>") +
                                    "<additionalpath>d.settings</additionalpath>"),
                           "second.settings"));
    ASSERT_TRUE(second);
    EXPECT_NE(second, first);
    EXPECT_TRUE(storesValue(first, "k", static_cast<signed char>(1)));
    EXPECT_TRUE(storesValue(second, "k", static_cast<signed char>(2)));
    EXPECT_EQ(second->getChildren().size(), 1u);

    std::vector<std::wstring> rest;
    while (parser.popAdditionalPath(path)) {
        rest.push_back(path);
    }
    EXPECT_EQ(rest, (std::vector<std::wstring>{L"d.settings", L"sub/b.settings", L"a.settings"}));
    EXPECT_FALSE(parser.popAdditionalPath(path));
    EXPECT_EQ(path, L"a.settings");  // untouched when nothing is left
}

TEST_F(ReadingTest, TheSchemaIsFoundBelowARootWithBlanksAndEnforced) {
    {
        // Every white-space character becomes "%20", which only a blank survives.
        const InstallRootGuard guard((dir_.path() / "a\tb\nc d").wstring());
        EXPECT_EQ(sc::SettingsFileParser::schemaLocation(),
                  "urn:lindqvare.tolvan.settings " + dir_.path().string() +
                      "/a%20b%20c%20d/toolbox/tolvan/configtools/settings.xsd");
    }
    const fs::path root = dir_.path() / "Program Files" / "TOLVAN  R2041b";
    const InstallRootGuard guard(root.wstring());
    EXPECT_THAT(sc::SettingsFileParser::schemaLocation(),
                ::testing::HasSubstr("/Program%20Files/TOLVAN%20%20R2041b/toolbox/"));

    // Without a schema no file is valid; with it in place the same file reads.
    const std::string valid = document(key("k", "<uint16><value>5</value></uint16>"));
    const auto noSchema = readError(valid);
    EXPECT_EQ(noSchema.getErrorCode(), ErrorReadingSettingsData::ParseError);
    // The parser warns first that the schema cannot be opened; warnings are ignored, so the
    // failure is the error that follows, at the document element.
    EXPECT_THAT(detailText(noSchema), ::testing::HasSubstr("no declaration found"));
    installSchema(root, builtSchema());
    EXPECT_TRUE(storesValue(parse(valid), "k", static_cast<unsigned short>(5)));
    EXPECT_EQ(
        readError(document(key("k", "<uint16 undef=\"true\"><bogus/></uint16>"))).getErrorCode(),
        ErrorReadingSettingsData::ParseError);
}

constexpr char childVariable[] = "READINGTEST_CHILD";

// The sample files name the library's own self-test callouts, and some of them run while a
// file is read: a group's validator checks each key with a value that is attached below it.
// Their package "settingscore" is found on the loader's search path, which counts only when a
// process starts (and which a sanitizer's interception of the loader narrows), so the tests
// that need it run in a child process of this program with the build's library folder on it.
TEST(ReadingWithSelfTestCallouts, RunInAChildWithTheLibraryOnTheLoaderPath) {
    const callouttest::ChildResult child = callouttest::runThisProgram(
        "ReadingChildTest.*",
        std::string(childVariable) + "=1 LD_LIBRARY_PATH='" + SETTINGSCORE_BUILD_ROOT + "/lib'");
    EXPECT_EQ(0, child.exitCode) << child.output;
    // Guards against a filter that matches nothing and so passes.
    EXPECT_THAT(child.output, ::testing::HasSubstr("[  PASSED  ] 3 tests")) << child.output;
}

class ReadingChildTest : public ReadingTest {
protected:
    void SetUp() override {
        if (!std::getenv(childVariable)) {
            GTEST_SKIP() << "runs in the child of ReadingWithSelfTestCallouts";
        }
    }
};

TEST_F(ReadingChildTest, ARunTimeDefaultFromAFileRunsTheSelfTestFunction) {
    const SettingsPtr top = parse(
        document(key("color",
                     "<string><runtimedefault type='C' packagename='settingscore' functionname="
                     "'tvutil_settings_unittest_only_RunTime_positive_blue_color'/></string>")));
    EXPECT_TRUE(ba::isEqual(nodeAt(top, "color")->readValue("user", true), std::wstring(L"blue")));
}

TEST_F(ReadingChildTest, ParsersOnSeveralThreadsBuildTheSameTrees) {
    const auto files = sampleFiles();
    std::vector<SettingsPtr> expected;
    for (const auto& file : files) {
        expected.push_back(sc::SettingsFileParser().parse(file.wstring()));
    }
    std::atomic<int> mismatches{0};
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            try {
                sc::SettingsFileParser parser;  // one parser per thread, reused
                for (int round = 0; round < 5; ++round) {
                    for (std::size_t i = 0; i < files.size(); ++i) {
                        if (!sameTree(parser.parse(files[i].wstring()), expected[i])) {
                            ++mismatches;
                        }
                    }
                }
            } catch (...) {
                ++failures;
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(mismatches.load(), 0);
    EXPECT_EQ(failures.load(), 0);
}

TEST_F(ReadingChildTest, EverySampleFileParsesAndTheProductsCoverTheFormat) {
    const auto files = sampleFiles();
    ASSERT_GE(files.size(), 6u);
    std::set<std::string> products;
    std::set<int> scalarCodes;
    std::set<int> arrayCodes;
    std::vector<std::wstring> named;
    for (const auto& file : files) {
        sc::SettingsFileParser parser;
        SettingsPtr top;
        ASSERT_NO_THROW(top = parser.parse(file.wstring())) << file;
        ASSERT_TRUE(top) << file;
        std::wstring path;
        while (parser.popAdditionalPath(path)) {
            named.push_back(path);
            EXPECT_TRUE(fs::exists(file.parent_path() / path)) << file;
        }
        if (file.parent_path().parent_path().filename() == "factory") {
            EXPECT_EQ(top->getName(), file.parent_path().filename().string()) << file;
            products.insert(top->getName());
            walk(top, [&](const boost::shared_ptr<sc::SettingsImpl>& node) {
                const auto bounds = NodeBuilder::getArraySizeBounds(*node);
                if (node->isKey() && bounds) {
                    const bool isArray =
                        bounds->getMinArraySize() != 1 || bounds->getMaxArraySize() != 1;
                    (isArray ? arrayCodes : scalarCodes)
                        .insert(NodeBuilder::getTypeCode(*node).value_or(0));
                }
            });
        }
    }
    EXPECT_GE(products.size(), 3u);
    for (int code = 1; code <= 12; ++code) {
        EXPECT_TRUE(scalarCodes.count(code)) << "no scalar key of type code " << code;
    }
    EXPECT_GE(arrayCodes.size(), 6u);
    EXPECT_FALSE(named.empty());

    // Spot checks against the text of the samples.
    const fs::path examples = fs::path(SETTINGSCORE_SOURCE_ROOT) / "examples";
    const SettingsPtr editor =
        sc::SettingsFileParser().parse((examples / "factory/editor/editor.settings").wstring());
    EXPECT_TRUE(storesValue(editor, "recentFiles", std::vector<std::wstring>()));
    EXPECT_TRUE(storesValue(editor, "display.gutter.markers.breakpointSize",
                            static_cast<unsigned char>(10)));
    EXPECT_FALSE(nodeAt(editor, "buildTag")->isVisible());
    EXPECT_TRUE(nodeAt(editor, "buildTag")->isReadOnly());
    EXPECT_EQ(nodeAt(editor, "colors")->getValidator().which(), 2);  // CValidator
    const SettingsPtr user =
        sc::SettingsFileParser().parse((examples / "user/editor.settings").wstring());
    EXPECT_TRUE(storesValue(user, "recentFiles",
                            std::vector<std::wstring>{L"/home/user/models/heat_transfer.tv",
                                                      L"/home/user/notes ]]> draft.txt"}));
    EXPECT_TRUE(storesValue(user, "tabWidth", 2));
    EXPECT_TRUE(storesNothing(user, "autoSave"));
    const SettingsPtr solver =
        sc::SettingsFileParser().parse((examples / "factory/solver/solver.settings").wstring());
    EXPECT_TRUE(storesNothing(solver, "weights"));
    EXPECT_TRUE(storesValue(solver, "schedulingPriority", static_cast<signed char>(-2)));
}

}  // namespace
}  // namespace readingtest
