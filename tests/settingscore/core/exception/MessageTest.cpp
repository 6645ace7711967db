// The message-id failures, one per key of the catalogue "TOLVAN:settings:core", read through
// the staged catalogue file as the host reads them.
#include <platform/hf/except/IException.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>
#include <settingscore/core/exception/Exceptions.hpp>

#include <support/TempDir.hpp>

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace exceptiontest {
namespace {

namespace keys = TOLVAN::settings::core;
namespace except = hf::except;

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

// Narrow UTF-8 arguments arrive wide.
template <std::size_t I>
std::string argAt() {
    return "<arg\xc3\xb6-" + std::to_string(I) + ">";
}

// The failure names its key in the core catalogue with its arguments in order, is a user
// failure, and its catalogue entry (not the fallback "catalogue:key(...)") uses every argument.
template <class Key, std::size_t... I>
void checkMessage(const std::string& key, std::index_sequence<I...>) {
    SCOPED_TRACE(key);
    const auto e = settings::core::makeMessageException<Key>(argAt<I>()...);
    static_assert(std::is_base_of_v<except::IMsgIDException, decltype(e)> &&
                  std::is_base_of_v<except::IUserException, decltype(e)> &&
                  !std::is_base_of_v<except::IInternalException, decltype(e)>);
    EXPECT_EQ(e.get_error_id_string(), "TOLVAN:settings:core:" + key);
    const std::vector<std::wstring> args{(L"<arg\u00f6-" + std::to_wstring(I) + L">")...};
    EXPECT_EQ(e.get_message_id().getArgs(), args);
    const std::wstring text =
        hf::i18n::MessageCatalog::get_message(e.get_message_id(), hf::i18n::HfLocale::global());
    EXPECT_NE(0u, text.rfind(L"TOLVAN:settings:core:", 0)) << "no entry";
    EXPECT_FALSE(std::regex_search(text, std::wregex(LR"(\{\d+\})"))) << "unfilled placeholder";
    for (const std::wstring& arg : args) {
        EXPECT_NE(std::wstring::npos, text.find(arg));
    }
}

#define EXCEPTIONTEST_CHECK(Key) \
    checkMessage<keys::Key>(#Key, std::make_index_sequence<keys::Key::argCount>())
#define EXCEPTIONTEST_NAME(Key) #Key
TEST(MessageCatalogTest, EveryKeyHasOneEntryUsingEveryArgument) {
    EXCEPTIONTEST_KEYS(EXCEPTIONTEST_CHECK);

    // The file names each key once and no other.
    const std::string raw = testsupport::readFile(SETTINGSCORE_BUILD_ROOT
                                                  "/resources/messages/TOLVAN/settings/core.xml");
    std::multiset<std::string> named;
    const std::regex keyAttribute(R"(<message\s+key="([^"]*)\")");
    for (auto it = std::sregex_iterator(raw.begin(), raw.end(), keyAttribute);
         it != std::sregex_iterator(); ++it) {
        named.insert((*it)[1].str());
    }
    EXPECT_EQ(named, (std::multiset<std::string>{EXCEPTIONTEST_KEYS(EXCEPTIONTEST_NAME)}));
}

}  // namespace
}  // namespace exceptiontest
