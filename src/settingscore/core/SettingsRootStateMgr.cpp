// SettingsRootStateMgr: the root of one instance and its directories.
//
// Locks: stateMutex_ guards root_ (shared to read it and to build it once, upgrade then
// exclusive to reset). The directory overrides have their own dirMutex_, taken after
// stateMutex_ and after the root mutex, because resolving a directory writes its optional and
// may run while the root is being built under a shared hold of stateMutex_.
#include <settingscore/core/SettingsRootStateMgr.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/storage/LevelDirectories.hpp>

#include <boost/make_shared.hpp>

namespace settings {
namespace core {

SettingsRootStateMgr::SettingsRootStateMgr() = default;

SettingsRootStateMgr::~SettingsRootStateMgr() {
    if (root_) {
        root_->dropRecordedEvents();
    }
}

boost::shared_ptr<SettingsImplRoot> SettingsRootStateMgr::getRoot(
    const tvutil::contextmgr::InstanceID& id) {
    boost::shared_lock<boost::shared_mutex> lock(stateMutex_);
    boost::call_once(rootOnce_, [this, &id] { createRoot(id); });
    return root_;
}

void SettingsRootStateMgr::createRoot(const tvutil::contextmgr::InstanceID& id) {
    // REQUIRES: stateMutex_ shared, inside the root's once flag (so no other thread touches
    // root_ meanwhile).
    auto root = boost::make_shared<SettingsImplRoot>(id, shared_from_this());
    root_ = root;
    // The walk of the level folders runs before the tree lock is taken: it touches the disk
    // (and may create the preference folder), and needs nothing of the tree.
    const std::vector<std::string> productNames = collectProductNames(root);
    detail::UpgradeLock lock(detail::rootMutex());
    for (const auto& name : productNames) {
        if (root->findChild(lock, name)) {
            continue;
        }
        const auto product =
            boost::make_shared<SettingsImpl>(name, false, boost::optional<bool>(),
                                             ValidatorVariant(), boost::shared_ptr<SettingsImpl>());
        product->attachToParent(lock, root, false);
    }
}

boost::shared_ptr<SettingsImplRoot> SettingsRootStateMgr::reset() {
    boost::upgrade_lock<boost::shared_mutex> upgrade(stateMutex_);
    boost::upgrade_to_unique_lock<boost::shared_mutex> exclusive(upgrade);
    // A root never made is now never made: rootOnce_ is spent.
    boost::call_once(rootOnce_, [] {});
    boost::shared_ptr<SettingsImplRoot> old;
    old.swap(root_);
    if (old) {
        old->dropRecordedEvents();
    }
    return old;
}

std::wstring SettingsRootStateMgr::resolveDir(boost::optional<std::wstring>& dir,
                                              std::wstring (*resolver)()) {
    boost::lock_guard<boost::mutex> guard(dirMutex_);
    if (!dir) {
        dir = resolver();
    }
    return *dir;
}

std::wstring SettingsRootStateMgr::getFactoryDir() {
    return resolveDir(factoryDir_, &factoryLevelRootPath);
}

std::wstring SettingsRootStateMgr::getWorkgroupDir() {
    return resolveDir(workgroupDir_, &workgroupLevelRootPath);
}

std::wstring SettingsRootStateMgr::getUserDir() {
    const std::wstring dir = resolveDir(userDir_, &userLevelRootPath);
    if (dir.empty()) {
        throw makeMessageException<TOLVAN::settings::core::SettingsUserDirectoryNotExist>();
    }
    return dir;
}

void SettingsRootStateMgr::setFactoryDir(const boost::optional<std::wstring>& dir) {
    boost::lock_guard<boost::mutex> guard(dirMutex_);
    factoryDir_ = dir;
}

void SettingsRootStateMgr::setWorkgroupDir(const boost::optional<std::wstring>& dir) {
    boost::lock_guard<boost::mutex> guard(dirMutex_);
    workgroupDir_ = dir;
}

void SettingsRootStateMgr::setUserDir(const boost::optional<std::wstring>& dir) {
    boost::lock_guard<boost::mutex> guard(dirMutex_);
    userDir_ = dir;
}

}  // namespace core
}  // namespace settings
