#include <platform/hf/i18n/MessageCatalog.hpp>

#include <platform/hf/filesystem/InstallPath.hpp>
#include <platform/hf/i18n/Conversion.hpp>

#include "Threads.hpp"

#include <support/TempDir.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <string>

using hf::resource::BaseMsgID;

namespace {

// A root of its own, for the life of the object, with catalogue files below resources/messages.
class CatalogRoot {
public:
    CatalogRoot() { hf::filesystem::set_install_path_override(temp_.wpath()); }
    ~CatalogRoot() { hf::filesystem::set_install_path_override({}); }

    void write(const std::string& relativeFile, const std::string& content) {
        testsupport::writeFile(temp_.path() / "resources/messages" / relativeFile, content);
    }

private:
    testsupport::TempDir temp_;
};

std::string catalog(const std::string& name, const std::string& messages) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<catalog name=\"" + name + "\">" +
           messages + "</catalog>\n";
}

template <class... Args>
std::wstring message(const std::string& catalogName, const std::string& key, const Args&... args) {
    BaseMsgID id(catalogName, key, sizeof...(Args));
    std::size_t index = 0;
    (id.setArg(index++, args), ...);
    return hf::i18n::MessageCatalog::get_message(id, hf::i18n::HfLocale::global());
}

}  // namespace

TEST(MessageCatalog, EntriesTakeTheirArgumentsByPosition) {
    CatalogRoot root;
    root.write(
        "T/app/core.xml",
        catalog("T:app:core",
                "<message key=\"Types\">has type {1}, declared as {0}.</message>"
                "<message key=\"Twice\">{0} and {0} again</message>"
                "<message key=\"Braces\">{} {x} {0 } {{0}} {12345678901234567890}</message>"
                "<message key=\"Text\">\xC3\xA9 \xE2\x82\xAC &lt;b&gt; &amp; <![CDATA[<c>]]> "
                "{0}</message>"));

    EXPECT_EQ(L"has type int32, declared as double.",
              message("T:app:core", "Types", "double", "int32"));
    EXPECT_EQ(L"x and x again", message("T:app:core", "Twice", L"x", "unused"));
    // A placeholder without an argument, and every other brace, stay as written.
    EXPECT_EQ(L"has type {1}, declared as double.", message("T:app:core", "Types", "double"));
    EXPECT_EQ(L"{} {x} {0 } {a} {12345678901234567890}", message("T:app:core", "Braces", "a"));
    EXPECT_EQ(L"{1} and {1} again", message("T:app:core", "Twice", "{1}", "2"));  // not rescanned
    EXPECT_EQ(L"\u00E9 \u20AC <b> & <c> \U0001F600", message("T:app:core", "Text", L"\U0001F600"));
}

TEST(MessageCatalog, AnythingMissingOrBrokenGivesTheKeyAndArguments) {
    CatalogRoot root;
    root.write("T/ok/one.xml", catalog("T:ok:one", "<message key=\"Known\">known</message>"));
    EXPECT_EQ(L"T:ok:one:Unknown(a, b)", message("T:ok:one", "Unknown", "a", L"b"));
    EXPECT_EQ(L"T:ok:one:Unknown()", message("T:ok:one", "Unknown"));
    EXPECT_EQ(L"T:none:here:K(\u00E9)", message("T:none:here", "K", L"\u00E9"));

    const std::pair<const char*, std::string> broken[] = {
        {"unclosed", catalog("T:bad:unclosed", "<message key=\"K\">text")},
        {"notxml", "this is not XML at all"},
        {"root", "<messages name=\"T:bad:root\"><message key=\"K\">t</message></messages>"},
        {"nokey", catalog("T:bad:nokey", "<message>t</message>")},
        {"nested", catalog("T:bad:nested", "<message key=\"K\">t<b/></message>")},
        {"othername", catalog("T:bad:wrong", "<message key=\"K\">t</message>")},
        {"doctype",
         "<?xml version=\"1.0\"?>\n<!DOCTYPE catalog [<!ENTITY e \"boom\">]>\n"
         "<catalog name=\"T:bad:doctype\"><message key=\"K\">&e;</message></catalog>"},
    };
    for (const auto& [file, content] : broken) {
        root.write(std::string("T/bad/") + file + ".xml", content);
        const std::string name = std::string("T:bad:") + file;
        EXPECT_EQ(hf::i18n::to_ustring(name + ":K(1)"), message(name, "K", 1)) << name;
    }
    // Names that cannot name a file below the root are never looked for elsewhere.
    root.write("escape.xml", catalog("..:escape", "<message key=\"K\">escaped</message>"));
    EXPECT_EQ(L"T:..:escape:K()", message("T:..:escape", "K"));
    EXPECT_EQ(L"::K()", message(":", "K"));
}

// Each root reads a catalogue once and keeps it, also while many threads look up at once.
TEST(MessageCatalog, ConcurrentLookupsReadEachCatalogueOnce) {
    CatalogRoot root;
    std::string messages;
    for (int i = 0; i < 50; ++i) {
        messages +=
            "<message key=\"K" + std::to_string(i) + "\">" + std::to_string(i) + "</message>";
    }
    root.write("T/many/a.xml", catalog("T:many:a", messages));
    root.write("T/many/b.xml", catalog("T:many:b", messages));
    std::atomic<int> wrong{0};
    hftest::onThreads(8, [&wrong](int t) {
        for (int i = 0; i < 300; ++i) {
            const int key = (i * 7 + t) % 50;
            const std::string name = std::string("T:many:") + "ab"[(t + i) % 2];
            wrong += message(name, "K" + std::to_string(key)) != std::to_wstring(key);
        }
    });
    EXPECT_EQ(0, wrong.load());
    root.write("T/many/a.xml", catalog("T:many:a", "<message key=\"K0\">changed</message>"));
    EXPECT_EQ(L"0", message("T:many:a", "K0"));

    CatalogRoot other;  // another root is another catalogue, even under the same name
    other.write("T/many/a.xml", catalog("T:many:a", "<message key=\"K0\">other</message>"));
    EXPECT_EQ(L"other", message("T:many:a", "K0"));
}
