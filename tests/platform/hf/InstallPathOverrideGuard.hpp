// Points hf::filesystem::get_install_path at another root for the life of the guard.
#pragma once

#include <platform/hf/filesystem/InstallPath.hpp>

namespace hftest {

class InstallPathOverrideGuard {
public:
    explicit InstallPathOverrideGuard(const hf::filesystem::upath& root) {
        hf::filesystem::set_install_path_override(root);
    }
    ~InstallPathOverrideGuard() { hf::filesystem::set_install_path_override({}); }
    InstallPathOverrideGuard(const InstallPathOverrideGuard&) = delete;
    InstallPathOverrideGuard& operator=(const InstallPathOverrideGuard&) = delete;
};

}  // namespace hftest
