// settings::core::SettingsRootStateMgr: the settings state of one host instance: its root,
// built on first demand and dropped by reset, and its factory, workgroup and user directories,
// each resolved once unless the host overrides it.
#pragma once

#include <platform/tvutil/contextmgr/InstanceID.hpp>

#include <boost/enable_shared_from_this.hpp>
#include <boost/optional.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/thread/once.hpp>
#include <boost/thread/shared_mutex.hpp>

#include <string>

namespace settings {
namespace core {

class SettingsImplRoot;

// Locks: stateMutex_ guards root_; it comes after stateMgrRegistryMutex and before the root
// mutex in the process's lock order. dirMutex_ guards the three directories and is taken last.
class SettingsRootStateMgr : public boost::enable_shared_from_this<SettingsRootStateMgr> {
public:
    SettingsRootStateMgr();
    ~SettingsRootStateMgr();
    SettingsRootStateMgr(const SettingsRootStateMgr&) = delete;
    SettingsRootStateMgr& operator=(const SettingsRootStateMgr&) = delete;

    // The root, built with its empty product nodes on the first call; null after reset.
    boost::shared_ptr<SettingsImplRoot> getRoot(const tvutil::contextmgr::InstanceID& id);
    // Drops the root and makes sure none is ever built again; hands back the old one.
    boost::shared_ptr<SettingsImplRoot> reset();

    // Each resolves its directory on first use and keeps it. getUserDir throws
    // SettingsUserDirectoryNotExist when the result is empty.
    std::wstring getFactoryDir();
    std::wstring getUserDir();
    std::wstring getWorkgroupDir();
    void setFactoryDir(const boost::optional<std::wstring>& dir);
    void setUserDir(const boost::optional<std::wstring>& dir);
    void setWorkgroupDir(const boost::optional<std::wstring>& dir);

private:
    void createRoot(const tvutil::contextmgr::InstanceID& id);
    std::wstring resolveDir(boost::optional<std::wstring>& dir, std::wstring (*resolver)());

    boost::once_flag rootOnce_ = BOOST_ONCE_INIT;
    boost::shared_mutex stateMutex_;
    boost::shared_ptr<SettingsImplRoot> root_;
    boost::mutex dirMutex_;
    boost::optional<std::wstring> factoryDir_;
    boost::optional<std::wstring> workgroupDir_;
    boost::optional<std::wstring> userDir_;
};

}  // namespace core
}  // namespace settings
