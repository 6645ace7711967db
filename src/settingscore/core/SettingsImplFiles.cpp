// The product files as the public interface shows them: the status of a product's files and the
// re-read of files that other processes changed.
#include <settingscore/core/SettingsImpl.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/storage/LevelDirectories.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>
#include <settingscore/core/storage/SettingsSaving.hpp>
#include <settingscore/core/storage/detail/FileTakeIn.hpp>
#include <settingscore/core/storage/detail/LevelFiles.hpp>
#include <settingscore/core/storage/detail/ProductFileState.hpp>

#include <boost/pointer_cast.hpp>

namespace settings {
namespace core {

namespace {

namespace fs = hf::filesystem;

const SettingsImpl& implOf(const Settings& node) {
    return dynamic_cast<const SettingsImpl&>(node);
}

}  // namespace

ProductFileStatus Settings::getProductFileStatus() const {
    const SettingsImpl& self = implOf(*this);
    self.ensureLoaded();
    ProductFileStatus status;
    detail::SharedLock lock(detail::rootMutex());
    const auto product = self.productNodeOf(lock);
    if (!product->isProductNode(lock)) {
        return status;  // the root, or a standalone tree: no files
    }
    const auto root = boost::static_pointer_cast<SettingsImplRoot>(product->getParentImpl(lock));
    status.product = product->getName();
    const auto manager = SettingsLevelManager::getSettingsLevelManagerInstance();
    for (const auto& level : product->fileState()->snapshot()) {
        const detail::LevelFile& file = level.second;
        for (const auto& held : file.heldBack) {
            status.heldBack.push_back(
                {held.first, level.first, held.second.file, held.second.reason});
        }
        if (file.failure) {
            status.saveFailures.push_back(*file.failure);
        }
        const SettingsLevel* levelObject = manager->getSettingsLevelByName(level.first);
        const std::wstring folder = levelObject ? resolveLevelDirectory(*levelObject, root) : L"";
        if (!folder.empty()) {
            const std::string fileName = file.fileName.empty()
                                             ? detail::defaultFileNameOf(product->getName())
                                             : file.fileName;
            for (const fs::upath& copy :
                 detail::keptCopiesOf(fs::FileSystem::current(), folder, fileName)) {
                status.keptCopies.push_back(copy.wstring());
            }
        }
    }
    return status;
}

std::size_t Settings::reloadChangedFiles() {
    SettingsImpl& self = const_cast<SettingsImpl&>(implOf(*this));
    std::vector<boost::shared_ptr<SettingsImpl>> products;
    if (self.isRootImpl()) {
        for (const auto& child : self.getChildren()) {
            products.push_back(SettingsImpl::implOf(child));
        }
    } else {
        detail::SharedLock lock(detail::rootMutex());
        {
            const auto product = self.productNodeOf(lock);
            if (product->isProductNode(lock)) {
                products.push_back(product);
            }
        }
    }
    std::size_t changed = 0;
    fs::FileSystem& files = fs::FileSystem::current();
    const auto& levels = SettingsLevelManager::getSettingsLevelObjs();
    for (const auto& product : products) {
        if (!product->isLoadAttempted()) {
            continue;  // read afresh when first touched
        }
        detail::UpgradeLock lock(detail::rootMutex());
        const auto root =
            boost::dynamic_pointer_cast<SettingsImplRoot>(product->getParentImpl(lock));
        if (!root) {
            continue;  // removed meanwhile
        }
        for (const SettingsLevel& level : levels) {
            if (!level.canHaveFile() || !level.canBeModified()) {
                continue;
            }
            const std::wstring folder = resolveLevelDirectory(level, root);
            if (!folder.empty()) {
                changed += detail::takeInFileChanges(lock, *product, level, files, folder,
                                                     detail::isDurableSaving())
                               .changedValues;
            }
        }
    }
    return changed;
}

}  // namespace core
}  // namespace settings
