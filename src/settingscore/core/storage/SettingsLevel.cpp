#include <settingscore/core/storage/SettingsLevel.hpp>

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

namespace settings {
namespace core {
namespace {

// Levels are shared by every thread and levelRootPath writes the cached path each time. The
// answer two racing callers see may be either one's result, but the string itself must never
// be written by two threads at once. A leaf lock: nothing else is taken while it is held, and
// the root path function runs outside it, since that may create and migrate the preference
// directory.
boost::mutex& rootPathMutex() {
    static boost::mutex mutex;
    return mutex;
}

}  // namespace

boost::function1<void, SettingsLevel*> SettingsLevel::initFunc_ = &SettingsLevel::initRootPathOnce;

SettingsLevel::SettingsLevel(const std::string& name,
                             const boost::function<std::wstring()>& rootPathFunc,
                             bool canBeModified, unsigned maxFileCount, bool isFactoryLevel,
                             bool isWorkgroupLevel, bool isUserLevel)
    : levelName_(name),
      rootPath_(),
      canBeModified_(canBeModified),
      maxFileCount_(maxFileCount),
      rootPathOnce_(),
      rootPathFunc_(rootPathFunc),
      isFactoryLevel_(isFactoryLevel),
      isWorkgroupLevel_(isWorkgroupLevel),
      isUserLevel_(isUserLevel) {}

const std::wstring SettingsLevel::levelRootPath() const {
    initRootPath();
    boost::lock_guard<boost::mutex> lock(rootPathMutex());
    return rootPath_;
}

void SettingsLevel::initRootPath() const {
    // initRootPathOnce writes nothing but the mutable rootPath_, so calling it on a const
    // level is sound.
    const_cast<SettingsLevel*>(this)->initRootPathOnce();
}

void SettingsLevel::initRootPathOnce() {
    if (rootPathFunc_.empty()) {
        return;
    }
    std::wstring resolved = rootPathFunc_();
    boost::lock_guard<boost::mutex> lock(rootPathMutex());
    rootPath_.swap(resolved);
}

}  // namespace core
}  // namespace settings
