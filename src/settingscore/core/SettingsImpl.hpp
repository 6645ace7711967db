// settings::core::SettingsImpl: the one concrete node of the tree, group or key. Internal to
// the library; clients see it through Settings and TSettings.
//
// Locks: every field below is guarded by the root mutex (detail/TreeLock.hpp) except name_ and
// isKey_ (fixed at construction), nodeId_ (fixed), loadOnce_ (its own once flag) and parent_ as
// read by isOnTree (the weak pointer's atomic count keeps that read safe). Public operations
// call ensureLoaded and then take the root mutex themselves; the internal forms take the held
// lock as their first argument and never lock again.
#pragma once

#include <settingscore/core/ArraySizeBounds.hpp>
#include <settingscore/core/TSettings.hpp>
#include <settingscore/core/detail/TreeLock.hpp>
#include <settingscore/core/detail/ValueChecks.hpp>
#include <settingscore/core/xml/ValueWriters.hpp>

#include <boost/any.hpp>
#include <boost/enable_shared_from_this.hpp>
#include <boost/thread/once.hpp>
#include <boost/weak_ptr.hpp>

#include <atomic>
#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace settings {
namespace core {

class SettingsLevel;
class SettingsImplRoot;

namespace detail {
class NodeBuilder;
class FileTakeIn;
class ProductFileState;
struct MergePolicy;
// --- Added for the settings file writer (SettingsImplWriting.cpp, xml/ValueWriters.cpp) ---
class NodeWriter;
// --- end of the writer's block ---
}  // namespace detail

class SettingsImpl : public TSettings, public boost::enable_shared_from_this<SettingsImpl> {
public:
    // readOnlyState_ values.
    enum ReadOnlyState { Writable = 0, ReadOnly = 1, InheritReadOnly = 2 };

    // Ordered by plain byte order; the transparent comparator lets a walk look up parts of a
    // path without copying them.
    using ChildMap = std::map<std::string, boost::shared_ptr<SettingsImpl>, std::less<>>;

    SettingsImpl(const std::string& name, bool isKey, const boost::optional<bool>& visible,
                 const ValidatorVariant& validator, const boost::shared_ptr<SettingsImpl>& parent);
    SettingsImpl(const std::string& name, bool isKey, const boost::optional<bool>& visible,
                 const ValidatorVariant& validator, int readOnlyState,
                 const boost::shared_ptr<SettingsImpl>& parent);
    SettingsImpl(const std::string& name, bool isKey, const boost::optional<bool>& visible,
                 const boost::optional<unsigned>& version, const ValidatorVariant& validator,
                 int readOnlyState, const boost::shared_ptr<SettingsImpl>& parent);
    // Copies every field but the values, the children and the parent, which start empty; the
    // node id is new and the load state is taken over as it stands.
    SettingsImpl(const SettingsImpl& other);
    ~SettingsImpl() override;

    // --- Settings ---
    boost::any getAny(const std::string& name, const std::string& level) const override;
    std::string getName() const override;
    std::string getFullName() const override;
    boost::shared_ptr<Settings> getNodeByPath(const std::string& path) override;
    boost::shared_ptr<Settings> getNodeByPath(const std::vector<std::string>& parts) override;
    void removeValue(const std::string& name, const std::string& level) override;
    bool hasValue(const std::string& name, const std::string& level) const override;
    boost::optional<int> getKeyType(const std::string& name) const override;
    boost::shared_ptr<const Settings> getChild(const std::string& name) const override;
    boost::shared_ptr<Settings> getChild(const std::string& name) override;
    std::vector<boost::shared_ptr<Settings>> getChildren() override;
    std::vector<boost::shared_ptr<const Settings>> getChildren() const override;
    boost::shared_ptr<const Settings> getParent() const override;
    boost::shared_ptr<Settings> getParent() override;
    bool isKey() const override;
    bool isVisible() const override;
    bool isReadOnly() const override;
    bool isRoot() const override;
    boost::optional<unsigned> getProductVersion() const override;
    const ValidatorVariant& getValidator() const override;
    SettingsKeyMetaData<boost::any> getKeyMetaData(const std::string& name) const override;
    void mergeWith(const boost::shared_ptr<Settings>& other, const std::string& level) override;
    tvutil::contextmgr::InstanceID getInstanceId() const override;
    bool isOnTree() const override;
    boost::shared_ptr<Settings> getSharedThis() override;
    boost::shared_ptr<const Settings> getSharedThis() const override;
    FailureList setValues(const KeyValuePair* first, const KeyValuePair* last,
                          const std::string& level, bool throwOnFailure) override;
    FailureList validateValues(const KeyValuePair* first, const KeyValuePair* last,
                               bool throwOnFailure) const override;
    hostsvc::msg_svc::exchange::IDType getNodeId() const override;
    boost::optional<ArraySizeBounds> getArraySizeBounds(const std::string& name) const override;
    RunTimeDefaultVariant getRunTimeDefault(const std::string& name) const override;

