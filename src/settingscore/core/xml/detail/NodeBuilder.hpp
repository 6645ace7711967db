// settings::core::detail::NodeBuilder: the settings file reader's access to the declaration
// fields of a node it is building (data type, array bounds, conformer, value writer,
// metadata, run-time default, stored values).
#pragma once

#include <settingscore/core/ArraySizeBounds.hpp>
#include <settingscore/core/SettingsKeyMetaData.hpp>
#include <settingscore/core/callouts/CalloutVariants.hpp>
#include <settingscore/core/detail/TreeLock.hpp>
#include <settingscore/core/detail/ValueChecks.hpp>
#include <settingscore/core/xml/ValueWriters.hpp>

#include <boost/any.hpp>
#include <boost/optional.hpp>
#include <boost/shared_ptr.hpp>

#include <functional>
#include <map>
#include <string>

namespace settings {
namespace core {

class SettingsImpl;

namespace detail {

// Sets and reads fields of a standalone SettingsImpl that only a declaration in a settings file
// sets directly. The node is not yet visible to other threads, but the field rules of the tree
// hold all the same: the type caches (type code, conformer, array bounds, value writer) are
// written under detail::keyCacheMutex() held exclusively, the other fields under the root
// mutex held exclusively (from upgrade). Readers take the same mutexes shared.
//
// REQUIRES: no lock of the tree held by the caller (each call takes what it needs).
class NodeBuilder {
public:
    NodeBuilder() = delete;

    // The declaration as read back (by the tests of the reader).
    static boost::optional<int> getTypeCode(const SettingsImpl& node);
    static boost::optional<ArraySizeBounds> getArraySizeBounds(const SettingsImpl& node);
    static TypeConformer getTypeConformer(const SettingsImpl& node);
    static ValueWriter getValueWriter(const SettingsImpl& node);

    static void setMetaData(SettingsImpl& node, const SettingsKeyMetaData<boost::any>& metaData);
    static SettingsKeyMetaData<boost::any> getMetaData(const SettingsImpl& node);

    static void setRunTimeDefault(SettingsImpl& node, const RunTimeDefaultVariant& runTimeDefault);
    static RunTimeDefaultVariant getRunTimeDefault(const SettingsImpl& node);

    // --- What the elements of a file settle about their nodes, each in one exclusive hold:
    // a file of many keys pays a few lock operations per key, not one per field. `build` is
    // the parse's exclusive hold over the tree being built (BuildLock.hpp), under which nothing
    // else is taken; null means a node outside a parse, for which the root mutex (and the
    // type-cache mutex for the type caches) are taken as above. ---

    // A type element: the data type, array bounds and conformer together.
    static void declareType(UniqueFromUpgrade* build, SettingsImpl& node, int typeCode,
                            const ArraySizeBounds& bounds, TypeConformer conformer);
    // A key element that has closed: with `anyType` the data type becomes the void type;
    // `writer` becomes the value writer; without a run-time default `value` (empty or not)
    // becomes the value at `level`, taken from `value`. Returns false, and changes nothing,
    // when the key has no data type and is not of any type.
    static bool settleKey(UniqueFromUpgrade* build, SettingsImpl& node, bool anyType,
                          ValueWriter writer, boost::any& value, const std::string& level);
    // `child` below `parent` with setParent's checks and failures. Under a build lock the
    // parent is a group of the tree being built: not on a tree, so nothing to load first, no
    // event to publish and no file to save after.
    static void attach(UniqueFromUpgrade* build, SettingsImpl& child,
                       const boost::shared_ptr<SettingsImpl>& parent);

    // The value stored at `level`; none when the level has no entry at all.
    static boost::optional<boost::any> getStoredValue(const SettingsImpl& node,
                                                      const std::string& level);

    // --- Merges of a file's standalone tree, as SettingsImpl::mergeNode(lock, from, level,
    // takeDefinition, true) does them, without its copies. `from` is given up to them: it may
    // lose nodes to the result. REQUIRES: unlike the rest of this class, `lock` holds the mutex
    // guarding all trees involved in upgrade mode; nobody else uses them. ---

    // The merge into a group `into` that has no children yet (a product's first file). The
    // plain merge would build a copy of every node below `from` (the first tree that mentions
    // a node defines it) and leave `from` to be destroyed; this takes over from's children
    // themselves instead, with each key's value moved to `level` (the first stored value in
    // level order, none if that is empty) and each run-time default made to belong to
    // `level`. Only the two top nodes can fail to merge, before anything moves: then `from`
    // keeps its children. Does nothing and returns false unless `into` and `from` are groups
    // and `into` has no children.
    static bool mergeIntoEmptyGroup(UpgradeLock& lock, SettingsImpl& into,
                                    const boost::shared_ptr<SettingsImpl>& from,
                                    const std::string& level, bool takeDefinition);

    // A merge that must leave the tree it merges into as it was, should it fail, without
    // copying all of it first:
    //   auto copy = copyForMerge(lock, *tree);       // the top, sharing tree's children
    //   mergeCopyingPath(lock, copy, from, ...);     // may throw, as mergeNode does
    //   claimSharedChildren(lock, copy);             // after success (or a partial merge kept)
    // Only the nodes that `from` has a counterpart for are copied, each before it is merged
    // into; the rest stay shared with `tree` and keep naming their parents there until
    // claimSharedChildren makes the copies their parents. Until then `tree` is intact, and a
    // copy that is dropped leaves it so; after that `tree` is spent and must not be used.
    static boost::shared_ptr<SettingsImpl> copyForMerge(UpgradeLock& lock,
                                                        const SettingsImpl& original);
    static void mergeCopyingPath(UpgradeLock& lock, const boost::shared_ptr<SettingsImpl>& copy,
                                 const boost::shared_ptr<SettingsImpl>& from,
                                 const std::string& level, bool takeDefinition);
    static void claimSharedChildren(UpgradeLock& lock, const boost::shared_ptr<SettingsImpl>& copy);

private:
    // SettingsImpl::ChildMap, which this header cannot name.
    using ChildMap = std::map<std::string, boost::shared_ptr<SettingsImpl>, std::less<>>;

    // mergeNode on the top nodes alone: from's children are moved into `fromChildren` first,
    // and back should the merge fail.
    static void mergeTopOnly(UpgradeLock& lock, SettingsImpl& into,
                             const boost::shared_ptr<SettingsImpl>& from, const std::string& level,
                             bool takeDefinition, ChildMap& fromChildren);
    static void takeOverAtLevel(const UniqueFromUpgrade& lock, SettingsImpl& node,
                                const std::string& level);
    static void claimSharedChildren(const UniqueFromUpgrade& lock,
                                    const boost::shared_ptr<SettingsImpl>& node);
};

}  // namespace detail
}  // namespace core
}  // namespace settings
