// Hostile files among a product's files: the first touch of the product reads the good ones,
// skips each hostile one with its line in the one report (code 7), and stays within the
// limits for all of them together; and the memory budget that bounds the parser.
#include "Hostile.hpp"

#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>
#include <settingscore/core/xml/detail/ParserMemoryBudget.hpp>

#include <support/EnvVarGuard.hpp>

#include <xercesc/util/OutOfMemoryException.hpp>

#include <iostream>

namespace hostiletest {
namespace {

using ::testing::HasSubstr;
using tvutil::contextmgr::AnyInstanceID;

TEST(HostileProductFiles, AreSkippedEachWithItsLineWhileTheGoodOnesLoadWithinTheLimits) {
    testsupport::TempDir dir;
    const fs::path factory = dir.path() / "factory" / "p";
    const fs::path user = dir.path() / "user";
    const std::string element = "<settings name=\"p\"" + std::string(settingsNamespace);
    const std::string good = declaration + element + " visible=\"true\">" +
                             "<key name=\"k\" visible=\"true\"><int32><value>1</value></int32>" +
                             "</key></settings>\n";
    testsupport::writeFile(factory / "good.settings", good);
    writePieces(factory / "laughs.settings",
                {declaration + ("<!DOCTYPE settings [" + billionLaughs() + "]>\n") + element +
                 "><key name=\"l\"><string><value>&lol9;</value></string></key></settings>\n"});
    writePieces(factory / "deep.settings", {declaration + element + ">",
                                            {"<settings name=\"g\">", 300000},
                                            {"</settings>", 300000},
                                            "</settings>\n"});
    writePieces(factory / "huge.settings",
                {declaration + element + " x=\"", {"x", 15u << 20}, "\"/>"});
    testsupport::writeFile(factory / "truncated.settings", good.substr(0, good.size() / 2));
    writePieces(user / "p.settings", {{std::string(1, '\0'), 4096}});

    const testsupport::EnvVarGuard factoryDir("SETTINGS_FACTORYDIR",
                                              factory.parent_path().string());
    const testsupport::EnvVarGuard userDir("SETTINGS_USERDIR", user.string());
    sc::TSettings::reset(AnyInstanceID);
    sc::turnOffSettingsSaving();
    const ChildReport report = runMeasuredInChild([] {
        const auto product =
            sc::Settings::getSettingsRoot(tvutil::contextmgr::BlessedInstanceID)->getChild("p");
        std::string text = "no report";
        try {
            product->getChildren();
        } catch (const ErrorReadingSettingsData& failure) {
            text = "code " + std::to_string(failure.getErrorCode()) + ":\n" +
                   readingtest::detailText(failure);
        }
        return text + "k=" + std::to_string(boost::any_cast<int>(product->getAny("k", ""))) +
               " children=" + std::to_string(product->getChildren().size());
    });
    sc::turnOnSettingsSaving();
    sc::TSettings::reset(AnyInstanceID);

    ASSERT_TRUE(report.returned) << report.text;
    EXPECT_THAT(report.text, ::testing::StartsWith("code 7:\n"));
    const std::pair<fs::path, std::string> lines[] = {
        {factory / "laughs.settings", noDoctype + "\n"},
        {factory / "deep.settings", tooDeep + "\n"},
        {factory / "huge.settings", tooBig},
        {factory / "truncated.settings", "LineNum="},
        {user / "p.settings", "LineNum=1  ColNum=1"},
    };
    for (const auto& [file, detail] : lines) {
        EXPECT_THAT(report.text, HasSubstr(file.string() + "\t" + detail));
    }
    EXPECT_THAT(report.text, ::testing::Not(HasSubstr("good.settings")));
    // Only the good file's key made it: nothing of the others, not even a part.
    EXPECT_THAT(report.text, ::testing::EndsWith("k=1 children=1"));
    std::cout << "[ measured ] product load with five hostile files: " << report.cpuMs
              << " ms CPU, +" << report.memoryGrowthKiB << " KiB peak\n";
    // Five hostile files, each allowed the limit of one parse.
    EXPECT_LT(report.cpuMs, 5 * cpuLimitMs);
    EXPECT_LT(report.memoryGrowthKiB, memoryLimitKiB);
}

TEST(ParserMemoryBudget, RefusesWhatWouldPassTheLimitCountsTheOverheadAndFreesLeftovers) {
    sc::detail::ParserMemoryBudget budget(1u << 20);
    // Small blocks cost more than their size; each is aligned for any type, and usable.
    std::vector<void*> blocks;
    for (std::size_t i = 0; i < 1000; ++i) {
        blocks.push_back(budget.allocate(8));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(blocks[i]) % alignof(std::max_align_t), 0u);
        *static_cast<std::uint64_t*>(blocks[i]) = i;
    }
    EXPECT_GE(budget.heldBytes(), 1000u * 32u);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        EXPECT_EQ(*static_cast<std::uint64_t*>(blocks[i]), i);  // no two overlap
        budget.deallocate(blocks[i]);
    }
    EXPECT_EQ(budget.heldBytes(), 0u);
    budget.deallocate(nullptr);
    // Up to the limit and no further; what is given back may be taken again.
    void* half = budget.allocate(500000);
    budget.allocate(250000);  // left held: the budget's destructor frees it, or leaks are reported
    EXPECT_THROW(budget.allocate(300000), xercesc::OutOfMemoryException);
    EXPECT_THROW(budget.allocate(std::size_t(1) << 62), xercesc::OutOfMemoryException);
    budget.deallocate(half);
    void* again = budget.allocate(500000);
    EXPECT_LE(budget.heldBytes(), budget.limitBytes());
    budget.deallocate(again);
    EXPECT_GT(budget.heldBytes(), 250000u);
}

}  // namespace
}  // namespace hostiletest
