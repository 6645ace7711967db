// SettingsImpl: construction, the plain flag and name getters, validators and identity.
#include <settingscore/core/SettingsImpl.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>

#include <settingscore/core/detail/LockInstantiation.hpp>
#include <settingscore/core/storage/detail/ProductFileState.hpp>

#include <boost/pointer_cast.hpp>

#include <memory>

#include <shared_mutex>

namespace settings {
namespace core {

SettingsImpl::SettingsImpl(const std::string& name, bool isKey,
                           const boost::optional<bool>& visible, const ValidatorVariant& validator,
                           const boost::shared_ptr<SettingsImpl>& parent)
    : SettingsImpl(name, isKey, visible, boost::none, validator, Writable, parent) {}

SettingsImpl::SettingsImpl(const std::string& name, bool isKey,
                           const boost::optional<bool>& visible, const ValidatorVariant& validator,
                           int readOnlyState, const boost::shared_ptr<SettingsImpl>& parent)
    : SettingsImpl(name, isKey, visible, boost::none, validator, readOnlyState, parent) {}

SettingsImpl::SettingsImpl(const std::string& name, bool isKey,
                           const boost::optional<bool>& visible,
                           const boost::optional<unsigned>& version,
                           const ValidatorVariant& validator, int readOnlyState,
                           const boost::shared_ptr<SettingsImpl>& parent)
    : name_(name),
      isKey_(isKey),
      visible_(visible),
      readOnlyState_(readOnlyState),
      version_(version),
      parent_(parent),
      validator_(validator) {}

SettingsImpl::SettingsImpl(const SettingsImpl& other)
    : TSettings(),
      boost::enable_shared_from_this<SettingsImpl>(),
      name_(other.name_),
      isKey_(other.isKey_),
      visible_(other.visible_),
      readOnlyState_(other.readOnlyState_),
      version_(other.version_),
      validator_(other.validator_),
      metaData_(other.metaData_),
      runTimeDefault_(other.runTimeDefault_) {
    {
        std::shared_lock<std::shared_mutex> caches(detail::keyCacheMutex());
        typeConformer_ = other.typeConformer_;
        arraySizeBounds_ = other.arraySizeBounds_;
        valueWriter_ = other.valueWriter_;
        typeCode_ = other.typeCode_;
    }
    if (other.loadAttempted_.load()) {
        // The source's load already ran (or is running): the copy must never load again.
        loadAttempted_.store(true);
        boost::call_once(loadOnce_, [] {});
    }
}

SettingsImpl::~SettingsImpl() = default;

std::shared_ptr<detail::ProductFileState> SettingsImpl::fileState() const {
    // The weak parent is read without the tree's lock, as isOnTree reads it.
    const auto root = boost::dynamic_pointer_cast<SettingsImplRoot>(parent_.lock());
    return root ? root->fileStateOf(*this) : std::make_shared<detail::ProductFileState>();
}

template <class Lock>
void SettingsImpl::markChanged(const Lock& lock, const SettingsImpl& node,
                               const std::string& level) {
    const auto product = node.productNodeOf(lock);
    if (!product || !product->isProductNode(lock)) {
        return;
    }
    product->fileState()->markChanged(level, node.getFullName(lock));
}

#define SETTINGSCORE_INSTANTIATE_MARK_CHANGED(Lock) \
    template void SettingsImpl::markChanged(const Lock&, const SettingsImpl&, const std::string&);
SETTINGSCORE_FOR_EACH_TREE_LOCK(SETTINGSCORE_INSTANTIATE_MARK_CHANGED)
#undef SETTINGSCORE_INSTANTIATE_MARK_CHANGED

std::string SettingsImpl::getName() const {
    return name_;
}

bool SettingsImpl::isKey() const {
    return isKey_;
}

bool SettingsImpl::isRoot() const {
    return false;
}

bool SettingsImpl::isRootImpl() const {
    return false;
}

bool SettingsImpl::isVisible() const {
    ensureLoaded();  // an untouched product answers from its files
    detail::SharedLock lock(detail::rootMutex());
    return visible_.value_or(false);
}

boost::optional<int> SettingsImpl::getDataType() const {
    ensureLoaded();
    detail::SharedLock lock(detail::rootMutex());
    std::shared_lock<std::shared_mutex> caches(detail::keyCacheMutex());
    return typeCode_;
}

const ValidatorVariant& SettingsImpl::getValidator() const {
    detail::SharedLock lock(detail::rootMutex());
    return validator_;
}

void SettingsImpl::setValidator(ValidatorVariant validator) {
    {
        detail::UpgradeLock lock(detail::rootMutex());
        detail::UniqueFromUpgrade exclusive(lock);
        validator_.swap(validator);
    }
    // `validator` now holds the old one and dies here, after the lock is gone.
}

void SettingsImpl::setRecordEvents(bool) {}

hostsvc::msg_svc::exchange::IDType SettingsImpl::getNodeId() const {
    return nodeId_;
}

boost::shared_ptr<Settings> SettingsImpl::getSharedThis() {
    return shared_from_this();
}

boost::shared_ptr<const Settings> SettingsImpl::getSharedThis() const {
    return shared_from_this();
}

boost::shared_ptr<SettingsImpl> SettingsImpl::implOf(const boost::shared_ptr<Settings>& node) {
    return boost::dynamic_pointer_cast<SettingsImpl>(node);
}

boost::shared_ptr<const SettingsImpl> SettingsImpl::implOf(
    const boost::shared_ptr<const Settings>& node) {
    return boost::dynamic_pointer_cast<const SettingsImpl>(node);
}

}  // namespace core
}  // namespace settings
