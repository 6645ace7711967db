#include <settingscore/core/SettingsImplRoot.hpp>

#include <settingscore/core/SettingsRootStateMgr.hpp>
#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/storage/detail/ProductFileState.hpp>

#include <platform/hf/app/FastExit.hpp>

#include <iostream>

namespace settings {
namespace core {

SettingsImplRoot::SettingsImplRoot(const tvutil::contextmgr::InstanceID& instanceId,
                                   const boost::weak_ptr<SettingsRootStateMgr>& stateMgr)
    : SettingsImpl("root", false, boost::optional<bool>(true), ValidatorVariant(),
                   boost::shared_ptr<SettingsImpl>()),
      instanceId_(instanceId),
      stateMgr_(stateMgr) {}

SettingsImplRoot::~SettingsImplRoot() = default;

bool SettingsImplRoot::isRoot() const {
    return true;
}

bool SettingsImplRoot::isRootImpl() const {
    return true;
}

bool SettingsImplRoot::isOnTree() const {
    return true;
}

tvutil::contextmgr::InstanceID SettingsImplRoot::getInstanceId() const {
    return instanceId_;
}

void SettingsImplRoot::setRecordEvents(bool record) {
    recordEvents_.store(record);
}

bool SettingsImplRoot::isRecordingEvents() const {
    return recordEvents_.load();
}

std::wstring SettingsImplRoot::getFactoryDirectory() const {
    const auto state = stateMgr_.lock();
    return state ? state->getFactoryDir() : std::wstring();
}

std::wstring SettingsImplRoot::getWorkgroupDirectory() const {
    const auto state = stateMgr_.lock();
    return state ? state->getWorkgroupDir() : std::wstring();
}

std::wstring SettingsImplRoot::getUserDirectory() const {
    const auto state = stateMgr_.lock();
    if (!state) {
        return std::wstring();
    }
    try {
        return state->getUserDir();
    } catch (const MessageException<TOLVAN::settings::core::SettingsUserDirectoryNotExist>&) {
        std::cerr << "TOLVAN Shutdown : Failed To Create Preference Directory." << std::endl;
        hf::app::fast_exit(1);
    }
}

std::shared_ptr<detail::ProductFileState> SettingsImplRoot::fileStateOf(
    const SettingsImpl& product) {
    std::lock_guard<std::mutex> guard(fileStatesMutex_);
    auto& state = fileStates_[&product];
    if (!state) {
        state = std::make_shared<detail::ProductFileState>();
    }
    return state;
}

void SettingsImplRoot::dropFileStateOf(const SettingsImpl& product) {
    std::lock_guard<std::mutex> guard(fileStatesMutex_);
    fileStates_.erase(&product);
}

void SettingsImplRoot::dropRecordedEvents() {
    std::deque<boost::shared_ptr<const SettingsEvent>> dropped;
    {
        boost::lock_guard<boost::mutex> guard(eventQueueMutex_);
        dropped.swap(eventQueue_);
    }
    // The events, and maybe the nodes they name, die here, outside the lock.
}

void SettingsImplRoot::swapEventQueue(std::queue<boost::shared_ptr<const SettingsEvent>>& queue) {
    using Queue = std::queue<boost::shared_ptr<const SettingsEvent>>;
    // std::queue keeps its container protected; this view reaches it to swap in place.
    struct ContainerOf : Queue {
        static Queue::container_type& of(Queue& q) { return q.*&ContainerOf::c; }
    };
    boost::lock_guard<boost::mutex> guard(eventQueueMutex_);
    ContainerOf::of(queue).swap(eventQueue_);
}

}  // namespace core
}  // namespace settings
