// Runs the real tvsettings binary in a child process against copies of the sample products in
// a temporary folder, with HOME and the XDG folders pointing into that folder as well, and
// hands back its exit code, stdout and stderr.
#pragma once

#include "support/TempDir.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tvsettingstest {

struct ToolResult {
    int exitCode = -1;
    std::string out;
    std::string err;

    nlohmann::json outJson() const { return nlohmann::json::parse(out); }
    nlohmann::json errJson() const { return nlohmann::json::parse(err); }
    // The "tvsettings: <Class>: ..." line's class, empty when stderr has none.
    std::string errorClass() const;
};

class ToolTest : public ::testing::Test {
protected:
    ToolTest();

    // Runs tvsettings with `args`. The environment is the test's own without the settings
    // variables, plus HOME, XDG_CONFIG_HOME and XDG_DATA_HOME below the temporary folder,
    // SETTINGS_FACTORYDIR and SETTINGS_USERDIR naming the copies, and then `env` (an empty
    // optional removes a variable).
    ToolResult run(const std::vector<std::string>& args,
                   const std::map<std::string, std::optional<std::string>>& env = {}) const;

    std::filesystem::path factoryDir() const { return dir_.path() / "factory"; }
    std::filesystem::path userDir() const { return dir_.path() / "user"; }
    std::filesystem::path homeDir() const { return dir_.path() / "home"; }
    std::filesystem::path path(const std::string& relative) const { return dir_.path() / relative; }

    testsupport::TempDir dir_;
};

}  // namespace tvsettingstest
