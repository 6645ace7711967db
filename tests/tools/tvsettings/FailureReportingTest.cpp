// Bad input to the real binary: each failure ends with its family's exit code (1 usage, 2
// refused, 3 storage) and its class, message and details on stderr (or as JSON), never a
// crash, and changes nothing on disk.
#include "ToolHarness.hpp"

namespace tvsettingstest {
namespace {

TEST_F(ToolTest, EachFailureExitsWithItsFamilysCodeAndNamesItsClassAndDetails) {
    testsupport::writeFile(path("broken.settings"), "<settings name=\"editor\">\n<key>\n");
    testsupport::writeFile(
        path("badchoice.settings"),
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<settings name=\"editor\" "
        "xmlns=\"urn:lindqvare.tolvan.settings\"><key name=\"lineEnding\"><string><value>LFCR"
        "</value></string></key><key name=\"tabWidth\"><int32><value>5</value></int32></key>"
        "</settings>\n");
    testsupport::writeFile(path("plainfile"), "");
    const std::string before = testsupport::readFile(userDir() / "editor.settings");
    struct Case {
        std::string line;
        int exitCode;
        std::string errorClass;
        std::string details;  // expected on stderr
    };
    const std::vector<Case> cases = {
        {"frobnicate", 1, "UsageError", "unknown command: frobnicate"},
        {"", 1, "UsageError", ""},
        {"get", 1, "UsageError", "path is required"},
        {"get editor.tabWidth --bogus", 1, "UsageError", "--bogus"},
        {"--factory-dir relative/dir tree", 1, "UsageError", "absolute path"},
        {"get editor.nothing", 1, "UnknownPath", "  path: editor.nothing\n"},
        {"tree editor.nothing", 1, "UnknownPath", ""},
        {"get editor.colors", 1, "NotAKey", ""},
        {"get editor.tabWidth --level team", 1, "UnknownLevel",
         "  levels: session, user, factory\n"},
        {"reset editor.tabWidth --level Factory", 1, "UnknownLevel", ""},
        {"set editor.tabWidth 1 2", 1, "WrongNumberOfValues", "2 values"},
        {"reset editor.lineEnding", 1, "ValueNotDefinedForGivenLevel", ""},
        {"export editor solver --file @/x.settings", 1,
         "ErrorExportMultipleNodesBelongsToDiffProducts", "  other product: solver\n"},
        {"set editor.tabWidth abc", 2, "NotAValueOfType", "  type: int32\n"},
        {"set editor.maxRecentFiles 300", 2, "NotAValueOfType", "above the largest uint8 (255)"},
        {"set solver.schedulingPriority -129", 2, "NotAValueOfType", "below the smallest int8"},
        {"set editor.autoSave yes", 2, "NotAValueOfType", "true, false, 1 or 0"},
        {"set editor.tabWidth 99", 2, "ValueIsNotInRange",
         "  value: 99\n  min: 1\n  max: 16\n  node: editor.tabWidth\n"},
        {"set solver.method quick", 2, "ValueIsNotOneOfTheChoicesAndNotInRange",
         "  value: quick\n  choices: newton, secant, bisection\n"},
        {"set plotting.axisLimits 1 2 3", 2, "DataArraySizeOutOfRange",
         "  size: 3\n  min size: 2\n  max size: 2\n"},
        {"set editor.fontSize 40", 2, "ExceptionFromValidationFunction",
         "  reason: Font size is too big: 40\n"},
        {"set editor.buildTag x", 2, "CannotChangeValueForReadOnlySetting",
         "  key: editor.buildTag\n"},
        // A read-only group keeps its keys' values from being cleared, not from being set.
        {"reset solver.linear.preconditioner.ilu.fillLevel", 2,
         "CannotAddRemoveNodeUnderReadOnlyParent", "  parent: solver.linear.preconditioner.ilu\n"},
        {"set editor.tabWidth 3 --level factory", 2, "CantModifyValuesOnReadOnlyLevel",
         "  level: factory\n"},
        {"import @/broken.settings", 2, "ErrorReadingSettingsData", ""},
        // A refused merge changes nothing, not even the values of the file that were fine.
        {"import @/badchoice.settings", 2, "ValueIsNotOneOfTheChoicesAndNotInRange", ""},
        {"import @/user/editor.settings --into solver", 2, "ImportOfAnotherProduct", ""},
        {"export editor.tabWidth --file relative.settings", 3,
         "ErrorExportOrImportSettingsUsingRelativePath", ""},
        {"import relative.settings", 3, "ErrorExportOrImportSettingsUsingRelativePath", ""},
        {"import @/missing.settings", 3, "FileNotReadable", ""},
        {"export editor --file @/no/such/folder/x.settings", 3, "ErrorSaveSettingsDueToFileIOError",
         "  file: " + path("no/such/folder/x.settings")},
    };
    for (const Case& c : cases) {
        const ToolResult result = run(c.line);
        EXPECT_EQ(result.exitCode, c.exitCode) << c.line << "\n" << result.err;
        EXPECT_EQ(result.errorClass(), c.errorClass) << c.line << "\n" << result.err;
        EXPECT_THAT(result.err, HasSubstr(c.details)) << c.line;
        EXPECT_EQ(result.out, "") << c.line;
    }
    EXPECT_EQ(testsupport::readFile(userDir() / "editor.settings"), before);
    EXPECT_FALSE(std::filesystem::exists(userDir() / "solver.settings"));
    EXPECT_FALSE(std::filesystem::exists(path("relative.settings")));
    EXPECT_FALSE(std::filesystem::exists(path("x.settings")));

    // A user folder that is a plain file: nothing can be saved below it.
    const ToolResult set = run("set editor.tabWidth 5", {{"SETTINGS_USERDIR", path("plainfile")}});
    EXPECT_EQ(set.exitCode, 3) << set.err;
    EXPECT_THAT(set.err, HasSubstr(path("plainfile")));

    const Json error = run("--json set solver.maxIterations 0").errJson()["error"];
    EXPECT_EQ(error["class"], "ValueIsNotInRange");
    EXPECT_EQ(error["exitCode"], 2);
    EXPECT_EQ(error["details"]["max"], "1000000");
    EXPECT_EQ(error["message"], "The value passed in is not in the predefined range");
    EXPECT_EQ(run("--json nonsense").errJson()["error"]["exitCode"], 1);

    // A save that fails throws nothing in the library: the tool must still not report success.
    const std::filesystem::path userFile = userDir() / "editor.settings";
    std::filesystem::remove(userFile);
    std::filesystem::create_directory(userFile);
    const ToolResult unsaved = run("set editor.tabWidth 5");
    EXPECT_EQ(unsaved.exitCode, 3);
    EXPECT_EQ(unsaved.errorClass(), "SaveFailed");
    EXPECT_THAT(unsaved.err, HasSubstr("editor.tabWidth was set at level user, but not saved: open "
                                       "the file for writing failed for " +
                                       userFile.string() + ": Is a directory\n"));
    EXPECT_EQ(unsaved.out, "");
    const Json unsavedJson = run("--json set editor.tabWidth 5").errJson()["error"];
    EXPECT_EQ(unsavedJson["exitCode"], 3);
    EXPECT_EQ(unsavedJson["details"]["file"], userFile.string());
    EXPECT_EQ(run("set editor.tabWidth 5 --level session").exitCode, 0);  // nothing to save
    ASSERT_EQ(run("export editor.tabWidth --level factory --file @/t.settings").exitCode, 0);
    EXPECT_EQ(run("import @/t.settings").errorClass(), "SaveFailed");
}

TEST_F(ToolTest, EveryCommandHasHelp) {
    for (const std::string command : {"products", "tree", "get", "set", "reset", "describe",
                                      "export", "import", "check", "dirs"}) {
        const ToolResult help = run(command + " --help");
        EXPECT_EQ(help.exitCode, 0) << command;
        EXPECT_THAT(help.out, HasSubstr("Usage: tvsettings " + command)) << command;
    }
    const ToolResult top = run("--help");
    EXPECT_EQ(top.exitCode, 0);
    EXPECT_THAT(top.out, HasSubstr("--factory-dir"));
    EXPECT_THAT(top.out, HasSubstr("Exit codes: 0 success"));
}

}  // namespace
}  // namespace tvsettingstest
