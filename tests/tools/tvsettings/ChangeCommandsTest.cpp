// The changing commands of the real binary: set and reset persisted in the user files and
// read back by later runs, export and import through real files, check of good and broken
// files.
#include "ToolHarness.hpp"

#include <gmock/gmock.h>

using ::testing::HasSubstr;
using ::testing::Not;

namespace tvsettingstest {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

// The text of key `name`'s element in a settings file, up to its closing tag.
std::string keyElement(const std::string& file, const std::string& name) {
    const std::string::size_type start = file.find("<key name=\"" + name + "\"");
    if (start == std::string::npos) {
        return std::string();
    }
    return file.substr(start, file.find("</key>", start) - start);
}

TEST_F(ToolTest, SetWritesTheUserFileAndALaterRunReadsIt) {
    const ToolResult set = run({"set", "editor.tabWidth", "8"});
    ASSERT_EQ(set.exitCode, 0) << set.err;
    EXPECT_EQ(set.out, "editor.tabWidth = 8  (set at level user)\n");
    const std::string userFile = testsupport::readFile(userDir() / "editor.settings");
    EXPECT_THAT(keyElement(userFile, "tabWidth"), HasSubstr("<value>8</value>"));
    EXPECT_EQ(run({"get", "editor.tabWidth"}).out, "8\n");
    EXPECT_EQ(run({"get", "editor.tabWidth", "--level", "factory"}).out, "4\n");

    // Every kind of value, each read back by a second process.
    struct Case {
        std::vector<std::string> values;
        std::string key;
        std::string readBack;
    };
    const std::vector<Case> cases = {
        {{"-5", "5"}, "plotting.axisLimits", "-5.0\n5.0\n"},  // negative numbers are values
        {{"true", "0", "1"}, "plotting.axesVisible", "true\nfalse\ntrue\n"},
        {{"--", "-60"}, "plotting.timeAxisOffset", "-60\n"},
        {{"12.1"}, "plotting.markerSize", "12.1\n"},  // a float's shortest decimal
        {{"hello world"}, "plotting.userAnnotation", "hello world\n"},  // any type: text
        {{}, "editor.recentFiles", ""},                                 // empty array
        {{"caf\u00e9 & <tag>"}, "editor.fontName", "caf\u00e9 & <tag>\n"},
        {{"secant"}, "solver.method", "secant\n"},  // the solver had no user file
    };
    for (const Case& c : cases) {
        std::vector<std::string> args = {"set", c.key};
        args.insert(args.end(), c.values.begin(), c.values.end());
        const ToolResult result = run(args);
        EXPECT_EQ(result.exitCode, 0) << c.key << ": " << result.err;
        EXPECT_EQ(run({"get", c.key}).out, c.readBack) << c.key;
    }
    EXPECT_TRUE(fs::exists(userDir() / "solver.settings"));
    EXPECT_EQ(run({"products", "--json"}).outJson()["products"][2]["files"]["user"][0],
              (userDir() / "solver.settings").string());

    // A session value lives as long as its process.
    EXPECT_EQ(run({"set", "editor.tabWidth", "3", "--level", "session"}).exitCode, 0);
    EXPECT_EQ(run({"get", "editor.tabWidth"}).out, "8\n");

    const Json json = run({"set", "editor.autoSave", "false", "--json"}).outJson();
    EXPECT_EQ(json["value"], false);
    EXPECT_EQ(json["effective"], Json::parse(R"({"value": false, "level": "user"})"));
}

TEST_F(ToolTest, ResetClearsOnlyTheLevelAskedFor) {
    const ToolResult reset = run({"reset", "editor.tabWidth"});
    ASSERT_EQ(reset.exitCode, 0) << reset.err;
    EXPECT_EQ(reset.out, "editor.tabWidth: value at level user removed; now 4  (factory)\n");
    EXPECT_THAT(keyElement(testsupport::readFile(userDir() / "editor.settings"), "tabWidth"),
                Not(HasSubstr("<value>")));
    EXPECT_EQ(run({"get", "editor.tabWidth"}).out, "4\n");

    const ToolResult again = run({"reset", "editor.tabWidth", "--level", "user"});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_EQ(again.errorClass(), "ValueNotDefinedForGivenLevel");
    const ToolResult factory = run({"reset", "editor.tabWidth", "--level", "factory"});
    EXPECT_EQ(factory.exitCode, 2);
    EXPECT_EQ(run({"get", "editor.tabWidth"}).out, "4\n");
}

TEST_F(ToolTest, ExportThenImportBringsValuesBack) {
    ASSERT_EQ(run({"set", "editor.tabWidth", "6"}).exitCode, 0);
    ASSERT_EQ(run({"set", "editor.colors.background", "beige"}).exitCode, 0);
    const std::string file = path("saved.settings").string();
    const ToolResult exported = run({"export", "editor.tabWidth", "editor.colors", "--file", file});
    ASSERT_EQ(exported.exitCode, 0) << exported.err;
    EXPECT_THAT(keyElement(testsupport::readFile(file), "tabWidth"), HasSubstr("<value>6</value>"));
    EXPECT_THAT(testsupport::readFile(file), Not(HasSubstr("fontSize")));  // only what was asked
    EXPECT_EQ(run({"check", file}).exitCode, 0);

    ASSERT_EQ(run({"reset", "editor.tabWidth"}).exitCode, 0);
    ASSERT_EQ(run({"set", "editor.colors.background", "gray"}).exitCode, 0);
    const Json imported = run({"import", file, "--json"}).outJson();
    EXPECT_EQ(imported["into"], "editor");
    EXPECT_EQ(imported["changed"], Json::parse(R"([
        {"path": "editor.colors.background", "before": "gray", "after": "beige"},
        {"path": "editor.tabWidth", "before": 4, "after": 6}])"));
    EXPECT_EQ(run({"get", "editor.tabWidth"}).out, "6\n");  // persisted by the merge

    // Into one group only: the other values of the file stay out.
    ASSERT_EQ(run({"reset", "editor.tabWidth"}).exitCode, 0);
    ASSERT_EQ(run({"set", "editor.colors.background", "gray"}).exitCode, 0);
    const ToolResult intoGroup = run({"import", file, "--into", "editor.colors"});
    EXPECT_EQ(intoGroup.exitCode, 0) << intoGroup.err;
    EXPECT_EQ(run({"get", "editor.colors.background"}).out, "beige\n");
    EXPECT_EQ(run({"get", "editor.tabWidth"}).out, "4\n");
}

TEST_F(ToolTest, ImportAndExportRefuseWhatTheyCannotDo) {
    const std::string before = testsupport::readFile(userDir() / "editor.settings");
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        std::string errorClass;
    };
    testsupport::writeFile(path("broken.settings"), "<settings name=\"editor\">\n<key>\n");
    testsupport::writeFile(
        path("badchoice.settings"),
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<settings name=\"editor\" "
        "xmlns=\"urn:lindqvare.tolvan.settings\"><key name=\"lineEnding\"><string><value>LFCR"
        "</value></string></key><key name=\"tabWidth\"><int32><value>5</value></int32></key>"
        "</settings>\n");
    const std::vector<Case> cases = {
        {{"export", "editor.tabWidth", "--file", "relative.settings"},
         3,
         "ErrorExportOrImportSettingsUsingRelativePath"},
        {{"export", "editor.tabWidth", "solver.method", "--file", path("x.settings").string()},
         1,
         "ErrorExportMultipleNodesBelongsToDiffProducts"},
        {{"export", "editor.nothing", "--file", path("x.settings").string()}, 1, "UnknownPath"},
        {{"import", "relative.settings"}, 3, "ErrorExportOrImportSettingsUsingRelativePath"},
        {{"import", path("missing.settings").string()}, 3, "FileNotReadable"},
        {{"import", path("broken.settings").string()}, 2, "ErrorReadingSettingsData"},
        {{"import", path("badchoice.settings").string()},
         2,
         "ValueIsNotOneOfTheChoicesAndNotInRange"},
        {{"import", (userDir() / "editor.settings").string(), "--into", "solver"},
         2,
         "ImportOfAnotherProduct"},
    };
    for (const Case& c : cases) {
        const ToolResult result = run(c.args);
        EXPECT_EQ(result.exitCode, c.exitCode) << c.args[1] << ": " << result.err;
        EXPECT_EQ(result.errorClass(), c.errorClass) << result.err;
    }
    EXPECT_FALSE(fs::exists(path("relative.settings")));
    EXPECT_FALSE(fs::exists(path("x.settings")));
    // A refused merge changes nothing, not even the values of the file that were fine.
    EXPECT_EQ(testsupport::readFile(userDir() / "editor.settings"), before);
}

