// Hostile files among a product's files: the first touch of the product reads the good ones,
// skips each hostile one with its line in the one report (code 7), and stays within the
// limits for all of them together; and the memory budget that bounds the parser.
#include "HostileFiles.hpp"
#include "MeasuredChild.hpp"

#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>
#include <settingscore/core/xml/detail/ParserMemoryBudget.hpp>

#include <platform/hf/i18n/Conversion.hpp>

#include <support/EnvVarGuard.hpp>

#include <xercesc/util/OutOfMemoryException.hpp>

#include <iostream>
#include <vector>

namespace hostiletest {
namespace {

using ::testing::HasSubstr;
using tvutil::contextmgr::AnyInstanceID;
using tvutil::contextmgr::BlessedInstanceID;

std::string productDocument(const std::string& body) {
    return std::string(declaration) + "<settings name=\"p\" visible=\"true\"" + settingsNamespace +
           ">\n" + body + "</settings>\n";
}

TEST(HostileProductFiles, AreSkippedEachWithItsLineWhileTheGoodOnesLoadWithinTheLimits) {
    testsupport::TempDir dir;
    const fs::path factory = dir.path() / "factory" / "p";
    const fs::path user = dir.path() / "user";
    testsupport::writeFile(
        factory / "good.settings",
        productDocument(
            "<key name=\"k\" visible=\"true\"><int32><value>1</value></int32></key>\n"));
    std::string laughs = "<!ENTITY a0 \"lol\">";
    for (int level = 1; level <= 9; ++level) {
        laughs += "<!ENTITY a" + std::to_string(level) + " \"";
        for (int i = 0; i < 10; ++i) {
            laughs += "&a" + std::to_string(level - 1) + ";";
        }
        laughs += "\">";
    }
    FileWriter(factory / "laughs.settings")
        .text(std::string(declaration) + "<!DOCTYPE settings [" + laughs + "]>\n")
        .text(productDocument("<key name=\"l\"><string><value>&a9;</value></string></key>\n"))
        .done();
    FileWriter(factory / "deep.settings")
        .text(std::string(declaration) + "<settings name=\"p\"" + settingsNamespace + ">")
        .repeat("<settings name=\"g\">", 1000000)
        .repeat("</settings>", 1000000)
        .text("</settings>\n")
        .done();
    FileWriter(factory / "huge.settings")
        .text(std::string(declaration) + "<settings name=\"p\"" + settingsNamespace + " x=\"")
        .repeat("x", 50u << 20)
        .text("\"/>\n")
        .done();
    const std::string whole =
        productDocument("<key name=\"t\"><int32><value>2</value></int32></key>\n");
    testsupport::writeFile(factory / "truncated.settings", whole.substr(0, whole.size() / 2));
    FileWriter(user / "p.settings").repeat(std::string(1, '\0'), 4096).done();

    const testsupport::EnvVarGuard factoryDir("SETTINGS_FACTORYDIR",
                                              factory.parent_path().string());
    const testsupport::EnvVarGuard userDir("SETTINGS_USERDIR", user.string());
    sc::TSettings::reset(AnyInstanceID);
    sc::turnOffSettingsSaving();

    const ChildReport report = runMeasuredInChild([] {
        const auto product = sc::Settings::getSettingsRoot(BlessedInstanceID)->getChild("p");
        std::string text = "no report";
        try {
            product->getChildren();
        } catch (const ErrorReadingSettingsData& failure) {
            text = "code " + std::to_string(failure.getErrorCode()) + ":\n" +
                   hf::i18n::to_string(failure.getDetailErrorMsg());
        }
        return text + "k=" + std::to_string(boost::any_cast<int>(product->getAny("k", ""))) +
               " children=" + std::to_string(product->getChildren().size());
    });
    sc::turnOnSettingsSaving();
    sc::TSettings::reset(AnyInstanceID);

    ASSERT_EQ(report.kind, ChildReport::Kind::Returned)
        << kindName(report.kind) << ": " << report.text;
    const std::string& text = report.text;
    EXPECT_THAT(text, ::testing::StartsWith("code 7:\n"));
    const auto line = [&](const fs::path& file, const std::string& detail) {
        return file.string() + "\t" + detail;
    };
    EXPECT_THAT(text, HasSubstr(line(factory / "laughs.settings",
                                     "Settings files have no document type declaration\n")));
    EXPECT_THAT(text, HasSubstr(line(factory / "deep.settings",
                                     "Elements nested deeper than 256 levels\n")));
    EXPECT_THAT(text, HasSubstr(line(factory / "huge.settings",
                                     "The file needs more than 16 MiB of parser memory")));
    EXPECT_THAT(text, HasSubstr(line(factory / "truncated.settings", "LineNum=")));
    EXPECT_THAT(text, HasSubstr(line(user / "p.settings", "LineNum=1  ColNum=1")));
    EXPECT_THAT(text, ::testing::Not(HasSubstr("good.settings")));
    // Only the good file's key made it: nothing of the others, not even a part.
    EXPECT_THAT(text, ::testing::EndsWith("k=1 children=1"));
    std::cout << "[ measured ] product load with five hostile files: " << report.cpuMs
              << " ms CPU, +" << report.memoryGrowthKiB << " KiB peak\n";
    // Five hostile files, each allowed the limit of one parse.
    EXPECT_LT(report.cpuMs, 5 * cpuLimitMs);
    EXPECT_LT(report.memoryGrowthKiB, memoryLimitKiB);
}

TEST(ParserMemoryBudget, RefusesWhatWouldPassTheLimitCountsTheOverheadAndFreesLeftovers) {
    namespace scd = sc::detail;
    scd::ParserMemoryBudget budget(1u << 20);
    std::vector<void*> blocks;
    // Small blocks cost more than their size: a thousand 8-byte blocks hold well over 8 KB.
    for (int i = 0; i < 1000; ++i) {
        blocks.push_back(budget.allocate(8));
    }
    EXPECT_GE(budget.heldBytes(), 1000u * 32u);
    // Aligned for any type, and usable: the blocks don't overlap.
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(blocks[i]) % alignof(std::max_align_t), 0u);
        *static_cast<std::uint64_t*>(blocks[i]) = i;
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        EXPECT_EQ(*static_cast<std::uint64_t*>(blocks[i]), i);
    }
    for (void* block : blocks) {
        budget.deallocate(block);
    }
    EXPECT_EQ(budget.heldBytes(), 0u);
    budget.deallocate(nullptr);

    // Up to the limit and no further; what is given back may be taken again.
    void* half = budget.allocate(500000);
    void* quarter = budget.allocate(250000);
    EXPECT_THROW(budget.allocate(300000), xercesc::OutOfMemoryException);
    EXPECT_THROW(budget.allocate(std::size_t(1) << 62), xercesc::OutOfMemoryException);
    budget.deallocate(half);
    void* again = budget.allocate(500000);
    EXPECT_LE(budget.heldBytes(), budget.limitBytes());
    budget.deallocate(again);
    // `quarter` is left held: the budget's destructor frees it (the leak check of the
    // instrumented build would report it otherwise).
    EXPECT_GT(budget.heldBytes(), 250000u);
    (void)quarter;
}

}  // namespace
}  // namespace hostiletest
