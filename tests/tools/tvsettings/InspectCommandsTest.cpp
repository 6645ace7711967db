// The reading commands of the real binary over copies of the sample products: products, tree,
// get, describe, dirs, as text and as JSON.
#include "ToolHarness.hpp"

#include <gmock/gmock.h>

using ::testing::HasSubstr;
using ::testing::Not;

namespace tvsettingstest {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

TEST_F(ToolTest, ProductsListEachProductWithItsFilesPerLevel) {
    const ToolResult text = run({"products"});
    ASSERT_EQ(text.exitCode, 0) << text.err;
    EXPECT_THAT(text.out, HasSubstr("editor  (version 3)\n  factory  " +
                                    (factoryDir() / "editor" / "editor.settings").string() +
                                    "\n  user     " + (userDir() / "editor.settings").string()));
    // The solver has no user file; the file the editor names through its additional path is
    // read through the editor's own file, not listed.
    EXPECT_THAT(text.out, HasSubstr("solver  (version 2)\n  factory  " +
                                    (factoryDir() / "solver" / "solver.settings").string() +
                                    "\n  user     (no file)\n"));
    EXPECT_THAT(text.out, Not(HasSubstr("keybindings")));

    const Json json = run({"products", "--json"}).outJson();
    ASSERT_EQ(json["products"].size(), 3u);
    EXPECT_EQ(json["products"][1]["name"], "plotting");
    EXPECT_EQ(json["products"][1]["version"], 1);
    EXPECT_EQ(json["products"][2]["files"]["user"].size(), 0u);
    EXPECT_EQ(json["userDir"], userDir().string());
}

TEST_F(ToolTest, TreeShowsTypesBoundsValuesLevelsAndMarks) {
    const ToolResult editor = run({"tree", "editor"});
    ASSERT_EQ(editor.exitCode, 0) << editor.err;
    const std::vector<std::string> lines = {
        "editor/\n",
        "\n  tabWidth: int32 = 2  (user)\n",             // user beats factory
        "\n  lineEnding: string = \"LF\"  (factory)\n",  // factory only
        "\n  buildTag: string = \"V2041b-factory\"  (factory)  [read-only, hidden]\n",
        "\n  recentFiles: string[0..unlimited] = [\"/home/user/models/heat_transfer.tv\", "
        "\"/home/user/notes ]]> draft.txt\"]  (user)\n",
        "\n    highlight: string = \"red\"  (factory)\n",  // run-time default
        "\n      markers/\n        bookmarkShades: float[1..unlimited] = [0.2, 0.4]  (user)\n",
        "\n    runSection: string[1..2] = [\"Ctrl+Enter\", \"F9\"]  (factory)\n",  // included file
    };
    for (const std::string& line : lines) {
        EXPECT_THAT(editor.out, HasSubstr(line));
    }
    // The whole tree holds every product; a key without value says so.
    const ToolResult all = run({"tree"});
    EXPECT_THAT(all.out, HasSubstr("\nplotting/\n"));
    EXPECT_THAT(all.out, HasSubstr("\n  weights: double[0..unlimited] = (undefined)\n"));

    const Json ilu = run({"tree", "solver.linear.preconditioner.ilu", "--json"}).outJson();
    EXPECT_TRUE(ilu["readOnly"].get<bool>());
    ASSERT_EQ(ilu["children"].size(), 4u);
    const Json& ordering = ilu["children"][0];
    EXPECT_EQ(ordering["name"], "columnOrdering");
    EXPECT_EQ(ordering["value"], Json::parse("[0, 2, 1]"));
    EXPECT_EQ(ordering["arraySize"], Json::parse(R"({"min": 1, "max": null})"));

    const ToolResult unknown = run({"tree", "editor.nothing"});
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_EQ(unknown.errorClass(), "UnknownPath");
}

TEST_F(ToolTest, GetPrintsTheEffectiveOrTheLevelsValue) {
    struct Case {
        std::vector<std::string> args;
        std::string out;
    };
    const std::vector<Case> cases = {
        {{"get", "editor.tabWidth"}, "2\n"},
        {{"get", "editor.tabWidth", "--level", "factory"}, "4\n"},
        {{"get", "editor.tabWidth", "-l", "session"}, ""},
        {{"get", "editor.recentFiles"},
         "/home/user/models/heat_transfer.tv\n/home/user/notes ]]> draft.txt\n"},
        {{"get", "plotting.markerSize"}, "8.5\n"},
        {{"get", "plotting.timeAxisOffset"}, "-7200\n"},
        {{"get", "plotting.maxPointsPerLine"}, "10000000\n"},
        {{"get", "plotting.axesVisible"}, "true\nfalse\n"},
        {{"get", "plotting.userAnnotation"}, "Entwurf \u2013 Temperaturverlauf\n"},
        {{"get", "solver.schedulingPriority"}, "-2\n"},  // int8 is a number, not a character
        {{"get", "editor.colors.selection"}, "blue\n"},
        {{"get", "solver.weights"}, ""},
    };
    for (const Case& c : cases) {
        const ToolResult result = run(c.args);
        EXPECT_EQ(result.exitCode, 0) << c.args[1] << ": " << result.err;
        EXPECT_EQ(result.out, c.out) << c.args[1];
    }
    EXPECT_THAT(run({"get", "solver.weights"}).err, HasSubstr("has no value at any level"));

    const Json json =
        run({"get", "editor.display.gutter.markers.bookmarkShades", "--json"}).outJson();
    EXPECT_EQ(json["type"], "float");
    EXPECT_EQ(json["level"], "user");
    EXPECT_EQ(json["value"], Json::parse("[0.2, 0.4]"));  // the float's shortest decimal
    EXPECT_TRUE(run({"get", "solver.weights", "--json"}).outJson()["value"].is_null());
}

TEST_F(ToolTest, DescribeGivesLimitsCalloutsAndEveryLevelsValue) {
    const Json tabWidth = run({"describe", "editor.tabWidth", "--json"}).outJson();
    EXPECT_EQ(tabWidth["type"], "int32");
    EXPECT_EQ(tabWidth["min"], 1);
    EXPECT_EQ(tabWidth["max"], 16);
    EXPECT_TRUE(tabWidth["choices"].is_null());
    EXPECT_EQ(tabWidth["levels"], Json::parse(R"({"session": null, "user": 2, "factory": 4})"));

    const Json method = run({"describe", "solver.method", "--json"}).outJson();
    EXPECT_EQ(method["choices"], Json::parse(R"(["newton", "secant", "bisection"])"));

    const Json highlight = run({"describe", "editor.colors.highlight", "--json"}).outJson();
    EXPECT_EQ(highlight["validator"]["declaredOn"], "editor.colors");  // inherited
    EXPECT_EQ(highlight["validator"]["function"],
              "tvutil_settings_unittest_only_prohibitBlackColorValidator");
    EXPECT_EQ(highlight["runTimeDefault"]["level"], "factory");
    EXPECT_EQ(highlight["levels"]["factory"], "red");

    const ToolResult fontSize = run({"describe", "editor.fontSize"});
    ASSERT_EQ(fontSize.exitCode, 0) << fontSize.err;
    EXPECT_THAT(fontSize.out, HasSubstr("  min               6\n  max               72\n"));
    EXPECT_THAT(fontSize.out, HasSubstr("limitMaxFontSizeTo30Validator in package settingscore "
                                        "(declared on editor.fontSize)"));
    EXPECT_THAT(fontSize.out, HasSubstr("  at user           14\n  at factory        12\n"));

    const ToolResult group = run({"describe", "editor.display"});
    EXPECT_THAT(group.out, HasSubstr("  kind              group\n"));
    EXPECT_THAT(group.out,
                HasSubstr("  groups            gutter\n  keys              wrapColumn\n"));
}

TEST_F(ToolTest, DirsNameEachFolderAndWhereItComesFrom) {
    const Json fromVariables = run({"dirs", "--json"}).outJson();
    EXPECT_EQ(fromVariables["factory"]["path"], factoryDir().string());
    EXPECT_EQ(fromVariables["factory"]["source"], "variable SETTINGS_FACTORYDIR");
    EXPECT_EQ(fromVariables["user"]["source"], "variable SETTINGS_USERDIR");
    EXPECT_EQ(fromVariables["preferences"]["source"], "default: below $XDG_CONFIG_HOME");
    EXPECT_EQ(fromVariables["preferences"]["path"],
              (homeDir() / ".config/Lindqvare/TOLVAN/V2041b").string());
    EXPECT_EQ(fromVariables["installationRoot"], SETTINGSCORE_BUILD_ROOT);

    // Options beat variables, and the user level falls back to the preference folder.
    const std::string prefs = path("prefs").string();
    const std::map<std::string, std::optional<std::string>> noUserDir = {
        {"SETTINGS_USERDIR", std::nullopt}, {"TOLVAN_PREFDIR", path("elsewhere").string()}};
    const Json fromOptions =
        run({"--factory-dir", path("f2").string(), "--pref-dir", prefs, "dirs", "--json"},
            noUserDir)
            .outJson();
    EXPECT_EQ(fromOptions["factory"]["path"], path("f2").string());
    EXPECT_EQ(fromOptions["factory"]["source"], "option --factory-dir");
    EXPECT_EQ(fromOptions["preferences"]["path"], prefs);
    EXPECT_EQ(fromOptions["preferences"]["source"], "option --pref-dir");
    EXPECT_EQ(fromOptions["user"]["path"], prefs);
    EXPECT_EQ(fromOptions["user"]["source"], "the preference folder");
    EXPECT_FALSE(fromOptions["user"]["exists"].get<bool>());  // dirs creates nothing
    EXPECT_EQ(run({"dirs", "--json"}, noUserDir).outJson()["preferences"]["source"],
              "variable TOLVAN_PREFDIR");

    const ToolResult text = run({"dirs"}, {{"XDG_CONFIG_HOME", std::nullopt}});
    EXPECT_THAT(text.out, HasSubstr("(default: below $HOME/.config)"));
    EXPECT_THAT(text.out, HasSubstr("installation root " SETTINGSCORE_BUILD_ROOT "\n"));
}

TEST_F(ToolTest, FolderOptionsDecideWhereTheTreeComesFrom) {
    // Only the factory files, through the option, and an empty preference folder as the user
    // level: the tree shows factory values, and a set creates the user file there.
    const std::string prefs = path("prefs").string();
    const std::vector<std::string> folders = {"--factory-dir", factoryDir().string(), "--pref-dir",
                                              prefs};
    const std::map<std::string, std::optional<std::string>> env = {
        {"SETTINGS_FACTORYDIR", path("missing").string()}, {"SETTINGS_USERDIR", std::nullopt}};
    auto args = [&folders](std::vector<std::string> command) {
        command.insert(command.begin(), folders.begin(), folders.end());
        return command;
    };
    EXPECT_EQ(run(args({"get", "editor.tabWidth"}), env).out, "4\n");
    ASSERT_EQ(run(args({"set", "editor.tabWidth", "7"}), env).exitCode, 0);
    EXPECT_THAT(testsupport::readFile(path("prefs/editor.settings")),
                HasSubstr("<value>7</value>"));
    EXPECT_EQ(run(args({"get", "editor.tabWidth"}), env).out, "7\n");

    fs::create_directories(path("other"));
    ASSERT_EQ(run({"--user-dir", path("other").string(), "set", "editor.tabWidth", "9"}).exitCode,
              0);
    EXPECT_THAT(testsupport::readFile(path("other/editor.settings")),
                HasSubstr("<value>9</value>"));
    EXPECT_EQ(run({"get", "editor.tabWidth"}).out, "2\n");  // the variable's folder is untouched
}

}  // namespace
}  // namespace tvsettingstest
