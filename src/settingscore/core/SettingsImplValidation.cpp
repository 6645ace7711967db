// SettingsImpl: validating a value against a key. validateValue is the whole check of a write;
// validateCore the part a run-time default's result also passes: type (conforming the value in
// place), array size, range and choices; runValidationFunction the nearest validator.
//
// Locks: every check runs under the caller's hold of the root mutex (shared for a read that
// runs a run-time default, upgrade for a write) and takes none of it. The key's type caches
// are read and filled under detail::keyCacheMutex(), a leaf.
#include <settingscore/core/SettingsImpl.hpp>

#include <settingscore/core/detail/LockInstantiation.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <shared_mutex>

namespace settings {
namespace core {

void SettingsImpl::deduceTypeFromValue(const boost::any& value) const {
    const auto facts = detail::typeFactsOf(value);
    if (!facts) {
        return;  // an empty value tells nothing about the key
    }
    if (!typeCode_) {
        typeCode_ = facts->typeCode;
    }
    if (!typeConformer_) {
        typeConformer_ = facts->conformer;
    }
    if (!valueWriter_) {
        valueWriter_ = detail::valueWriterForTypeCode(facts->typeCode);
    }
    if (!arraySizeBounds_) {
        // A scalar key holds exactly one element; an array key at most as many as it first got.
        arraySizeBounds_ = facts->isArray
                               ? ArraySizeBounds(shared_from_this(), 0u, facts->elementCount)
                               : ArraySizeBounds(shared_from_this(), 1u, 1u);
    }
}

template <class Lock>
void SettingsImpl::validateCore(const Lock& lock, boost::any& value) const {
    detail::requireTreeLock(lock);
    if (!treestore::boostany::isSupported(value)) {
        throw exception::UnsupportedType(shared_from_this(), value.type().name());
    }
    boost::optional<int> typeCode;
    detail::TypeConformer conformer = nullptr;
    boost::optional<ArraySizeBounds> bounds;
    const auto takeCaches = [&] {
        typeCode = typeCode_;
        conformer = typeConformer_;
        bounds = arraySizeBounds_;
        return typeCode && bounds && (conformer || *typeCode == treestore::boostany::VoidTypeCode);
    };
    bool complete = false;
    {
        std::shared_lock<std::shared_mutex> caches(detail::keyCacheMutex());
        complete = takeCaches();
    }
    if (!complete) {
        std::unique_lock<std::shared_mutex> caches(detail::keyCacheMutex());
        deduceTypeFromValue(value);
        takeCaches();
    }
    if (typeCode != treestore::boostany::VoidTypeCode && conformer) {
        conformer(value);
    }
    const unsigned size = detail::arraySizeOf(value);
    if (bounds && !bounds->admits(size)) {
        throw exception::DataArraySizeOutOfRange(shared_from_this(), bounds->getMinArraySize(),
                                                 bounds->getMaxArraySize(), size);
    }
    if (value.empty()) {
        throw exception::DefaultValidationFailedOnVoidType(shared_from_this());
    }
    detail::checkRangeAndChoices(shared_from_this(), metaData_, value);
}

template <class Lock>
void SettingsImpl::runValidationFunction(const Lock& lock, const SettingsImpl* knownParent,
                                         const boost::any& value) const {
    detail::requireTreeLock(lock);
    const auto parent = getParentImpl(lock);
    const ConstSettingsPtr parentArg = parent;
    // The nearest validator up the tree applies; a standalone key continues once with the
    // parent its caller knows, so it can be tested before it is attached.
    const SettingsImpl* node = this;
    bool usedKnownParent = false;
    while (node) {
        if (detail::invokeValidator(node->validator_, parentArg, name_, value)) {
            return;
        }
        auto next = node->getParentImpl(lock);
        if (next) {
            node = next.get();
        } else if (!usedKnownParent && knownParent && knownParent != node) {
            node = knownParent;
            usedKnownParent = true;
        } else {
            node = nullptr;
        }
    }
}

template <class Lock>
void SettingsImpl::validateValue(const Lock& lock, boost::any& value,
                                 const SettingsImpl* knownParent) const {
    if (!isKey_) {
        throw exception::NotAKeyName(getParentImpl(lock), name_);
    }
    if (isOnTree() && isReadOnly(lock)) {
        throw exception::CannotChangeValueForReadOnlySetting(shared_from_this());
    }
    validateCore(lock, value);
    runValidationFunction(lock, knownParent, value);
}

#define SETTINGSCORE_INSTANTIATE_VALIDATION(Lock)                                       \
    template void SettingsImpl::validateCore(const Lock&, boost::any&) const;           \
    template void SettingsImpl::runValidationFunction(const Lock&, const SettingsImpl*, \
                                                      const boost::any&) const;         \
    template void SettingsImpl::validateValue(const Lock&, boost::any&, const SettingsImpl*) const;
SETTINGSCORE_FOR_EACH_TREE_LOCK(SETTINGSCORE_INSTANTIATE_VALIDATION)
#undef SETTINGSCORE_INSTANTIATE_VALIDATION

SettingsKeyMetaData<boost::any> SettingsImpl::getKeyMetaData(const std::string& name) const {
    ensureLoaded();
    detail::SharedLock lock(detail::rootMutex());
    const auto child = findChild(lock, name);
    if (!child) {
        throw exception::NoSuchKey(shared_from_this(), name);
    }
    return child->metaData_;
}

}  // namespace core
}  // namespace settings
