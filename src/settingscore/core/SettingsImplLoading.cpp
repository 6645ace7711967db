// SettingsImpl: the lazy load of a product node, run once per node on its first touch.
#include <settingscore/core/SettingsImpl.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/detail/FileLayerHooks.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/LevelDirectories.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>
#include <settingscore/core/xml/SettingsFileReading.hpp>

#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>

#include <boost/make_shared.hpp>

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

void SettingsImpl::loadProductNode(std::wstring& errors) {
    if (!isProductNode()) {
        return;
    }
    const auto root = boost::dynamic_pointer_cast<SettingsImplRoot>(getParent());
    auto accumulator =
        boost::make_shared<SettingsImpl>(name_, isKey_, boost::optional<bool>(), ValidatorVariant(),
                                         boost::shared_ptr<SettingsImpl>());
    bool firstMerged = false;
    // Factory files first, so that they define everything; the user file then adds values,
    // and defines only what the factory does not know.
    const auto& levels = SettingsLevelManager::getSettingsLevelObjs();
    for (auto level = levels.rbegin(); level != levels.rend(); ++level) {
        for (const std::wstring& file : productSettingsFilesAtLevel(name_, *level, root)) {
            try {
                const auto tree = detail::loadSettingsFile(file);
                if (tree) {
                    accumulator = detail::mergeFileTree(accumulator, tree, level->levelName(),
                                                        firstMerged, errors, file);
                }
            } catch (const exception::ErrorReadingSettingsData& e) {
                errors += file + L"\t" + e.getDetailErrorMsg() + L"\n";
            } catch (const hf::except::IMsgIDException& e) {
                errors += file + L"\t" +
                          hf::i18n::MessageCatalog::get_message(e.get_message_id(),
                                                                hf::i18n::HfLocale::global()) +
                          L"\n";
            } catch (const std::exception& e) {
                errors += file + L"\t" + hf::i18n::to_ustring(e.what()) + L"\n";
            }
        }
    }

    detail::UpgradeLock lock(detail::rootMutex());
    if (!accumulator->visible_) {
        // No file contributed.
        if (!visible_) {
            errors += L"There is no Settings files associated with this product node: " +
                      hf::i18n::to_ustring(name_) +
                      L". The Settings files may be deleted after TOLVAN started up. Please "
                      L"restart TOLVAN to fully solve this issue.\n";
        }
        return;
    }
    detail::UniqueFromUpgrade exclusive(lock);
    children_.swap(accumulator->children_);
    for (auto& child : children_) {
        child.second->parent_ = shared_from_this();
    }
    if (!version_) {
        version_ = accumulator->version_;
    }
    if (!visible_) {
        visible_ = accumulator->visible_;
    }
}

}  // namespace core
}  // namespace settings
