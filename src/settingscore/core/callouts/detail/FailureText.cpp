#include <settingscore/core/callouts/detail/FailureText.hpp>

#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>

namespace settings {
namespace core {
namespace detail {

std::wstring catalogText(const hf::except::IMsgIDException& failure) {
    return hf::i18n::MessageCatalog::get_message(failure.get_message_id(),
                                                 hf::i18n::HfLocale::global());
}

std::wstring whatText(const hf::except::IException& failure) {
    return hf::i18n::to_ustring(failure.what());
}

std::wstring unknownFailureText() {
    return L"Unknown";
}

}  // namespace detail
}  // namespace core
}  // namespace settings
