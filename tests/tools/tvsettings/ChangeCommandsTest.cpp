// The changing commands of the real binary: set and reset persisted in the user files and
// read back by later runs, export and import through real files, check of good and broken
// files.
#include "ToolHarness.hpp"

namespace tvsettingstest {
namespace {

using ::testing::Not;

// The text of key `name`'s element in a settings file, up to its closing tag.
std::string keyElement(const std::string& file, const std::string& name) {
    const std::string::size_type start = file.find("<key name=\"" + name + "\"");
    if (start == std::string::npos) {
        return std::string();
    }
    return file.substr(start, file.find("</key>", start) - start);
}

TEST_F(ToolTest, SetAndResetChangeTheUserFileAndLaterRunsReadIt) {
    const ToolResult set = run("set editor.tabWidth 8");
    ASSERT_EQ(set.exitCode, 0) << set.err;
    EXPECT_EQ(set.out, "editor.tabWidth = 8  (set at level user)\n");
    EXPECT_THAT(keyElement(testsupport::readFile(userDir() / "editor.settings"), "tabWidth"),
                HasSubstr("<value>8</value>"));
    EXPECT_EQ(run("get editor.tabWidth").out, "8\n");
    EXPECT_EQ(run("set editor.tabWidth 3 --level session").exitCode, 0);
    EXPECT_EQ(run("get editor.tabWidth").out, "8\n") << "a session value dies with its process";

    // Every kind of value, each read back by a second process.
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"plotting.axisLimits", "-5", "5"}, "-5.0\n5.0\n"},  // negative numbers are values
        {{"plotting.axesVisible", "true", "0", "1"}, "true\nfalse\ntrue\n"},
        {{"plotting.timeAxisOffset", "--", "-60"}, "-60\n"},
        {{"plotting.markerSize", "12.1"}, "12.1\n"},  // a float's shortest decimal
        {{"plotting.userAnnotation", "hello world"}, "hello world\n"},  // any type: text
        {{"editor.recentFiles"}, ""},                                   // empty array
        {{"editor.fontName", "caf\u00e9 & <tag>"}, "caf\u00e9 & <tag>\n"},
        {{"solver.method", "secant"}, "secant\n"},  // the solver had no user file
    };
    for (const auto& [args, readBack] : cases) {
        std::vector<std::string> command = {"set"};
        command.insert(command.end(), args.begin(), args.end());
        EXPECT_EQ(runArgs(command).exitCode, 0) << args[0];
        EXPECT_EQ(run("get " + args[0]).out, readBack) << args[0];
    }
    const Json json = run("set editor.autoSave false --json").outJson();
    EXPECT_EQ(json["effective"], Json::parse(R"({"value": false, "level": "user"})"));

    const ToolResult reset = run("reset editor.tabWidth");
    ASSERT_EQ(reset.exitCode, 0) << reset.err;
    EXPECT_EQ(reset.out, "editor.tabWidth: value at level user removed; now 4  (factory)\n");
    EXPECT_THAT(keyElement(testsupport::readFile(userDir() / "editor.settings"), "tabWidth"),
                Not(HasSubstr("<value>")));
    EXPECT_EQ(run("get editor.tabWidth").out, "4\n");
}

TEST_F(ToolTest, ExportThenImportBringsValuesBack) {
    ASSERT_EQ(run("set editor.tabWidth 6").exitCode, 0);
    ASSERT_EQ(run("set editor.colors.background beige").exitCode, 0);
    const ToolResult exported = run("export editor.tabWidth editor.colors --file @/saved.settings");
    ASSERT_EQ(exported.exitCode, 0) << exported.err;
    const std::string file = path("saved.settings");
    EXPECT_THAT(keyElement(testsupport::readFile(file), "tabWidth"), HasSubstr("<value>6</value>"));
    EXPECT_THAT(testsupport::readFile(file), Not(HasSubstr("fontSize")));  // only what was asked
    EXPECT_EQ(run("check @/saved.settings").exitCode, 0);

    const auto changeBoth = [this] {
        ASSERT_EQ(run("reset editor.tabWidth").exitCode, 0);
        ASSERT_EQ(run("set editor.colors.background gray").exitCode, 0);
    };
    changeBoth();
    const Json imported = run("import @/saved.settings --json").outJson();
    EXPECT_EQ(imported["into"], "editor");
    EXPECT_EQ(imported["changed"], Json::parse(R"([
        {"path": "editor.colors.background", "before": "gray", "after": "beige"},
        {"path": "editor.tabWidth", "before": 4, "after": 6}])"));
    EXPECT_EQ(run("get editor.tabWidth").out, "6\n");  // persisted by the merge

    // Into one group only: the other values of the file stay out.
    changeBoth();
    const ToolResult intoGroup = run("import @/saved.settings --into editor.colors");
    EXPECT_EQ(intoGroup.exitCode, 0) << intoGroup.err;
    EXPECT_EQ(run("get editor.colors.background").out, "beige\n");
    EXPECT_EQ(run("get editor.tabWidth").out, "4\n");
}

