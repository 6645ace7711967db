#include <platform/hf/i18n/MessageCatalog.hpp>

#include <platform/hf/filesystem/InstallPath.hpp>
#include <platform/hf/i18n/Conversion.hpp>

#include "Threads.hpp"

#include <support/TempDir.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <string>

using hf::i18n::HfLocale;
using hf::i18n::MessageCatalog;
using hf::resource::BaseMsgID;
using testsupport::TempDir;
using testsupport::writeFile;

namespace {

// A root of its own, for the life of the object, with catalogue files below resources/messages.
class CatalogRoot {
public:
    CatalogRoot() { hf::filesystem::set_install_path_override(temp_.wpath()); }
    ~CatalogRoot() { hf::filesystem::set_install_path_override({}); }

    void write(const std::string& relativeFile, const std::string& content) {
        writeFile(temp_.path() / "resources/messages" / relativeFile, content);
    }

private:
    TempDir temp_;
};

std::string catalog(const std::string& name, const std::string& messages) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<catalog name=\"" + name + "\">\n" +
           messages + "</catalog>\n";
}

template <class... Args>
std::wstring message(const std::string& catalogName, const std::string& key, const Args&... args) {
    BaseMsgID id(catalogName, key, sizeof...(Args));
    std::size_t index = 0;
    (id.setArg(index++, args), ...);
    return MessageCatalog::get_message(id, HfLocale::global());
}

}  // namespace

TEST(MessageCatalog, EntriesTakeTheirArgumentsByPosition) {
    CatalogRoot root;
    root.write(
        "T/app/core.xml",
        catalog("T:app:core",
                "  <message key=\"DataTypeNotMatch\">The value has type {1}, but the setting "
                "is declared as {0}.</message>\n"
                "  <message key=\"Twice\">{0} and {0} again</message>\n"
                "  <message key=\"Braces\">{} {x} {0 } {{0}} {12345678901234567890}"
                "</message>\n"
                "  <message key=\"Markup\">a &lt;b&gt; &amp; <![CDATA[<c>]]></message>\n"
                "  <message key=\"Utf8\">\xC3\xA9t\xC3\xA9 \xE2\x82\xAC {0}</message>\n"));

    EXPECT_EQ(L"The value has type int32, but the setting is declared as double.",
              message("T:app:core", "DataTypeNotMatch", "double", "int32"));
    EXPECT_EQ(L"x and x again", message("T:app:core", "Twice", L"x", "unused"));
    // A placeholder without an argument, and every other brace, stay as written.
    EXPECT_EQ(L"The value has type {1}, but the setting is declared as double.",
              message("T:app:core", "DataTypeNotMatch", "double"));
    EXPECT_EQ(L"{} {x} {0 } {a} {12345678901234567890}", message("T:app:core", "Braces", "a"));
    EXPECT_EQ(L"a <b> & <c>", message("T:app:core", "Markup"));
    // Arguments are not scanned again.
    EXPECT_EQ(L"{1} and {1} again", message("T:app:core", "Twice", "{1}", "second"));
    EXPECT_EQ(L"\u00E9t\u00E9 \u20AC \U0001F600\u00FC",
              message("T:app:core", "Utf8", L"\U0001F600\u00FC"));
}

TEST(MessageCatalog, AnythingMissingOrBrokenGivesTheKeyAndArguments) {
    CatalogRoot root;
    root.write("T/ok/one.xml", catalog("T:ok:one", "<message key=\"Known\">known</message>"));
    root.write("T/bad/unclosed.xml", catalog("T:bad:unclosed", "<message key=\"K\">text"));
    root.write("T/bad/notxml.xml", "this is not XML at all");
    root.write("T/bad/root.xml",
               "<messages name=\"T:bad:root\"><message key=\"K\">t</message></messages>");
    root.write("T/bad/nokey.xml", catalog("T:bad:nokey", "<message>t</message>"));
    root.write("T/bad/nested.xml", catalog("T:bad:nested", "<message key=\"K\">t<b/></message>"));
    root.write("T/bad/othername.xml", catalog("T:bad:wrong", "<message key=\"K\">t</message>"));
    root.write("T/bad/doctype.xml",
               "<?xml version=\"1.0\"?>\n<!DOCTYPE catalog [<!ENTITY e \"boom\">]>\n"
               "<catalog name=\"T:bad:doctype\"><message key=\"K\">&e;</message></catalog>");

    EXPECT_EQ(L"T:ok:one:Unknown(a, b)", message("T:ok:one", "Unknown", "a", L"b"));
    EXPECT_EQ(L"T:ok:one:Unknown()", message("T:ok:one", "Unknown"));
    EXPECT_EQ(L"T:none:here:K(\u00E9)", message("T:none:here", "K", L"\u00E9"));
    for (const char* name : {"T:bad:unclosed", "T:bad:notxml", "T:bad:root", "T:bad:nokey",
                             "T:bad:nested", "T:bad:othername", "T:bad:doctype"}) {
        EXPECT_EQ(hf::i18n::to_ustring(std::string(name) + ":K(1)"), message(name, "K", 1)) << name;
    }
    // Names that cannot name a file below the root are never looked for elsewhere.
    root.write("escape.xml", catalog("..:escape", "<message key=\"K\">escaped</message>"));
    EXPECT_EQ(L"T:..:escape:K()", message("T:..:escape", "K"));
    EXPECT_EQ(L"::K()", message(":", "K"));
    EXPECT_EQ(L":K()", message("", "K"));
}

TEST(MessageCatalog, EachRootReadsItsCatalogueOnceAndKeepsIt) {
    {
        CatalogRoot root;
        root.write("T/cache/c.xml", catalog("T:cache:c", "<message key=\"K\">first</message>"));
        EXPECT_EQ(L"first", message("T:cache:c", "K"));
        root.write("T/cache/c.xml", catalog("T:cache:c", "<message key=\"K\">second</message>"));
        EXPECT_EQ(L"first", message("T:cache:c", "K"));
    }
    // Another root is another catalogue, even under the same name.
    CatalogRoot other;
    other.write("T/cache/c.xml", catalog("T:cache:c", "<message key=\"K\">other</message>"));
    EXPECT_EQ(L"other", message("T:cache:c", "K"));
}

TEST(MessageCatalog, ConcurrentLookupsAllSeeTheSameTexts) {
    CatalogRoot root;
    std::string messages;
    for (int i = 0; i < 50; ++i) {
        messages +=
            "<message key=\"K" + std::to_string(i) + "\">" + std::to_string(i) + " {0}</message>";
    }
    for (const std::string part : {"a", "b", "c"}) {
        root.write("T/many/" + part + ".xml", catalog("T:many:" + part, messages));
    }
    std::atomic<int> wrong{0};
    hftest::onThreads(8, [&wrong](int t) {
        for (int i = 0; i < 300; ++i) {
            const std::string catalogName = std::string("T:many:") + "abc"[(t + i) % 3];
            const int key = (i * 7 + t) % 60;  // keys 50..59 do not exist
            const std::wstring expected =
                key < 50 ? std::to_wstring(key) + L" " + std::to_wstring(t)
                         : hf::i18n::to_ustring(catalogName + ":K" + std::to_string(key) + "(" +
                                                std::to_string(t) + ")");
            wrong += message(catalogName, "K" + std::to_string(key), t) != expected;
        }
    });
    EXPECT_EQ(0, wrong.load());
}
