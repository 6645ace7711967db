#include "ToolHarness.hpp"

#include <sys/wait.h>

#include <cstdlib>
#include <regex>
#include <sstream>

namespace tvsettingstest {

namespace {

namespace fs = std::filesystem;

const std::string toolPath = SETTINGSCORE_BUILD_ROOT "/bin/tvsettings";

// Variables the tool reads: they must come from the test only, never from the machine.
const char* const toolVariables[] = {
    "SETTINGS_FACTORYDIR", "SETTINGS_USERDIR", "SETTINGS_WORKGROUPDIR", "TOLVAN_PREFDIR", "HOME",
    "XDG_CONFIG_HOME",     "XDG_DATA_HOME"};

// `text` as one word for the shell.
std::string quoted(const std::string& text) {
    std::string word = "'";
    for (const char c : text) {
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return word + "'";
}

}  // namespace

std::string ToolResult::errorClass() const {
    std::smatch match;
    return std::regex_search(err, match, std::regex("tvsettings: (\\w+):")) ? match.str(1) : "";
}

ToolTest::ToolTest() {
    const fs::path examples = fs::path(SETTINGSCORE_SOURCE_ROOT) / "examples";
    fs::copy(examples / "factory", factoryDir(), fs::copy_options::recursive);
    fs::copy(examples / "user", userDir(), fs::copy_options::recursive);
    fs::create_directories(homeDir());
}

ToolResult ToolTest::runArgs(const std::vector<std::string>& args, const Env& env) const {
    Env variables = {{"HOME", homeDir().string()},
                     {"XDG_CONFIG_HOME", (homeDir() / ".config").string()},
                     {"XDG_DATA_HOME", (homeDir() / ".local" / "share").string()},
                     {"SETTINGS_FACTORYDIR", factoryDir().string()},
                     {"SETTINGS_USERDIR", userDir().string()}};
    for (const auto& [name, value] : env) {
        variables[name] = value;
    }
    // env(1) first drops the machine's values (and those the test removes), then sets the test's.
    std::string command = "cd " + quoted(dir_.path().string()) + " && exec env";
    std::string assignments;
    for (const char* name : toolVariables) {
        command += std::string(" -u ") + name;
    }
    for (const auto& [name, value] : variables) {
        (value ? assignments : command) +=
            value ? " " + name + "=" + quoted(*value) : " -u " + name;
    }
    command += assignments;
    command += " " + quoted(toolPath);
    for (const std::string& arg : args) {
        command += " " + quoted(arg);
    }
    const int status = std::system((command + " >.stdout 2>.stderr").c_str());
    ToolResult result;
    // A crash shows as a signal number above 128, which no outcome of the tool uses.
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = testsupport::readFile(dir_.path() / ".stdout");
    result.err = testsupport::readFile(dir_.path() / ".stderr");
    return result;
}

ToolResult ToolTest::run(const std::string& commandLine, const Env& env) const {
    std::vector<std::string> args;
    std::istringstream words(commandLine);
    for (std::string word; words >> word;) {
        args.push_back(word[0] == '@' ? dir_.path().string() + word.substr(1) : word);
    }
    return runArgs(args, env);
}

}  // namespace tvsettingstest
