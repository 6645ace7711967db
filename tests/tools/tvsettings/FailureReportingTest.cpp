// Bad input to the real binary: each failure ends with its family's exit code and its class,
// message and details on stderr (or as JSON), never a crash, and changes nothing on disk.
#include "ToolHarness.hpp"

#include <gmock/gmock.h>

using ::testing::HasSubstr;

namespace tvsettingstest {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

struct Case {
    std::vector<std::string> args;
    int exitCode;
    std::string errorClass;
    std::vector<std::string> details;  // lines expected on stderr
};

std::string describe(const Case& c) {
    std::string text;
    for (const std::string& arg : c.args) {
        text += arg + " ";
    }
    return text;
}

TEST_F(ToolTest, RefusedValuesExitWithTwoAndNameTheLimitTheyBroke) {
    const std::string before = testsupport::readFile(userDir() / "editor.settings");
    const std::vector<Case> cases = {
        {{"set", "editor.tabWidth", "abc"}, 2, "NotAValueOfType", {"  type: int32\n"}},
        {{"set", "editor.maxRecentFiles", "300"},
         2,
         "NotAValueOfType",
         {"above the largest uint8 (255)"}},
        {{"set", "solver.schedulingPriority", "-129"},
         2,
         "NotAValueOfType",
         {"below the smallest int8 (-128)"}},
        {{"set", "editor.autoSave", "yes"}, 2, "NotAValueOfType", {"true, false, 1 or 0"}},
        {{"set", "editor.tabWidth", "99"},
         2,
         "ValueIsNotInRange",
         {"  value: 99\n  min: 1\n  max: 16\n  node: editor.tabWidth\n"}},
        {{"set", "solver.method", "quick"},
         2,
         "ValueIsNotOneOfTheChoicesAndNotInRange",
         {"  value: quick\n  choices: newton, secant, bisection\n"}},
        {{"set", "plotting.axisLimits", "1", "2", "3"},
         2,
         "DataArraySizeOutOfRange",
         {"  size: 3\n  min size: 2\n  max size: 2\n"}},
        {{"set", "editor.fontSize", "40"},
         2,
         "ExceptionFromValidationFunction",
         {"  value: 40\n", "limitMaxFontSizeTo30Validator",
          "  reason: Font size is too big: 40\n"}},
        {{"set", "editor.buildTag", "x"},
         2,
         "CannotChangeValueForReadOnlySetting",
         {"  key: editor.buildTag\n"}},
        // A read-only group keeps its keys' values from being cleared, not from being set.
        {{"reset", "solver.linear.preconditioner.ilu.fillLevel"},
         2,
         "CannotAddRemoveNodeUnderReadOnlyParent",
         {"  parent: solver.linear.preconditioner.ilu\n"}},
        {{"set", "editor.tabWidth", "3", "--level", "factory"},
         2,
         "CantModifyValuesOnReadOnlyLevel",
         {"  level: factory\n"}},
    };
    for (const Case& c : cases) {
        const ToolResult result = run(c.args);
        EXPECT_EQ(result.exitCode, c.exitCode) << describe(c) << result.err;
        EXPECT_EQ(result.errorClass(), c.errorClass) << result.err;
        for (const std::string& detail : c.details) {
            EXPECT_THAT(result.err, HasSubstr(detail)) << describe(c);
        }
        EXPECT_EQ(result.out, "");
    }
    EXPECT_EQ(testsupport::readFile(userDir() / "editor.settings"), before);
    EXPECT_FALSE(fs::exists(userDir() / "solver.settings"));

    const Json error = run({"--json", "set", "solver.maxIterations", "0"}).errJson()["error"];
    EXPECT_EQ(error["class"], "ValueIsNotInRange");
    EXPECT_EQ(error["exitCode"], 2);
    EXPECT_EQ(error["details"]["min"], "1");
    EXPECT_EQ(error["details"]["max"], "1000000");
    EXPECT_EQ(error["message"], "The value passed in is not in the predefined range");
}

TEST_F(ToolTest, UsageErrorsExitWithOne) {
    const std::vector<Case> cases = {
        {{"frobnicate"}, 1, "UsageError", {"unknown command: frobnicate"}},
        {{}, 1, "UsageError", {}},
        {{"get"}, 1, "UsageError", {"path is required"}},
        {{"get", "editor.tabWidth", "--bogus"}, 1, "UsageError", {"--bogus"}},
        {{"--factory-dir", "relative/dir", "tree"}, 1, "UsageError", {"absolute path"}},
        {{"get", "editor.nothing"}, 1, "UnknownPath", {"  path: editor.nothing\n"}},
        {{"get", "editor.colors"}, 1, "NotAKey", {}},
        {{"set", "nothing.at.all", "1"}, 1, "UnknownPath", {}},
        {{"get", "editor.tabWidth", "--level", "team"},
         1,
         "UnknownLevel",
         {"  levels: session, user, factory\n"}},
        {{"reset", "editor.tabWidth", "--level", "Factory"}, 1, "UnknownLevel", {}},
        {{"set", "editor.tabWidth", "1", "2"}, 1, "WrongNumberOfValues", {"2 values"}},
        {{"set", "editor.tabWidth"}, 1, "WrongNumberOfValues", {"0 values"}},
        {{"export", "editor", "solver", "--file", path("x.settings").string()},
         1,
         "ErrorExportMultipleNodesBelongsToDiffProducts",
         {"  other product: solver\n"}},
    };
    for (const Case& c : cases) {
        const ToolResult result = run(c.args);
        EXPECT_EQ(result.exitCode, c.exitCode) << describe(c) << result.err;
        EXPECT_EQ(result.errorClass(), c.errorClass) << describe(c) << result.err;
        for (const std::string& detail : c.details) {
            EXPECT_THAT(result.err, HasSubstr(detail)) << describe(c);
        }
    }
    const Json error = run({"get", "editor.tabWidth", "--json", "--level", "x"}).errJson();
    EXPECT_EQ(error["error"]["class"], "UnknownLevel");
    EXPECT_EQ(run({"--json", "nonsense"}).errJson()["error"]["exitCode"], 1);
}

TEST_F(ToolTest, StorageFailuresExitWithThree) {
    // The user folder is a plain file: nothing can be saved below it.
    testsupport::writeFile(path("plainfile"), "");
    const ToolResult set =
        run({"set", "editor.tabWidth", "5"}, {{"SETTINGS_USERDIR", path("plainfile").string()}});
    EXPECT_EQ(set.exitCode, 3) << set.err;
    EXPECT_THAT(set.err, HasSubstr(path("plainfile").string()));

    // The export target's folder is missing.
    const ToolResult exported =
        run({"export", "editor", "--file", path("no/such/folder/x.settings").string()});
    EXPECT_EQ(exported.exitCode, 3) << exported.err;
    EXPECT_EQ(exported.errorClass(), "ErrorSaveSettingsDueToFileIOError");
    EXPECT_THAT(exported.err, HasSubstr("  file: " + path("no/such/folder/x.settings").string()));
}

TEST_F(ToolTest, EveryCommandHasHelp) {
    for (const char* command : {"products", "tree", "get", "set", "reset", "describe", "export",
                                "import", "check", "dirs"}) {
        const ToolResult help = run({command, "--help"});
        EXPECT_EQ(help.exitCode, 0) << command;
        EXPECT_THAT(help.out, HasSubstr(std::string("Usage: tvsettings ") + command)) << command;
    }
    const ToolResult top = run({"--help"});
    EXPECT_EQ(top.exitCode, 0);
    EXPECT_THAT(top.out, HasSubstr("--factory-dir"));
    EXPECT_THAT(top.out, HasSubstr("Exit codes: 0 success"));
}

}  // namespace
}  // namespace tvsettingstest
