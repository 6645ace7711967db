// The reading commands of the real binary over copies of the sample products: products, tree,
// get, describe, dirs, as text and as JSON.
#include "ToolHarness.hpp"

namespace tvsettingstest {
namespace {

TEST_F(ToolTest, ProductsListEachProductWithItsFilesPerLevel) {
    const ToolResult text = run("products");
    ASSERT_EQ(text.exitCode, 0) << text.err;
    EXPECT_THAT(text.out, HasSubstr("editor  (version 3)\n  factory  " +
                                    (factoryDir() / "editor" / "editor.settings").string() +
                                    "\n  user     " + (userDir() / "editor.settings").string()));
    // The file the editor names through its additional path is read through the editor's own
    // file, not listed.
    EXPECT_THAT(text.out, HasSubstr("\n  user     (no file)\n"));
    EXPECT_THAT(text.out, ::testing::Not(HasSubstr("keybindings")));

    const Json json = run("products --json").outJson();
    ASSERT_EQ(json["products"].size(), 3u);
    EXPECT_EQ(json["products"][1]["name"], "plotting");
    EXPECT_EQ(json["products"][1]["version"], 1);
    EXPECT_EQ(json["products"][2]["files"]["user"].size(), 0u);
}

TEST_F(ToolTest, TreeShowsTypesBoundsValuesLevelsAndMarks) {
    const ToolResult editor = run("tree editor");
    ASSERT_EQ(editor.exitCode, 0) << editor.err;
    for (const std::string line : {
             "\n  tabWidth: int32 = 2  (user)\n",             // user beats factory
             "\n  lineEnding: string = \"LF\"  (factory)\n",  // factory only
             "\n  buildTag: string = \"V2041b-factory\"  (factory)  [read-only, hidden]\n",
             "\n    highlight: string = \"red\"  (factory)\n",  // run-time default
             "\n      markers/\n        bookmarkShades: float[1..unlimited] = [0.2, 0.4]  (user)\n",
             "\n    runSection: string[1..2] = [\"Ctrl+Enter\", \"F9\"]  (factory)\n",  // included
         }) {
        EXPECT_THAT(editor.out, HasSubstr(line));
    }
    EXPECT_THAT(run("tree").out, HasSubstr("\n  weights: double[0..unlimited] = (undefined)\n"));

    const Json ilu = run("tree solver.linear.preconditioner.ilu --json").outJson();
    EXPECT_TRUE(ilu["readOnly"].get<bool>());
    ASSERT_EQ(ilu["children"].size(), 4u);
    EXPECT_EQ(ilu["children"][0]["value"], Json::parse("[0, 2, 1]"));
    EXPECT_EQ(ilu["children"][0]["arraySize"], Json::parse(R"({"min": 1, "max": null})"));
}

TEST_F(ToolTest, GetPrintsTheEffectiveOrTheLevelsValue) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"get editor.tabWidth", "2\n"},
        {"get editor.tabWidth --level factory", "4\n"},
        {"get editor.tabWidth -l session", ""},
        {"get editor.recentFiles",
         "/home/user/models/heat_transfer.tv\n/home/user/notes ]]> draft.txt\n"},
        {"get plotting.markerSize", "8.5\n"},
        {"get plotting.timeAxisOffset", "-7200\n"},
        {"get plotting.axesVisible", "true\nfalse\n"},
        {"get plotting.userAnnotation", "Entwurf \u2013 Temperaturverlauf\n"},
        {"get solver.schedulingPriority", "-2\n"},  // int8 is a number, not a character
        {"get solver.weights", ""},
    };
    for (const auto& [line, out] : cases) {
        const ToolResult result = run(line);
        EXPECT_EQ(result.exitCode, 0) << line << ": " << result.err;
        EXPECT_EQ(result.out, out) << line;
    }
    EXPECT_THAT(run("get solver.weights").err, HasSubstr("has no value at any level"));

    const Json json = run("get editor.display.gutter.markers.bookmarkShades --json").outJson();
    EXPECT_EQ(json["type"], "float");
    EXPECT_EQ(json["level"], "user");
    EXPECT_EQ(json["value"], Json::parse("[0.2, 0.4]"));  // the float's shortest decimal
    EXPECT_TRUE(run("get solver.weights --json").outJson()["value"].is_null());
}

