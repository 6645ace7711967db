#include <platform/hf/filesystem/InstallPath.hpp>
#include <platform/hf/filesystem/Operations.hpp>
#include <platform/hf/filesystem/Path.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace fs = hf::filesystem;

TEST(Path, ConcatenationJoinsWithOneSeparatorAndNeverDropsTheLeftSide) {
    const std::pair<fs::upath, const wchar_t*> cases[] = {
        {fs::upath(L"/root") / L"toolbox", L"/root/toolbox"},
        {fs::upath(L"/root/") / L"toolbox", L"/root/toolbox"},
        {fs::upath(L"/root") / L"/abs", L"/root/abs"},  // appended, not substituted
        {fs::upath(L"/root/") / L"//abs", L"/root/abs"},
        {fs::upath(L"/root") / L"", L"/root"},
        {fs::upath() / L"toolbox", L"toolbox"},
        {fs::upath(L"/") / L"toolbox", L"/toolbox"},
    };
    for (const auto& [joined, expected] : cases) {
        EXPECT_EQ(expected, joined.wstring());
    }
    fs::upath dir(L"/home/u/.config");
    dir /= L"Lindqvare/TOLVAN/V2041b";
    EXPECT_EQ(L"/home/u/.config/Lindqvare/TOLVAN/V2041b", dir.wstring());
}

TEST(Path, ExtensionIsTakenFromTheLastDotOfTheFileName) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"/d/p.settings", L".settings"},
        {L"/d/p.settings.tmp", L".tmp"},
        {L"/d/.settings", L".settings"},
        {L"/d/name.", L"."},
        {L"/d/tempABC", L""},
        {L"/d.x/name", L""},
        {L"/d/..", L""},
        {L".", L""},
    };
    for (const auto& [path, extension] : cases) {
        EXPECT_EQ(extension, fs::upath(path).extension().wstring()) << path;
    }
}

TEST(InstallPath, IsTheBuildTreeUntilOverriddenAndAgainAfterwards) {
    const fs::upath root = fs::get_install_path();
    EXPECT_TRUE(fs::is_absolute(root));
    EXPECT_TRUE(std::filesystem::equivalent(root.native_path(), SETTINGSCORE_BUILD_ROOT))
        << root.string();
    fs::set_install_path_override(fs::upath(L"/opt/elsewhere/\u00E9"));
    EXPECT_EQ(fs::upath(L"/opt/elsewhere/\u00E9"), fs::get_install_path());
    fs::set_install_path_override({});
    EXPECT_EQ(root, fs::get_install_path());
}
