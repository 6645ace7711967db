// Switches the C locale to one whose decimal point is ',' for the life of the guard: an
// installed one, or one compiled into a temporary folder. Shared with the value layer's tests.
#pragma once

#include <support/EnvVarGuard.hpp>
#include <support/TempDir.hpp>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

namespace hlutest {

class CommaLocale {
public:
    CommaLocale() : previous_(std::setlocale(LC_ALL, nullptr)) {
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8"}) {
            if (tryLocale(name)) {
                return;
            }
        }
        const std::string target = (temp_.path() / "de_DE.UTF-8").string();
        if (std::system(("localedef -i de_DE -f UTF-8 '" + target + "' >/dev/null 2>&1").c_str()) ==
            0) {
            locpath_.emplace("LOCPATH", temp_.path().string());
            tryLocale("de_DE.UTF-8");
        }
    }
    // The locale goes back before its files go.
    ~CommaLocale() { std::setlocale(LC_ALL, previous_.c_str()); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    // True when the C library really writes a decimal comma.
    bool active() const { return active_; }

private:
    bool tryLocale(const char* name) {
        char check[16] = "";
        active_ = std::setlocale(LC_ALL, name) &&
                  std::snprintf(check, sizeof check, "%.1f", 1.5) > 0 &&
                  std::strcmp(check, "1,5") == 0;
        return active_;
    }

    testsupport::TempDir temp_;
    std::optional<testsupport::EnvVarGuard> locpath_;
    std::string previous_;
    bool active_ = false;
};

}  // namespace hlutest