TEST_F(ToolTest, DescribeGivesLimitsCalloutsAndEveryLevelsValue) {
    const Json tabWidth = run("describe editor.tabWidth --json").outJson();
    EXPECT_EQ(tabWidth["min"], 1);
    EXPECT_EQ(tabWidth["max"], 16);
    EXPECT_EQ(tabWidth["levels"], Json::parse(R"({"session": null, "user": 2, "factory": 4})"));
    EXPECT_EQ(run("describe solver.method --json").outJson()["choices"],
              Json::parse(R"(["newton", "secant", "bisection"])"));
    const Json highlight = run("describe editor.colors.highlight --json").outJson();
    EXPECT_EQ(highlight["validator"]["declaredOn"], "editor.colors");  // inherited
    EXPECT_EQ(highlight["runTimeDefault"]["level"], "factory");

    const ToolResult fontSize = run("describe editor.fontSize");
    ASSERT_EQ(fontSize.exitCode, 0) << fontSize.err;
    EXPECT_THAT(fontSize.out, HasSubstr("limitMaxFontSizeTo30Validator in package settingscore "
                                        "(declared on editor.fontSize)"));
    EXPECT_THAT(fontSize.out, HasSubstr("  at user           14\n  at factory        12\n"));
    EXPECT_THAT(run("describe editor.display").out,
                HasSubstr("  groups            gutter\n  keys              wrapColumn\n"));
}

TEST_F(ToolTest, DirsAndFolderOptionsDecideWhereTheTreeComesFrom) {
    const Json fromVariables = run("dirs --json").outJson();
    EXPECT_EQ(fromVariables["factory"]["path"], factoryDir().string());
    EXPECT_EQ(fromVariables["factory"]["source"], "variable SETTINGS_FACTORYDIR");
    EXPECT_EQ(fromVariables["preferences"]["source"], "default: below $XDG_CONFIG_HOME");
    EXPECT_EQ(fromVariables["preferences"]["path"],
              (homeDir() / ".config/Lindqvare/TOLVAN/V2041b").string());
    EXPECT_EQ(fromVariables["installationRoot"], SETTINGSCORE_BUILD_ROOT);
    EXPECT_THAT(run("dirs", {{"XDG_CONFIG_HOME", std::nullopt}}).out,
                HasSubstr("(default: below $HOME/.config)"));

    // Options beat variables; without a user folder the preference folder takes its place.
    const Env env = {{"SETTINGS_FACTORYDIR", path("missing")},
                     {"SETTINGS_USERDIR", std::nullopt},
                     {"TOLVAN_PREFDIR", path("elsewhere")}};
    const std::string folders = "--factory-dir @/factory --pref-dir @/prefs ";
    const Json dirs = run(folders + "dirs --json", env).outJson();
    EXPECT_EQ(dirs["factory"]["source"], "option --factory-dir");
    EXPECT_EQ(dirs["user"]["path"], path("prefs"));
    EXPECT_EQ(dirs["user"]["source"], "the preference folder");
    EXPECT_FALSE(dirs["user"]["exists"].get<bool>());  // dirs creates nothing
    EXPECT_EQ(run("dirs --json", env).outJson()["preferences"]["source"],
              "variable TOLVAN_PREFDIR");

    EXPECT_EQ(run(folders + "get editor.tabWidth", env).out, "4\n");  // factory only
    ASSERT_EQ(run(folders + "set editor.tabWidth 7", env).exitCode, 0);
    EXPECT_EQ(run(folders + "get editor.tabWidth", env).out, "7\n");
    std::filesystem::create_directories(path("other"));
    ASSERT_EQ(run("--user-dir @/other set editor.tabWidth 9").exitCode, 0);
    EXPECT_THAT(testsupport::readFile(path("other/editor.settings")),
                HasSubstr("<value>9</value>"));
    EXPECT_EQ(run("get editor.tabWidth").out, "2\n");  // the variable's folder is untouched
}

}  // namespace
}  // namespace tvsettingstest
