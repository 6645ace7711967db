// settings::core::detail::NodeBuilder: the settings file reader's access to the declaration
// fields of a node it is building (data type, array bounds, conformer, value writer,
// metadata, run-time default, stored values).
#pragma once

#include <settingscore/core/ArraySizeBounds.hpp>
#include <settingscore/core/SettingsKeyMetaData.hpp>
#include <settingscore/core/callouts/CalloutVariants.hpp>
#include <settingscore/core/detail/ValueChecks.hpp>
#include <settingscore/core/xml/ValueWriters.hpp>

#include <boost/any.hpp>
#include <boost/optional.hpp>

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

    static void setTypeCode(SettingsImpl& node, int typeCode);
    static boost::optional<int> getTypeCode(const SettingsImpl& node);

    static void setArraySizeBounds(SettingsImpl& node, const ArraySizeBounds& bounds);
    static boost::optional<ArraySizeBounds> getArraySizeBounds(const SettingsImpl& node);

    static void setTypeConformer(SettingsImpl& node, TypeConformer conformer);
    static TypeConformer getTypeConformer(const SettingsImpl& node);

    static void setValueWriter(SettingsImpl& node, ValueWriter writer);
    static ValueWriter getValueWriter(const SettingsImpl& node);

    static void setMetaData(SettingsImpl& node, const SettingsKeyMetaData<boost::any>& metaData);
    static SettingsKeyMetaData<boost::any> getMetaData(const SettingsImpl& node);

    static void setRunTimeDefault(SettingsImpl& node, const RunTimeDefaultVariant& runTimeDefault);
    static RunTimeDefaultVariant getRunTimeDefault(const SettingsImpl& node);
    static bool hasRunTimeDefault(const SettingsImpl& node);

    // Stores `value` (empty or not) as the node's value at `level`, replacing what was there.
    static void setStoredValue(SettingsImpl& node, const std::string& level,
                               const boost::any& value);
    // The value stored at `level`; none when the level has no entry at all.
    static boost::optional<boost::any> getStoredValue(const SettingsImpl& node,
                                                      const std::string& level);
};

}  // namespace detail
}  // namespace core
}  // namespace settings
