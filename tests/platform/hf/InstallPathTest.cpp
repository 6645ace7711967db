#include <platform/hf/filesystem/InstallPath.hpp>

#include <platform/hf/filesystem/Operations.hpp>

#include "InstallPathOverrideGuard.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = hf::filesystem;

TEST(InstallPath, IsTheBuildTreeUntilOverriddenAndAgainAfterwards) {
    const fs::upath root = fs::get_install_path();
    ASSERT_FALSE(root.empty());
    EXPECT_TRUE(fs::is_absolute(root));
    EXPECT_TRUE(std::filesystem::equivalent(root.native_path(), SETTINGSCORE_BUILD_ROOT))
        << root.string();
    EXPECT_TRUE(std::filesystem::exists(root.native_path() / "lib" / "libtvplatform.so"));

    {
        hftest::InstallPathOverrideGuard guard(fs::upath(L"/opt/elsewhere/\u00E9"));
        EXPECT_EQ(fs::upath(L"/opt/elsewhere/\u00E9"), fs::get_install_path());
    }
    EXPECT_EQ(root, fs::get_install_path());
}
