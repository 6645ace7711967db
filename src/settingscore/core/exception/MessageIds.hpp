// The message-id failures of the library. Each key of the catalogue "TOLVAN:settings:core" is
// a message class TOLVAN::settings::core::<Key> taking its fixed number of arguments in order;
// the failure itself is hf::except::Exception<TOLVAN::settings::core::<Key>, std::exception,
// void>, whose text comes from the message catalogue only where it is shown.
#pragma once

#include <platform/hf/except/Exception.hpp>
#include <platform/hf/resource/BaseMsgID.hpp>

#include <cstddef>

namespace settings {
namespace core {
namespace detail {

// A message of the settings core's catalogue with exactly N arguments.
template <std::size_t N>
class CoreMessage : public hf::resource::BaseMsgID {
public:
    static constexpr const char* catalogName = "TOLVAN:settings:core";

    template <class... Args>
    explicit CoreMessage(const char* key, const Args&... args) : BaseMsgID(catalogName, key, N) {
        static_assert(sizeof...(Args) == N, "wrong number of arguments for this message");
        std::size_t index = 0;
        (setArg(index++, args), ...);
        (void)index;
    }
};

}  // namespace detail
}  // namespace core
}  // namespace settings

#define SETTINGSCORE_DECLARE_MESSAGE(Key, ArgCount)                                 \
    class Key : public ::settings::core::detail::CoreMessage<ArgCount> {            \
    public:                                                                         \
        static constexpr std::size_t argCount = ArgCount;                           \
        template <class... Args>                                                    \
        explicit Key(const Args&... args) : CoreMessage<ArgCount>(#Key, args...) {} \
    }

namespace TOLVAN {
namespace settings {
namespace core {

SETTINGSCORE_DECLARE_MESSAGE(CFunctionNotFound, 2);
SETTINGSCORE_DECLARE_MESSAGE(SettingsLibraryNotInitialized, 1);
SETTINGSCORE_DECLARE_MESSAGE(JVMNotReadyForProcessingJavaFunction, 0);
SETTINGSCORE_DECLARE_MESSAGE(TOLVANFuncMustBeInvokedByExecEngine, 0);
SETTINGSCORE_DECLARE_MESSAGE(ExecEngineNotReadyForProcessingTFunction, 0);
SETTINGSCORE_DECLARE_MESSAGE(CanNotCreateTempDirectory, 1);
SETTINGSCORE_DECLARE_MESSAGE(NoWritePermissionOnDirectory, 2);
SETTINGSCORE_DECLARE_MESSAGE(DataTypeNotMatch, 2);
SETTINGSCORE_DECLARE_MESSAGE(ErrorOverwriteFileInPrefDir, 1);
SETTINGSCORE_DECLARE_MESSAGE(RelativePathIsNotSupported, 1);
SETTINGSCORE_DECLARE_MESSAGE(ErrorCreatePreferenceDirectoryTimeStamp, 2);
SETTINGSCORE_DECLARE_MESSAGE(PreferenceDirectoryNotExist, 2);
SETTINGSCORE_DECLARE_MESSAGE(ErrorMigratePrefsBetweenReleases, 2);
SETTINGSCORE_DECLARE_MESSAGE(ErrorCopyFileInPrefDir, 3);
SETTINGSCORE_DECLARE_MESSAGE(SettingsUserDirectoryNotExist, 0);
SETTINGSCORE_DECLARE_MESSAGE(TypeNotSpecifiedForNoneAnyType, 1);
SETTINGSCORE_DECLARE_MESSAGE(XMLMetaDataParserError, 3);
SETTINGSCORE_DECLARE_MESSAGE(XMLParseErrorWrongValueForGivenType, 3);
SETTINGSCORE_DECLARE_MESSAGE(XMLParserErrorUnexpectedTextContent, 2);
SETTINGSCORE_DECLARE_MESSAGE(XMLParserErrorIllegalTagName, 3);
SETTINGSCORE_DECLARE_MESSAGE(XMLParserErrorNumOfValueNotInRange, 5);

}  // namespace core
}  // namespace settings
}  // namespace TOLVAN

namespace settings {
namespace core {

// The failure of message Key: MessageException<TOLVAN::settings::core::DataTypeNotMatch>.
template <class Key>
using MessageException = hf::except::Exception<Key, std::exception, void>;

// Builds the failure of message Key from its arguments, in catalogue order.
template <class Key, class... Args>
MessageException<Key> makeMessageException(const Args&... args) {
    return MessageException<Key>(Key(args...));
}

}  // namespace core
}  // namespace settings
