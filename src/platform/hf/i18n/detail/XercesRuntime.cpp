#include <platform/hf/i18n/detail/XercesRuntime.hpp>

#include <xercesc/util/PlatformUtils.hpp>

#include <mutex>

namespace hf {
namespace i18n {
namespace detail {

bool ensureXercesInitialized() noexcept {
    static std::once_flag once;
    try {
        // A throwing Initialize leaves the flag unset, so the next caller retries.
        std::call_once(once, [] { xercesc::XMLPlatformUtils::Initialize(); });
        return true;
    } catch (...) {
        return false;
    }
}

}  // namespace detail
}  // namespace i18n
}  // namespace hf
