// The compiled schema that all parsers share: one per schema file, recompiled when the file
// changes, dropped when it goes, and safe to take while other threads parse with it.
#include "ReadingFixture.hpp"

#include <atomic>
#include <thread>

namespace readingtest {
namespace {

namespace fs = std::filesystem;

using IllegalTag = TOLVAN::settings::core::XMLParserErrorIllegalTagName;

// A key with a type word the schema lacks: the schema refuses it (code 4), the lax schema
// lets it through to the reader, which refuses it by name (code 5).
const std::string unknownType = document(key("k", "<colour/>"));
// Valid under both; the lax schema supplies no defaults, so the array sizes are spelt out.
const std::string valid =
    document(key("k", "<uint16 minArraySize=\"1\" maxArraySize=\"1\"><value>5</value></uint16>"));

class SchemaGrammarTest : public ReadingTest {
protected:
    // What a new parser makes of `text`: "ok", or "code <n>".
    std::string outcome(const std::string& text) {
        try {
            parse(text);
            return "ok";
        } catch (const ErrorReadingSettingsData& failure) {
            return "code " + std::to_string(failure.getErrorCode());
        }
    }

    // Replaces the schema below `root` in one step, as an installer would.
    static void replaceSchema(const fs::path& root, const std::string& schema,
                              const std::string& scratch = "next.xsd") {
        const fs::path folder = root / "toolbox" / "tolvan" / "configtools";
        testsupport::writeFile(folder / scratch, schema);
        fs::rename(folder / scratch, folder / "settings.xsd");
    }
};

TEST_F(SchemaGrammarTest, ASchemaReplacedRemovedOrBrokenOnDiskIsWhatTheNextParserSees) {
    const fs::path root = dir_.path() / "root";
    const InstallRootGuard guard(root.wstring());
    installSchema(root, builtSchema());
    EXPECT_EQ(outcome(valid), "ok");
    EXPECT_EQ(outcome(unknownType), "code 4");

    replaceSchema(root, laxSchema);
    const auto refusedByName = readError(unknownType);
    EXPECT_EQ(refusedByName.getErrorCode(), ErrorReadingSettingsData::SaxError);
    EXPECT_EQ(detailText(refusedByName), messageText<IllegalTag>("k", "colour", "key"));

    // Gone: every parse fails as with no schema ever installed, and keeps failing.
    fs::remove(root / "toolbox" / "tolvan" / "configtools" / "settings.xsd");
    for (int i = 0; i < 2; ++i) {
        const auto noSchema = readError(valid);
        EXPECT_EQ(noSchema.getErrorCode(), ErrorReadingSettingsData::ParseError);
        EXPECT_THAT(detailText(noSchema), ::testing::HasSubstr("no declaration found"));
    }

    // Not a schema at all: no parse gets through, and a good schema put back is taken up.
    replaceSchema(root, "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"><xs:element");
    EXPECT_EQ(outcome(valid), "code 4");
    replaceSchema(root, builtSchema());
    EXPECT_EQ(outcome(valid), "ok");
    EXPECT_EQ(outcome(unknownType), "code 4");
}

TEST_F(SchemaGrammarTest, EachInstallationRootKeepsItsOwnSchemaAcrossManyRoots) {
    // More roots than the cache remembers, strict and lax in turn, each visited twice.
    std::vector<fs::path> roots;
    for (int i = 0; i < 12; ++i) {
        roots.push_back(dir_.path() / ("root " + std::to_string(i)));
        installSchema(roots.back(), i % 2 ? laxSchema : builtSchema());
    }
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < roots.size(); ++i) {
            const InstallRootGuard guard(roots[i].wstring());
            EXPECT_EQ(outcome(valid), "ok") << roots[i];
            EXPECT_EQ(outcome(unknownType), i % 2 ? "code 5" : "code 4") << roots[i];
        }
    }
}

TEST_F(SchemaGrammarTest, ParsersOnSeveralThreadsReadWhileTheSchemaIsReplacedUnderThem) {
    const fs::path root = dir_.path() / "root";
    const InstallRootGuard guard(root.wstring());
    installSchema(root, builtSchema());
    const std::wstring file = write(valid);
    const std::wstring refused = write(unknownType, "unknown.settings");

    std::atomic<bool> stop{false};
    std::atomic<int> parsed{0};
    std::atomic<int> wrong{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 4; ++t) {
        readers.emplace_back([&] {
            while (!stop.load()) {
                try {
                    // A new parser each time, so that the shared grammar is looked up (and now
                    // and then recompiled) while other threads parse with an older one.
                    sc::SettingsFileParser parser;
                    if (!storesValue(parser.parse(file), "k", static_cast<unsigned short>(5))) {
                        ++wrong;
                    }
                    try {
                        parser.parse(refused);
                        ++wrong;  // neither schema admits it
                    } catch (const ErrorReadingSettingsData&) {
                    }
                    ++parsed;
                } catch (...) {
                    ++wrong;
                }
            }
        });
    }
    for (int swap = 0; swap < 40; ++swap) {
        replaceSchema(root, swap % 2 ? builtSchema() : laxSchema);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    stop = true;
    for (auto& reader : readers) {
        reader.join();
    }
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_GT(parsed.load(), 0);
}

}  // namespace
}  // namespace readingtest
