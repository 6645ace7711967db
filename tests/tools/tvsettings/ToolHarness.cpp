#include "ToolHarness.hpp"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <stdexcept>

extern char** environ;

namespace tvsettingstest {

namespace {

namespace fs = std::filesystem;

const char* const toolPath = SETTINGSCORE_BUILD_ROOT "/bin/tvsettings";

// Variables the tool reads that must come from the test only, never from the machine.
const char* const controlledVariables[] = {
    "SETTINGS_FACTORYDIR", "SETTINGS_USERDIR", "SETTINGS_WORKGROUPDIR", "TOLVAN_PREFDIR", "HOME",
    "XDG_CONFIG_HOME",     "XDG_DATA_HOME"};

bool isControlled(const std::string& name) {
    for (const char* controlled : controlledVariables) {
        if (name == controlled) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::string ToolResult::errorClass() const {
    const std::string prefix = "tvsettings: ";
    const std::string::size_type start = err.find(prefix);
    if (start == std::string::npos) {
        return std::string();
    }
    const std::string::size_type end = err.find(':', start + prefix.size());
    return err.substr(start + prefix.size(), end - start - prefix.size());
}

ToolTest::ToolTest() {
    const fs::path examples = fs::path(SETTINGSCORE_SOURCE_ROOT) / "examples";
    fs::copy(examples / "factory", factoryDir(), fs::copy_options::recursive);
    fs::copy(examples / "user", userDir(), fs::copy_options::recursive);
    fs::create_directories(homeDir());
}

ToolResult ToolTest::run(const std::vector<std::string>& args,
                         const std::map<std::string, std::optional<std::string>>& env) const {
    std::map<std::string, std::optional<std::string>> variables;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const std::string::size_type equals = text.find('=');
        if (equals != std::string::npos && !isControlled(text.substr(0, equals))) {
            variables[text.substr(0, equals)] = text.substr(equals + 1);
        }
    }
    variables["HOME"] = homeDir().string();
    variables["XDG_CONFIG_HOME"] = (homeDir() / ".config").string();
    variables["XDG_DATA_HOME"] = (homeDir() / ".local" / "share").string();
    variables["SETTINGS_FACTORYDIR"] = factoryDir().string();
    variables["SETTINGS_USERDIR"] = userDir().string();
    for (const auto& entry : env) {
        variables[entry.first] = entry.second;
    }
    std::vector<std::string> envText;
    for (const auto& entry : variables) {
        if (entry.second) {
            envText.push_back(entry.first + "=" + *entry.second);
        }
    }
    std::vector<char*> envp;
    for (std::string& text : envText) {
        envp.push_back(text.data());
    }
    envp.push_back(nullptr);
    std::vector<std::string> argText{toolPath};
    argText.insert(argText.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& text : argText) {
        argv.push_back(text.data());
    }
    argv.push_back(nullptr);

    const fs::path outFile = dir_.path() / ".stdout";
    const fs::path errFile = dir_.path() / ".stderr";
    const int out = ::open(outFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    const int err = ::open(errFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (out < 0 || err < 0) {
        throw std::runtime_error("cannot create the output files");
    }
    const std::string workDir = dir_.path().string();
    const pid_t child = ::fork();
    if (child == 0) {
        // Only async-signal-safe calls between fork and exec.
        if (::dup2(out, 1) < 0 || ::dup2(err, 2) < 0 || ::chdir(workDir.c_str()) != 0) {
            ::_exit(126);
        }
        ::execve(toolPath, argv.data(), envp.data());
        ::_exit(127);
    }
    ::close(out);
    ::close(err);
    ToolResult result;
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child) {
        throw std::runtime_error("cannot run " + std::string(toolPath));
    }
    // A crash shows as a signal number above 128, which no outcome of the tool uses.
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = testsupport::readFile(outFile);
    result.err = testsupport::readFile(errFile);
    return result;
}

}  // namespace tvsettingstest
