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

    // The fields a file's function and metadata elements set. Under a build lock nothing else
    // is taken, so a file can be read while the reading thread holds the root mutex (a save
    // that reads the file another process wrote).
    static void setMetaData(UniqueFromUpgrade* build, SettingsImpl& node,
                            const SettingsKeyMetaData<boost::any>& metaData);
    static void setValidator(UniqueFromUpgrade* build, SettingsImpl& node,
                             const ValidatorVariant& validator);
    static SettingsKeyMetaData<boost::any> getMetaData(const SettingsImpl& node);

    static void setRunTimeDefault(UniqueFromUpgrade* build, SettingsImpl& node,
                                  const RunTimeDefaultVariant& runTimeDefault);
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
};

}  // namespace detail
}  // namespace core
}  // namespace settings