TEST_F(ToolTest, CheckReportsEachProblemWithFileLineAndColumn) {
    std::string content =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<settings name=\"p\" xmlns=\"urn:lindqvare.tolvan.settings\">\n";
    for (int line = 3; line < 12; ++line) {
        content += "  <!-- filler -->\n";
    }
    const std::string broken = "  <key name=\"z\"><int32><value>1</value></int32></kee>";
    content += broken + "\n</settings>\n";
    testsupport::writeFile(path("tag.settings"), content);
    testsupport::writeFile(path("value.settings"),
                           "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<settings name=\"p\" "
                           "xmlns=\"urn:lindqvare.tolvan.settings\"><key name=\"a\"><int8><value>"
                           "abc</value></int8></key></settings>\n");
    const std::string good = (factoryDir() / "solver" / "solver.settings").string();

    const ToolResult text = run({"check", good, "tag.settings", "value.settings"});
    EXPECT_EQ(text.exitCode, 2);
    EXPECT_THAT(text.out, HasSubstr(good + ": ok (product solver)\n"));
    // The reader points at the name of the wrong closing tag, on line 12 (line 1 is the
    // declaration); its column comes without the line's digits in front.
    const std::string column = std::to_string(broken.find("kee>") + 1);
    EXPECT_THAT(text.out, HasSubstr("tag.settings:12:" + column +
                                    ": ErrorReadingSettingsData: expected end of tag 'key'\n"));
    EXPECT_THAT(text.out, HasSubstr("value.settings: ErrorReadingSettingsData: The text \"abc\" "
                                    "is not a value of type int8"));

    const Json json =
        run({"check", "value.settings", "tag.settings", "absent.settings", "--json"}).outJson();
    ASSERT_EQ(json["files"].size(), 3u);
    EXPECT_FALSE(json["files"][0]["problems"][0].contains("line"));
    EXPECT_EQ(json["files"][1]["problems"][0]["line"], 12);
    EXPECT_EQ(json["files"][2]["problems"][0]["class"], "FileNotReadable");
    EXPECT_EQ(run({"check", "absent.settings"}).exitCode, 3);
    EXPECT_EQ(run({"check", good}).exitCode, 0);
}

TEST_F(ToolTest, ABrokenProductFileIsSkippedWithAWarning) {
    testsupport::writeFile(userDir() / "editor.settings", "<settings name=\"editor\">\n<oops\n");
    const ToolResult get = run({"get", "editor.tabWidth"});
    EXPECT_EQ(get.exitCode, 0) << get.err;
    EXPECT_EQ(get.out, "4\n");  // the factory's value
    EXPECT_THAT(get.err, HasSubstr("warning: skipped " + (userDir() / "editor.settings").string()));
    const Json tree = run({"tree", "--json"}).outJson();
    EXPECT_EQ(tree["children"].size(), 3u);
    EXPECT_EQ(tree["warnings"].size(), 1u);
}

}  // namespace
}  // namespace tvsettingstest
