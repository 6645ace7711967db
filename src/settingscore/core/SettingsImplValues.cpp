// SettingsImpl: values across levels. Reads resolve "session", "user", "factory" in turn, each
// level's run-time default standing in for a missing stored value there; writes validate every
// pair first and store only when all passed; clears erase one level.
//
// Locks: reads take the root mutex shared. setValues, validateValues and removeValue hold it in
// upgrade mode throughout, the saves included; each map change runs under a short exclusive
// hold from that upgrade.
#include <settingscore/core/SettingsImpl.hpp>

#include <settingscore/core/detail/LockInstantiation.hpp>
#include <settingscore/core/events/detail/EventPublishing.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>
#include <settingscore/core/storage/detail/ProductFileState.hpp>
#include <settingscore/core/storage/detail/SaveSequence.hpp>
#include <settingscore/treestore/boostany/BoostAny.hpp>

#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>

#include <boost/variant/static_visitor.hpp>

namespace settings {
namespace core {

namespace {

const SettingsLevelManager& levels() {
    static const boost::shared_ptr<const SettingsLevelManager> manager =
        SettingsLevelManager::getSettingsLevelManagerInstance();
    return *manager;
}

// The run-time default of a key, if it counts at `level`.
class DefaultAtLevel : public boost::static_visitor<bool> {
public:
    DefaultAtLevel(const std::string& level, bool onTree) : level_(level), onTree_(onTree) {}

    bool operator()(const boost::mpl::void_&) const { return false; }

    template <class RunTimeDefault>
    bool operator()(const RunTimeDefault& runTimeDefault) const {
        // On the tree a default belongs to the level it was declared at; a standalone key has
        // no levels of its own, so its default counts wherever it is asked.
        return !onTree_ || runTimeDefault.getBelongingLevel() == level_;
    }

private:
    const std::string& level_;
    bool onTree_;
};

class RunDefault : public boost::static_visitor<boost::any> {
public:
    boost::any operator()(const boost::mpl::void_&) const { return boost::any(); }