    // --- TSettings ---
    void setRecordEvents(bool record) override;
    void removeNode(const std::string& name) override;
    void removeKey(const std::string& name) override;
    void setParent(const boost::shared_ptr<Settings>& parent) override;
    void setValidator(ValidatorVariant validator) override;
    bool isProductNode() const override;

    // --- SettingsImpl ---
    virtual boost::optional<int> getDataType() const;
    // As isRoot; the tree's own code asks this one.
    virtual bool isRootImpl() const;

    // Runs the product loader once for this node (the first caller runs it, others wait).
    // ErrorReadingSettingsData (code 7) when the load left an error text; a failed load is not
    // repeated.
    void ensureLoaded() const;
    // Fills this product node from its files: the factory files, then the user file, each
    // merged at its level. A bad file is skipped with one line in `errors`; the node gets what
    // the good files gave. Does nothing on a node that is not a product node.
    // REQUIRES: no lock of the tree held.
    void loadProductNode(std::wstring& errors);

    // Whether the product load has run (or is running): a true answer never turns false.
    bool isLoadAttempted() const { return loadAttempted_.load(std::memory_order_acquire); }

    // --- Internal forms. REQUIRES: the root mutex, held by `lock`. ---

    template <class Lock>
    boost::shared_ptr<SettingsImpl> findChild(const Lock& lock, const std::string& name) const;
    // The same without taking a share of the child: for walks that hold the lock throughout.
    template <class Lock>
    SettingsImpl* lookupChild(const Lock& lock, std::string_view name) const;
    template <class Lock>
    boost::shared_ptr<SettingsImpl> getParentImpl(const Lock& lock) const;
    template <class Lock>
    bool isReadOnly(const Lock& lock) const;
    template <class Lock>
    bool isProductNode(const Lock& lock) const;
    // Not on a root's chain and not a root.
    template <class Lock>
    bool isStandalone(const Lock& lock) const;
    // The product node above or at this node; on a standalone tree its top, on the root the root.
    template <class Lock>
    boost::shared_ptr<SettingsImpl> productNodeOf(const Lock& lock) const;
    template <class Lock>
    std::string getFullName(const Lock& lock) const;
    template <class Lock>
    tvutil::contextmgr::InstanceID getInstanceId(const Lock& lock) const;
    // The levels whose files a structural change of this subtree must write: every level with a
    // value in a key below, and "user", without the levels that have no file. With
    // `refuseReadOnly`, NoFileWritePermissionOnMultipleLevels when one of them cannot be
    // modified.
    template <class Lock>
    std::vector<const SettingsLevel*> fileLevelsOf(const Lock& lock, bool refuseReadOnly) const;

    // --- Values across levels (internal forms, REQUIRES the lock they take) ---

    // The value at `level`: a stored value, else the key's run-time default when it counts
    // there (on the tree: only at its belonging level; standalone: at any level), run now and
    // conformed; else empty. NotAKeyName on a group.
    template <class Lock>
    boost::any valueAtLevel(const Lock& lock, const std::string& level,
                            bool useRunTimeDefault) const;
    // The first non-empty valueAtLevel in level order ("session", "user", "factory").
    template <class Lock>
    boost::any effectiveValue(const Lock& lock, bool useRunTimeDefault) const;
    // Takes a shared hold itself: REQUIRES no lock held. Empty `level`: the effective value.
    boost::any readValue(const std::string& level, bool useRunTimeDefault) const;
    // Stores `value` at `level` unless it equals what that level gives already; publishes the
    // change of the effective value. True when something was stored.
    bool storeValue(detail::UpgradeLock& lock, const boost::any& value, const std::string& level);
    // Erases the value at `level`; ValueNotDefinedForGivenLevel when there is none.
    void clearLevelValue(detail::UpgradeLock& lock, const std::string& level);

