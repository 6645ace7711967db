// SettingsImpl: the lazy load of a product node, run once per node on its first touch.
#include <settingscore/core/SettingsImpl.hpp>

#include <settingscore/core/detail/FileLayerHooks.hpp>
#include <settingscore/core/exception/TreeExceptions.hpp>

namespace settings {
namespace core {

void SettingsImpl::ensureLoaded() const {
    // REQUIRES: no lock of the tree held; the loader takes the root mutex for its merge.
    // The flag is checked before call_once so that the common case, a node loaded long ago,
    // costs one atomic read.
    if (loadAttempted_.load(std::memory_order_acquire)) {
        return;
    }
    std::wstring errors;
    boost::call_once(loadOnce_, [this, &errors] {
        // A failed load is not repeated: later callers go on with the node as it stands.
        productLoader(const_cast<SettingsImpl&>(*this), errors);
        loadAttempted_.store(true, std::memory_order_release);
    });
    if (!errors.empty()) {
        throw exception::ErrorReadingSettingsData(
            exception::ErrorReadingSettingsData::ProductNodeLoadingFailed, errors);
    }
}

}  // namespace core
}  // namespace settings
