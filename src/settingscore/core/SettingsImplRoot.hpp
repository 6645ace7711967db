// settings::core::SettingsImplRoot: the root node of one instance's tree. It holds the
// instance id, the queue of recorded events, and a weak link to the instance's state, through
// which the level layer learns the instance's directories.
#pragma once

#include <settingscore/core/SettingsImpl.hpp>

#include <boost/thread/mutex.hpp>

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <queue>

namespace settings {
namespace core {

class SettingsRootStateMgr;

class SettingsImplRoot : public SettingsImpl {
public:
    SettingsImplRoot(const tvutil::contextmgr::InstanceID& instanceId,
                     const boost::weak_ptr<SettingsRootStateMgr>& stateMgr);
    ~SettingsImplRoot() override;

    bool isRoot() const override;
    tvutil::contextmgr::InstanceID getInstanceId() const override;
    bool isOnTree() const override;
    void setRecordEvents(bool record) override;
    bool isRootImpl() const override;
    virtual bool isRecordingEvents() const;

    using SettingsImpl::getInstanceId;
    using SettingsImpl::isOnTree;

    // The instance's directories, resolved once per instance; empty when the state is gone.
    std::wstring getFactoryDirectory() const;
    std::wstring getWorkgroupDirectory() const;
    // Ends the process (exit code 1) when the user directory cannot be had: without it no
    // change could ever be kept.
    std::wstring getUserDirectory() const;

    // Records `event` when recording is on and hands it to the event manager. Dropped when the
    // instance's state is gone.
    void publishEvent(const boost::shared_ptr<const SettingsEvent>& event);

    // Forgets the recorded events. Called when the instance lets go of its root: nobody can
    // drain them any more, and an event naming the root would keep the whole tree alive.
    void dropRecordedEvents();

    // Exchanges `queue`'s content with the recorded events. Locks eventQueueMutex_.
    void swapEventQueue(std::queue<boost::shared_ptr<const SettingsEvent>>& queue);

    // The file state of product node `product` of this root, made on first use; and dropped
    // when the product leaves the root (a product added again starts afresh). Lock
    // fileStatesMutex_, a leaf.
    std::shared_ptr<detail::ProductFileState> fileStateOf(const SettingsImpl& product);
    void dropFileStateOf(const SettingsImpl& product);

private:
    const tvutil::contextmgr::InstanceID instanceId_;
    std::deque<boost::shared_ptr<const SettingsEvent>> eventQueue_;
    std::atomic<bool> recordEvents_{false};
    mutable boost::mutex eventQueueMutex_;
    const boost::weak_ptr<SettingsRootStateMgr> stateMgr_;
    // Beside the tree rather than in every node: only product nodes have files.
    std::mutex fileStatesMutex_;
    std::map<const SettingsImpl*, std::shared_ptr<detail::ProductFileState>> fileStates_;
};

}  // namespace core
}  // namespace settings