    // UnSupportedLevel unless `level` names a level; CantModifyValuesOnReadOnlyLevel unless its
    // values may be changed.
    void checkLevelKnown(const std::string& level) const;
    void checkLevelModifiable(const std::string& level) const;

    // --- Validation (internal forms) ---

    // The whole check of a write: a key, not read-only on the tree, validateCore, then the
    // validator that applies. `knownParent` stands in for a standalone key's missing parent.
    template <class Lock>
    void validateValue(const Lock& lock, boost::any& value, const SettingsImpl* knownParent) const;
    // Type, array size, range and choices; conforms `value` to the key's type in place and
    // fills the key's type caches from the first value it sees.
    template <class Lock>
    void validateCore(const Lock& lock, boost::any& value) const;
    // Calls the nearest validator on the way up from this key, if any.
    template <class Lock>
    void runValidationFunction(const Lock& lock, const SettingsImpl* knownParent,
                               const boost::any& value) const;

    // --- Merging (internal forms) ---

    // Merges `other` (a standalone tree) into this node at `levelName`, as the policy says
    // (detail/MergePolicy.hpp): the one merge of files, mergeWith and files taken in again.
    // REQUIRES an upgrade hold of the mutex that guards both trees.
    void mergeNode(detail::UpgradeLock& lock, const boost::shared_ptr<SettingsImpl>& other,
                   const std::string& levelName, bool takeDefinition, bool compareNames,
                   const detail::MergePolicy& policy);
    // A copy of `original` to merge into without changing it: the node's own fields and
    // values, and its children shared with the original (a copy-on-write merge copies each
    // before it changes it). REQUIRES an upgrade hold of the mutex guarding `original`.
    static boost::shared_ptr<SettingsImpl> copyForMerge(detail::UpgradeLock& lock,
                                                        const SettingsImpl& original);
    // After a copy-on-write merge into `copy` that is kept: the children still shared with the
    // original are made the copy's own (their parent becomes the copy). The original is spent.
    static void claimSharedChildren(detail::UpgradeLock& lock,
                                    const boost::shared_ptr<SettingsImpl>& copy);

    // Records that this process changed `node` (a key, or the top of a subtree added or
    // removed) at `level`: in its product's file state the change then wins over what another
    // process saves, and what was held back there is dropped. Nothing off a product.
    template <class Lock>
    static void markChanged(const Lock& lock, const SettingsImpl& node, const std::string& level);

    // The state of this product node's files (storage/detail/ProductFileState.hpp), kept by
    // its root and made on first use; a node that is no product node gets a state of its own
    // that nobody else sees (it has no files).
    std::shared_ptr<detail::ProductFileState> fileState() const;

    // --- Writing a node as settings file text (internal forms) ---

    // Writes this node's subtree, with its ancestors opened around it, as the text of a
    // settings file for `level`: values at that level, or the run-time default that belongs
    // there. UnSupportedLevel for an unknown level name; an empty name writes each key's
    // effective stored value (the form of a factory file).
    template <class Lock>
    void writeSettings(const Lock& lock, std::ostream& out, const std::string& level) const;

    // Hangs this node under `parent`: the read-only and key-at-root checks, then the map change
    // under a short exclusive hold. REQUIRES: `lock` holds the root mutex in upgrade mode, or
    // (UniqueFromUpgrade) exclusively already; the latter only for the private mutex of a tree
    // being read from a file, since the checks may run validators that read the tree.
    template <class Lock>
    void attachToParent(Lock& lock, const boost::shared_ptr<SettingsImpl>& parent,
                        bool checkValues);
    // Runs `validator` over the values of this subtree that have no validator of their own on
    // the way down: every stored value of a key, with its parent (`parent` for this node).
    template <class Lock>
    void checkValuesAgainst(const Lock& lock, const ValidatorVariant& validator,
                            const boost::shared_ptr<const SettingsImpl>& parent) const;
    // Adds `child` to this node's children; the case-insensitive clash test applies at the root
    // only. REQUIRES: the root mutex held exclusively, from upgrade.
    void insertChild(detail::UniqueFromUpgrade& lock, const boost::shared_ptr<SettingsImpl>& child);
    // Removes `child` from this node and saves (or, for a product, deletes) the files concerned.
    // Takes the root mutex itself: REQUIRES no lock held.
    void detachChild(const boost::shared_ptr<SettingsImpl>& child);

