// Sets or clears one environment variable for the life of the guard and puts back what was
// there before.
#pragma once

#include <optional>
#include <string>

namespace testsupport {

class EnvVarGuard {
public:
    // value empty-optional: unset the variable.
    EnvVarGuard(std::string name, std::optional<std::string> value);
    ~EnvVarGuard();
    EnvVarGuard(const EnvVarGuard&) = delete;
    EnvVarGuard& operator=(const EnvVarGuard&) = delete;

private:
    std::string name_;
    std::optional<std::string> previous_;
};

}  // namespace testsupport