TEST_F(ToolTest, CheckReportsEachProblemWithFileLineAndColumn) {
    const std::string broken = "  <key name=\"z\"><int32><value>1</value></int32></kee>";
    testsupport::writeFile(path("tag.settings"),
                           "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<settings name=\"p\" "
                           "xmlns=\"urn:lindqvare.tolvan.settings\">\n" +
                               std::string(9, '\n') + broken + "\n</settings>\n");
    testsupport::writeFile(path("value.settings"),
                           "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<settings name=\"p\" "
                           "xmlns=\"urn:lindqvare.tolvan.settings\"><key name=\"a\"><int8><value>"
                           "abc</value></int8></key></settings>\n");
    const std::string good = (factoryDir() / "solver" / "solver.settings").string();

    const ToolResult text = run("check " + good + " tag.settings value.settings");
    EXPECT_EQ(text.exitCode, 2);
    EXPECT_THAT(text.out, HasSubstr(good + ": ok (product solver)\n"));
    // The reader points at the name of the wrong closing tag, on line 12 (line 1 is the
    // declaration); its column comes without the line's digits in front.
    EXPECT_THAT(text.out, HasSubstr("tag.settings:12:" + std::to_string(broken.find("kee>") + 1) +
                                    ": ErrorReadingSettingsData: expected end of tag 'key'\n"));
    EXPECT_THAT(text.out, HasSubstr("value.settings: ErrorReadingSettingsData: The text \"abc\" "
                                    "is not a value of type int8"));

    const Json json = run("check value.settings tag.settings absent.settings --json").outJson();
    ASSERT_EQ(json["files"].size(), 3u);
    EXPECT_FALSE(json["files"][0]["problems"][0].contains("line"));
    EXPECT_EQ(json["files"][1]["problems"][0]["line"], 12);
    EXPECT_EQ(json["files"][2]["problems"][0]["class"], "FileNotReadable");
    EXPECT_EQ(run("check absent.settings").exitCode, 3);
}

TEST_F(ToolTest, ABrokenProductFileIsSkippedWithAWarning) {
    testsupport::writeFile(userDir() / "editor.settings", "<settings name=\"editor\">\n<oops\n");
    const ToolResult get = run("get editor.tabWidth");
    EXPECT_EQ(get.exitCode, 0) << get.err;
    EXPECT_EQ(get.out, "4\n");  // the factory's value
    EXPECT_THAT(get.err, HasSubstr("warning: skipped " + (userDir() / "editor.settings").string()));
    EXPECT_EQ(run("tree --json").outJson()["warnings"].size(), 1u);
    // The unreadable file was copied aside before anything could replace it.
    const std::string copy = "kept copy  " + (userDir() / "editor.settings.unreadable-").string();
    EXPECT_THAT(run("products").out, HasSubstr("\n  " + copy));
    EXPECT_THAT(run("check user/editor.settings").out,
                HasSubstr("kept copy of an unreadable version: "));
}

TEST_F(ToolTest, AValueOutsideItsRangeIsHeldBackShownAndKept) {
    // The factory allows at most 1000000 iterations.
    const std::filesystem::path userFile = userDir() / "solver.settings";
    testsupport::writeFile(
        userFile,
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<settings name=\"solver\" "
        "xmlns=\"urn:lindqvare.tolvan.settings\"><key name=\"maxIterations\">"
        "<uint32><value>2000000</value></uint32></key><key name=\"workerThreads\">"
        "<int8><value>8</value></int8></key></settings>\n");
    const std::string held =
        "solver.maxIterations (user): The value passed in is not in the predefined range\n";
    const ToolResult products = run("products");
    EXPECT_EQ(products.exitCode, 0) << products.err;
    EXPECT_THAT(products.out, HasSubstr(userFile.string() + "\n  held back  " + held));
    EXPECT_THAT(products.err, HasSubstr("warning: " + userFile.string() +
                                        ": solver.maxIterations "
                                        "is held back, kept in the file but not used"));
    const ToolResult describe = run("describe solver.maxIterations");
    EXPECT_EQ(describe.exitCode, 0) << describe.err;
    EXPECT_THAT(describe.out, HasSubstr("  value             1000  (factory)\n"));
    EXPECT_THAT(describe.out, HasSubstr("\n  held back         " + held));
    const Json group = run("describe solver --json").outJson();
    EXPECT_EQ(group["heldBack"][0]["path"], "solver.maxIterations");
    EXPECT_EQ(group["keptCopies"], Json::array());
    EXPECT_EQ(run("get solver.workerThreads").out, "8\n");  // the rest of the file is in use

    // Alone the file reads well; as the product's user file it does not fully fit.
    const ToolResult check = run("check user/solver.settings");
    EXPECT_EQ(check.exitCode, 2);
    EXPECT_EQ(check.out, "user/solver.settings: held back by product solver: " + held);
    const Json checked = run("check user/solver.settings --json").outJson()["files"][0];
    EXPECT_EQ(checked["userFileOf"], "solver");
    EXPECT_FALSE(checked["ok"].get<bool>());

    ASSERT_EQ(run("set solver.method secant").exitCode, 0);
    EXPECT_THAT(keyElement(testsupport::readFile(userFile), "maxIterations"),
                HasSubstr("<value>2000000</value>"));
}

}  // namespace
}  // namespace tvsettingstest