    template <class RunTimeDefault>
    boost::any operator()(const RunTimeDefault& runTimeDefault) const {
        return runTimeDefault();
    }
};

std::string joinedLevelNames() {
    std::string joined;
    for (const auto& name : levels().getAllLevelNames()) {
        joined += joined.empty() ? name : ", " + name;
    }
    return joined + "\n";
}

}  // namespace

void SettingsImpl::checkLevelKnown(const std::string& level) const {
    if (!levels().isValidLevel(level)) {
        throw exception::UnSupportedLevel(shared_from_this(), level, joinedLevelNames());
    }
}

void SettingsImpl::checkLevelModifiable(const std::string& level) const {
    const SettingsLevel* found = levels().getSettingsLevelByName(level);
    if (!found || !found->canBeModified()) {
        throw exception::CantModifyValuesOnReadOnlyLevel(shared_from_this(), level);
    }
}

template <class Lock>
boost::any SettingsImpl::valueAtLevel(const Lock& lock, const std::string& level,
                                      bool useRunTimeDefault) const {
    detail::requireTreeLock(lock);
    if (!isKey_) {
        throw exception::NotAKeyName(getParentImpl(lock), name_);
    }
    const auto stored = values_.find(level);
    if (stored != values_.end()) {
        return stored->second;  // a stored value always wins over the default of its level
    }
    if (!useRunTimeDefault ||
        !boost::apply_visitor(DefaultAtLevel(level, isOnTree()), runTimeDefault_)) {
        return boost::any();
    }
    // Run now, on this thread, under the caller's hold; never cached.
    boost::any value = boost::apply_visitor(RunDefault(), runTimeDefault_);
    validateCore(lock, value);
    return value;
}

template <class Lock>
boost::any SettingsImpl::effectiveValue(const Lock& lock, bool useRunTimeDefault) const {
    for (const auto& level : SettingsLevelManager::getSettingsLevelObjs()) {
        boost::any value = valueAtLevel(lock, level.levelName(), useRunTimeDefault);
        if (!value.empty()) {
            return value;
        }
    }
    return boost::any();
}

#define SETTINGSCORE_INSTANTIATE_VALUES(Lock)                                                    \
    template boost::any SettingsImpl::valueAtLevel(const Lock&, const std::string&, bool) const; \
    template boost::any SettingsImpl::effectiveValue(const Lock&, bool) const;
SETTINGSCORE_FOR_EACH_TREE_LOCK(SETTINGSCORE_INSTANTIATE_VALUES)
#undef SETTINGSCORE_INSTANTIATE_VALUES

boost::any SettingsImpl::readValue(const std::string& level, bool useRunTimeDefault) const {
    detail::SharedLock lock(detail::rootMutex());
    if (level.empty()) {
        return effectiveValue(lock, useRunTimeDefault);
    }
    checkLevelKnown(level);
    return valueAtLevel(lock, level, useRunTimeDefault);
}

boost::any SettingsImpl::getAny(const std::string& name, const std::string& level) const {
    ensureLoaded();
    detail::SharedLock lock(detail::rootMutex());
    const SettingsImpl* key = lookupChild(lock, name);
    if (!key) {
        throw exception::NoSuchKey(shared_from_this(), name);
    }
    if (level.empty()) {
        return key->effectiveValue(lock, true);
    }
    checkLevelKnown(level);
    return key->valueAtLevel(lock, level, true);
}

bool SettingsImpl::hasValue(const std::string& name, const std::string& level) const {
    return !getAny(name, level).empty();
}

bool SettingsImpl::storeValue(detail::UpgradeLock& lock, const boost::any& value,
                              const std::string& level) {
    detail::requireUpgradeLock(lock);
    const boost::any before = effectiveValue(lock, true);
    const boost::any beforeHere = valueAtLevel(lock, level, true);
    if (treestore::boostany::isEqual(value, beforeHere)) {
        return false;  // what this level gives already, be it stored or a default
    }
    {
        detail::UniqueFromUpgrade exclusive(lock);
        values_[level] = value;
    }
    const boost::any after = effectiveValue(lock, true);
    if (!treestore::boostany::isEqual(before, after)) {
        // Hidden by a stronger level: stored and saved, but nobody sees a change.
        detail::publishValueChange(lock, *this);
    }
    return true;
}

void SettingsImpl::clearLevelValue(detail::UpgradeLock& lock, const std::string& level) {
    detail::requireUpgradeLock(lock);
    const boost::any before = effectiveValue(lock, true);
    {
        detail::UniqueFromUpgrade exclusive(lock);
        if (values_.erase(level) == 0) {
            throw exception::ValueNotDefinedForGivenLevel(shared_from_this(), level);
        }
    }
    const boost::any after = effectiveValue(lock, true);
    if (!treestore::boostany::isEqual(before, after)) {
        detail::publishValueChange(lock, *this);
    }
}

namespace {

// The validation pass of setValues and validateValues: every pair in order, before anything
// is stored. Conforms the values in place. Failures are thrown (throwOnFailure) or listed.
FailureList validatePairs(detail::UpgradeLock& lock, const SettingsImpl& caller,
                          std::vector<boost::any>& values, const KeyValuePair* first,
                          const KeyValuePair* last, bool throwOnFailure) {
    FailureList failures;
    std::size_t index = 0;
    for (const KeyValuePair* pair = first; pair != last; ++pair, ++index) {
        const auto key = SettingsImpl::implOf(pair->first);
        if (!key) {
            // A null entry never throws: it is reported and the rest goes on.
            failures.emplace_back("NULLOBJ",
                                  "The obj[" + std::to_string(index) + "] passed in is NULL.\n");
            continue;
        }
        try {
            key->validateValue(lock, values[index], &caller);
        } catch (const exception::ExceptionFromValidationFunction& e) {
            if (throwOnFailure) {
                throw;
            }
            failures.emplace_back(
                key->getFullName(lock),
                "Validation function throw. Reason: " + hf::i18n::to_string(e.getErrorMsg()) +
                    " function=" + e.getFunctionName() + " libname=" + e.getPackageName());
        } catch (const exception::InternalException& e) {
            if (throwOnFailure) {
                throw;
            }
            failures.emplace_back(key->getFullName(lock), e.what());
        } catch (...) {
            // Message-id failures of the conformer and anything a validator lets out: listed,
            // or passed on as they are.
            if (throwOnFailure) {
                throw;
            }
            failures.emplace_back(key->getFullName(lock), "Unknown Exception");
        }
    }
    return failures;
}

std::vector<boost::any> valuesOf(const KeyValuePair* first, const KeyValuePair* last) {
    std::vector<boost::any> values;
    values.reserve(static_cast<std::size_t>(last - first));
    for (const KeyValuePair* pair = first; pair != last; ++pair) {
        values.push_back(pair->second);
    }
    return values;
}

}  // namespace

FailureList SettingsImpl::validateValues(const KeyValuePair* first, const KeyValuePair* last,
                                         bool throwOnFailure) const {
    ensureLoaded();
    std::vector<boost::any> values = valuesOf(first, last);
    detail::UpgradeLock lock(detail::rootMutex());
    return validatePairs(lock, *this, values, first, last, throwOnFailure);
}

FailureList SettingsImpl::setValues(const KeyValuePair* first, const KeyValuePair* last,
                                    const std::string& level, bool throwOnFailure) {
    checkLevelKnown(level);
    checkLevelModifiable(level);
    ensureLoaded();
    const SettingsLevel* levelObject = levels().getSettingsLevelByName(level);
    std::vector<boost::any> values = valuesOf(first, last);

    detail::UpgradeLock lock(detail::rootMutex());
    FailureList failures = validatePairs(lock, *this, values, first, last, throwOnFailure);
    if (!failures.empty()) {
        return failures;  // all or nothing: one failure stores none
    }
    std::size_t index = 0;
    for (const KeyValuePair* pair = first; pair != last; ++pair, ++index) {
        const auto key = implOf(pair->first);
        if (!key) {
            continue;
        }
        bool changed = false;
        try {
            changed = key->storeValue(lock, values[index], level);
        } catch (const hf::except::IMsgIDException& e) {
            // Kept from the store's message failure: the text is made and dropped, and the
            // batch goes on with the next pair.
            const std::string dropped =
                "setAny caught exception other than FileIO, something is totally  wrong" +
                hf::i18n::to_string(hf::i18n::MessageCatalog::get_message(
                    e.get_message_id(), hf::i18n::HfLocale::global()));
            (void)dropped;
        }
        if (changed && key->isOnTree()) {
            // Each changed key is saved on its own, right after its store; a failing save ends
            // the batch with the pairs before it stored and saved.
            markChanged(lock, *key, level);
            detail::saveSettingsAtLevel(lock, levelObject, *key);
        }
    }
    return failures;
}

void SettingsImpl::removeValue(const std::string& name, const std::string& level) {
    ensureLoaded();
    checkLevelKnown(level);
    checkLevelModifiable(level);
    detail::UpgradeLock lock(detail::rootMutex());
    const auto key = findChild(lock, name);
    if (!key) {
        throw exception::NoSuchKey(shared_from_this(), name);
    }
    // The group's state counts here: a read-only key under a writable group can be cleared.
    if (isOnTree() && isReadOnly(lock)) {
        throw exception::CannotAddRemoveNodeUnderReadOnlyParent(shared_from_this(), key);
    }
    if (!key->isKey_) {
        throw exception::NotAKeyName(shared_from_this(), name);
    }
    if (!isOnTree()) {
        key->clearLevelValue(lock, level);
        return;
    }
    // A value held back from the file counts as the level's value here: resetting drops it.
    const auto product = productNodeOf(lock);
    const std::string path = key->getFullName(lock);
    const bool heldBack = key->values_.count(level) == 0 &&
                          product->fileState()->access(level, [&](detail::LevelFile& file) {
                              return file.heldBack.count(path) != 0;
                          });
    if (!heldBack) {
        key->clearLevelValue(lock, level);
    }
    markChanged(lock, *key, level);
    detail::saveSettingsAtLevel(lock, levels().getSettingsLevelByName(level), *this);
}

}  // namespace core
}  // namespace settings
