// Runs the real tvsettings binary against copies of the sample products in a temporary folder,
// with HOME and the XDG folders below that folder too, and hands back its exit code and output.
#pragma once

#include "support/TempDir.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tvsettingstest {

using ::testing::HasSubstr;
using Json = nlohmann::json;
// Variables for one run of the tool; an empty optional removes the variable.
using Env = std::map<std::string, std::optional<std::string>>;

struct ToolResult {
    int exitCode = -1;
    std::string out;
    std::string err;

    Json outJson() const { return Json::parse(out); }
    Json errJson() const { return Json::parse(err); }
    // The class of the "tvsettings: <Class>: ..." line on stderr; empty when there is none.
    std::string errorClass() const;
};

class ToolTest : public ::testing::Test {
protected:
    ToolTest();

    // Runs tvsettings with `args` in the temporary folder, in the test's environment without the
    // variables the tool reads, with HOME and the XDG folders below the temporary folder,
    // SETTINGS_FACTORYDIR and SETTINGS_USERDIR naming the copies, and `env`.
    ToolResult runArgs(const std::vector<std::string>& args, const Env& env = {}) const;
    // The same with the arguments as one line split at blanks, where "@" at the start of an
    // argument stands for the temporary folder.
    ToolResult run(const std::string& commandLine, const Env& env = {}) const;

    std::filesystem::path factoryDir() const { return dir_.path() / "factory"; }
    std::filesystem::path userDir() const { return dir_.path() / "user"; }
    std::filesystem::path homeDir() const { return dir_.path() / "home"; }
    std::string path(const std::string& relative) const {
        return (dir_.path() / relative).string();
    }

    testsupport::TempDir dir_;
};

}  // namespace tvsettingstest