    // The concrete node behind a Settings pointer; null for any other implementation.
    static boost::shared_ptr<SettingsImpl> implOf(const boost::shared_ptr<Settings>& node);
    static boost::shared_ptr<const SettingsImpl> implOf(
        const boost::shared_ptr<const Settings>& node);

protected:
    // The file reader builds standalone nodes field by field.
    friend class detail::NodeBuilder;
    // Taking in a file that another process saved reads and changes values and nodes.
    friend class detail::FileTakeIn;
    // --- Added for the settings file writer: the node walk behind writeSettings and the value
    // writers read the fields they write through it (xml/detail/NodeWriter.hpp). ---
    friend class detail::NodeWriter;
    // --- end of the writer's block ---

    // `nameIgnoresCase` for the top of a product's file, which may spell the product otherwise.
    template <class Lock>
    void checkNodeAttributes(const Lock& lock, const SettingsImpl& other, bool compareNames,
                             bool isFactoryLevel, bool takeDefinition,
                             bool nameIgnoresCase = false);
    template <class Lock>
    void copyDefinitionFrom(const Lock& lock, const SettingsImpl& other);
    void mergeChildren(detail::UpgradeLock& lock, const boost::shared_ptr<SettingsImpl>& other,
                       const std::string& levelName, bool compareNames,
                       const detail::MergePolicy& policy);
    void mergeKey(detail::UpgradeLock& lock, const boost::shared_ptr<SettingsImpl>& other,
                  const std::string& levelName, const detail::MergePolicy& policy);
    void claimChildren(const detail::UniqueFromUpgrade& lock);
    void takeOverAtLevel(const detail::UniqueFromUpgrade& lock, const std::string& level);
    // What mergeWith's dry run decided, applied to the live tree.
    struct MergeOutcome {
        std::vector<boost::shared_ptr<SettingsImpl>> mergedKeys;  // a value merged at the level
        std::vector<boost::shared_ptr<SettingsImpl>> addedNodes;  // new below their parents
    };
    // Takes into this node what the dry run merged into `merged`, its copy-on-write copy,
    // walking `other`, the source: values and run-time defaults of keys, new nodes as made.
    void applyMerged(const detail::UniqueFromUpgrade& lock, const SettingsImpl& merged,
                     const SettingsImpl& other, const std::string& levelName,
                     MergeOutcome& outcome);
    // Fills the type caches still absent from `value`. REQUIRES detail::keyCacheMutex().
    void deduceTypeFromValue(const boost::any& value) const;

    // The walk behind both getNodeByPath forms, over any range of parts.
    template <class Parts>
    boost::shared_ptr<Settings> walkPath(const Parts& parts);

    template <class Lock>
    void collectValueLevels(const Lock& lock, std::set<std::string>& levels) const;

    const std::string name_;
    const bool isKey_;
    boost::optional<bool> visible_;
    int readOnlyState_;
    boost::optional<unsigned> version_;
    boost::weak_ptr<SettingsImpl> parent_;
    std::map<std::string, boost::any> values_;
    ChildMap children_;
    // The product load runs at most once per node. loadAttempted_ mirrors the flag so that a
    // copy can take over its state (a once flag itself cannot be copied).
    mutable boost::once_flag loadOnce_ = BOOST_ONCE_INIT;
    mutable std::atomic<bool> loadAttempted_{false};
    ValidatorVariant validator_;
    SettingsKeyMetaData<boost::any> metaData_;
    // The type caches, filled from a declaration or from the first value validated against the
    // key; once set they never change back. Guarded by detail::keyCacheMutex() as well as the
    // root mutex, since validation fills them under a shared hold.
    mutable detail::TypeConformer typeConformer_ = nullptr;
    mutable boost::optional<ArraySizeBounds> arraySizeBounds_;
    // Writes the key's type element; chosen with the type, from a declaration or a first value.
    mutable detail::ValueWriter valueWriter_ = nullptr;
    const hostsvc::msg_svc::exchange::IDType nodeId_;
    RunTimeDefaultVariant runTimeDefault_;
    mutable boost::optional<int> typeCode_;
};

}  // namespace core
}  // namespace settings
