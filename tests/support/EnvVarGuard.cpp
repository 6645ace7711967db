#include <support/EnvVarGuard.hpp>

#include <cstdlib>
#include <utility>

namespace testsupport {
namespace {

void assign(const std::string& name, const std::optional<std::string>& value) {
    if (value) {
        ::setenv(name.c_str(), value->c_str(), 1);
    } else {
        ::unsetenv(name.c_str());
    }
}

}  // namespace

EnvVarGuard::EnvVarGuard(std::string name, std::optional<std::string> value)
    : name_(std::move(name)) {
    if (const char* old = std::getenv(name_.c_str())) {
        previous_ = old;
    }
    assign(name_, value);
}

EnvVarGuard::~EnvVarGuard() {
    assign(name_, previous_);
}

}  // namespace testsupport
