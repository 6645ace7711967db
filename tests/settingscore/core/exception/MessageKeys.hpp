// The message keys of the settings core, each with the name it must carry, for the tests of
// the message-id failures and of the catalogue file.
#pragma once

#include <settingscore/core/exception/MessageIds.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <string>
#include <typeindex>

namespace exceptiontest {

namespace keys = TOLVAN::settings::core;

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
#define EXCEPTIONTEST_KEY_TYPE(Key) keys::Key
#define EXCEPTIONTEST_KEY_NAME(Key) std::make_pair(std::type_index(typeid(keys::Key)), #Key)
#define EXCEPTIONTEST_KEY_ARGS(Key) std::make_pair(std::string(#Key), keys::Key::argCount)

using AllKeys = ::testing::Types<EXCEPTIONTEST_KEYS(EXCEPTIONTEST_KEY_TYPE)>;

// The name a key must carry.
inline std::string keyName(const std::type_index& key) {
    static const std::map<std::type_index, std::string> names{
        EXCEPTIONTEST_KEYS(EXCEPTIONTEST_KEY_NAME)};
    return names.at(key);
}

// Key name -> number of arguments.
inline std::map<std::string, std::size_t> keyArgCounts() {
    return {EXCEPTIONTEST_KEYS(EXCEPTIONTEST_KEY_ARGS)};
}

#undef EXCEPTIONTEST_KEYS
#undef EXCEPTIONTEST_KEY_TYPE
#undef EXCEPTIONTEST_KEY_NAME
#undef EXCEPTIONTEST_KEY_ARGS

}  // namespace exceptiontest
