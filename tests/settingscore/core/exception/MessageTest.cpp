// The message-id failures, one per key of the catalogue "TOLVAN:settings:core", and the staged
// catalogue file that gives them their texts.
#include "ExceptionTestSupport.hpp"

#include <platform/hf/i18n/MessageCatalog.hpp>
#include <settingscore/core/exception/Exceptions.hpp>

#include <support/TempDir.hpp>

#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <utility>

namespace exceptiontest {
namespace {

namespace keys = TOLVAN::settings::core;
namespace except = hf::except;

// EXCEPTIONTEST_KEYS(X) applies X to every key, separated by commas.
#define EXCEPTIONTEST_KEYS(X)                                                                 \
    X(CFunctionNotFound), X(SettingsLibraryNotInitialized),                                   \
        X(JVMNotReadyForProcessingJavaFunction), X(TOLVANFuncMustBeInvokedByExecEngine),      \
        X(ExecEngineNotReadyForProcessingTFunction), X(CanNotCreateTempDirectory),            \
        X(NoWritePermissionOnDirectory), X(DataTypeNotMatch), X(ErrorOverwriteFileInPrefDir), \
        X(RelativePathIsNotSupported), X(ErrorCreatePreferenceDirectoryTimeStamp),            \
        X(PreferenceDirectoryNotExist), X(ErrorMigratePrefsBetweenReleases),                  \
        X(ErrorCopyFileInPrefDir), X(SettingsUserDirectoryNotExist),                          \
        X(TypeNotSpecifiedForNoneAnyType), X(XMLMetaDataParserError),                         \
        X(XMLParseErrorWrongValueForGivenType), X(XMLParserErrorUnexpectedTextContent),       \
        X(XMLParserErrorIllegalTagName), X(XMLParserErrorNumOfValueNotInRange)

// Argument i: narrow UTF-8 at even positions, wide at odd ones; both arrive wide.
std::wstring expectedArg(std::size_t i) {
    return L"arg\u00f6-" + std::to_wstring(i);
}
template <std::size_t I>
auto argAt() {
    if constexpr (I % 2 == 0) {
        return std::string("arg\xc3\xb6-") + std::to_string(I);
    } else {
        return expectedArg(I);
    }
}

template <class Key, std::size_t... I>
void checkMessageException(const std::string& key, std::index_sequence<I...>) {
    SCOPED_TRACE(key);
    const auto original = settings::core::makeMessageException<Key>(argAt<I>()...);
    const auto copy = acrossExceptionPtr(original);
    ASSERT_TRUE(copy.has_value());
    const hf::resource::BaseMsgID& id = copy->get_message_id();
    EXPECT_EQ(id.getCatalogName(), "TOLVAN:settings:core");
    EXPECT_EQ(id.getKey(), key);
    EXPECT_EQ(id.getArgs(), std::vector<std::wstring>{expectedArg(I)...});
    EXPECT_EQ(copy->get_error_id_string(), "TOLVAN:settings:core:" + key);

    EXPECT_TRUE(caughtAs<except::IMsgIDException>(original) &&
                caughtAs<except::IUserException>(original) &&
                caughtAs<except::IException>(original) && caughtAs<std::exception>(original));
    EXPECT_FALSE(caughtAs<settings::core::exception::InternalException>(original) ||
                 caughtAs<except::IInternalException>(original));
}

#define EXCEPTIONTEST_CHECK(Key) \
    checkMessageException<keys::Key>(#Key, std::make_index_sequence<keys::Key::argCount>())
TEST(MessageExceptionTest, CarriesCatalogueKeyAndArgumentsAsAUserFailure) {
    EXCEPTIONTEST_KEYS(EXCEPTIONTEST_CHECK);
}

// Read as the host reads it: each key has its own entry (not the fallback "catalogue:key(...)")
// that fills every placeholder from its arguments, and the file names each key once and no
// other key.
#define EXCEPTIONTEST_ARG_COUNT(Key) \
    { #Key, keys::Key::argCount }
TEST(MessageCatalogFileTest, HasOneEntryPerKeyUsingEveryArgument) {
    const std::map<std::string, std::size_t> argCounts{EXCEPTIONTEST_KEYS(EXCEPTIONTEST_ARG_COUNT)};
    const std::string raw = testsupport::readFile(SETTINGSCORE_BUILD_ROOT
                                                  "/resources/messages/TOLVAN/settings/core.xml");
    std::multiset<std::string> named;
    const std::regex keyAttribute(R"(<message\s+key="([^"]*)\")");
    for (auto it = std::sregex_iterator(raw.begin(), raw.end(), keyAttribute);
         it != std::sregex_iterator(); ++it) {
        named.insert((*it)[1].str());
        EXPECT_EQ(1u, argCounts.count((*it)[1].str())) << "entry for an unknown key " << (*it)[1];
    }

    const std::wregex placeholder(LR"(\{\d+\})");
    for (const auto& [key, argCount] : argCounts) {
        SCOPED_TRACE(key);
        EXPECT_EQ(1u, named.count(key));
        hf::resource::BaseMsgID id("TOLVAN:settings:core", key, argCount);
        for (std::size_t i = 0; i < argCount; ++i) {
            id.setArg(i, "<arg" + std::to_string(i) + ">");
        }
        const std::wstring text =
            hf::i18n::MessageCatalog::get_message(id, hf::i18n::HfLocale::global());
        EXPECT_NE(0u, text.rfind(L"TOLVAN:settings:core:", 0)) << "no entry";
        EXPECT_FALSE(std::regex_search(text, placeholder)) << "a placeholder without argument";
        for (std::size_t i = 0; i < argCount; ++i) {
            EXPECT_NE(std::wstring::npos, text.find(L"<arg" + std::to_wstring(i) + L">")) << i;
        }
    }
}

}  // namespace
}  // namespace exceptiontest
