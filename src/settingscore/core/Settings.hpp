// settings::core::Settings: the node interface every client of the settings tree sees. A node
// is a group or a key (told apart by isKey); clients hold boost::shared_ptr<Settings>, walk the
// tree by name or dotted path and read its structure. The root of an instance comes from
// getSettingsRoot.
#pragma once

#include <settingscore/core/ArraySizeBounds.hpp>
#include <settingscore/core/ProductFileStatus.hpp>
#include <settingscore/core/SettingsKeyMetaData.hpp>
#include <settingscore/core/SettingsTypes.hpp>
#include <settingscore/core/callouts/CalloutVariants.hpp>

#include <platform/hostsvc/msg_svc/eventmgr/Connection.hpp>
#include <platform/hostsvc/msg_svc/exchange/IDType.hpp>
#include <platform/tvutil/contextmgr/InstanceID.hpp>

#include <boost/function.hpp>
#include <boost/noncopyable.hpp>
#include <boost/optional.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/thread/shared_mutex.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace settings {
namespace core {

namespace detail {
struct RootMutexAccess;
}

class Settings : private boost::noncopyable {
public:
    virtual ~Settings();

    // The value of child key `name`: the effective one when `level` is empty, else the one at
    // that level (a run-time default counts where it belongs). Empty when undefined.
    // NoSuchKey, NotAKeyName, UnSupportedLevel.
    virtual boost::any getAny(const std::string& name, const std::string& level) const = 0;

    // The node's short name; the root answers "root".
    virtual std::string getName() const = 0;
    // Names from the product node down, joined by "."; empty on the root. A standalone node's
    // name starts with its topmost ancestor's.
    virtual std::string getFullName() const = 0;
    // Splits `path` at "." (empty parts dropped) and walks down from this node. Null when a
    // part is missing or when there is no part at all; never throws for a bad path.
    virtual boost::shared_ptr<Settings> getNodeByPath(const std::string& path) = 0;
    virtual boost::shared_ptr<Settings> getNodeByPath(const std::vector<std::string>& parts) = 0;
    // Deletes key `name`'s value at `level` and saves that level. ValueNotDefinedForGivenLevel
    // when there is none; CantModifyValuesOnReadOnlyLevel for "factory".
    virtual void removeValue(const std::string& name, const std::string& level) = 0;
    // Whether getAny(name, level) yields a value.
    virtual bool hasValue(const std::string& name, const std::string& level) const = 0;
    // Type code of child key `name` (1 wstring, 2 bool, 3..10 integers, 11 float, 12 double,
    // 25 void). NoSuchKey when absent, NotAKeyName when the child is a group.
    virtual boost::optional<int> getKeyType(const std::string& name) const = 0;
    // Direct child by exact (case-sensitive) name; null when absent.
    virtual boost::shared_ptr<const Settings> getChild(const std::string& name) const = 0;
    virtual boost::shared_ptr<Settings> getChild(const std::string& name) = 0;
    // Direct children, keys and groups, ascending by name.
    virtual std::vector<boost::shared_ptr<Settings>> getChildren() = 0;
    virtual std::vector<boost::shared_ptr<const Settings>> getChildren() const = 0;
    // Null on the root and on the top of a standalone tree.
    virtual boost::shared_ptr<const Settings> getParent() const = 0;
    virtual boost::shared_ptr<Settings> getParent() = 0;
    virtual bool isKey() const = 0;
    // A node that was never given a visibility answers false.
    virtual bool isVisible() const = 0;
    // Read-only state; a group in the inheriting state takes its nearest decided ancestor's.
    virtual bool isReadOnly() const = 0;
    virtual bool isRoot() const = 0;
    // The version of the product node above (or at) this node.
    virtual boost::optional<unsigned> getProductVersion() const = 0;
    // Subscribes `listener` to the value changes of this node and of every node below it. The
    // subscription lasts as long as the connection. A standalone node cannot be listened to:
    // the answer is null.
    virtual std::unique_ptr<hostsvc::msg_svc::eventmgr::Connection> addListener(
        const boost::function1<void, const SettingsEvent&>& listener) const;
    // The node's own validator; boost::mpl::void_ when it has none.
    virtual const ValidatorVariant& getValidator() const = 0;
    // The limits of child `name` (empty for a group). NoSuchKey.
    virtual SettingsKeyMetaData<boost::any> getKeyMetaData(const std::string& name) const = 0;
    // Merges the standalone tree `other` into this node at a modifiable level and saves. The
    // whole merge is validated first on a copy: a failure leaves this tree untouched.
    virtual void mergeWith(const boost::shared_ptr<Settings>& other, const std::string& level) = 0;
    // The id of the instance whose root is above; UndefinedInstanceID for a standalone node.
    virtual tvutil::contextmgr::InstanceID getInstanceId() const = 0;
    // True when the chain of parents ends at a root; true on the root.
    virtual bool isOnTree() const = 0;
    virtual boost::shared_ptr<Settings> getSharedThis() = 0;
    virtual boost::shared_ptr<const Settings> getSharedThis() const = 0;
    // Validates every pair, then, only when all passed, stores them at `level`, saving each
    // changed key's product file. With `throwOnFailure` the first failure is thrown; otherwise
    // the failures are returned and nothing is stored.
    virtual FailureList setValues(const KeyValuePair* first, const KeyValuePair* last,
                                  const std::string& level, bool throwOnFailure) = 0;
    // The validation of setValues alone; the values are not stored.
    virtual FailureList validateValues(const KeyValuePair* first, const KeyValuePair* last,
                                       bool throwOnFailure) const = 0;
    // The node's identity for typed event subscriptions.
    virtual hostsvc::msg_svc::exchange::IDType getNodeId() const = 0;
    // How many elements the values of child key `name` may have; none while the key has no
    // type yet. NoSuchKey, NotAKeyName.
    virtual boost::optional<ArraySizeBounds> getArraySizeBounds(const std::string& name) const = 0;
    // The run-time default of child key `name` (boost::mpl::void_ when it has none), with the
    // level it belongs to. NoSuchKey, NotAKeyName.
    virtual RunTimeDefaultVariant getRunTimeDefault(const std::string& name) const = 0;

    // Sets one direct child key (a dotted name is taken literally). NoSuchKey, and every
    // failure of setValues.
    void setAny(const std::string& name, const boost::any& value, const std::string& level);
    // Checks one value against direct child key `name` without storing it.
    void validateAny(const std::string& name, const boost::any& value) const;

    // What the files of this node's product showed (ProductFileStatus.hpp): the values held
    // back from its user file, the copies kept of a user file that could not be read, the
    // saves that failed. Reads the product first if nobody touched it yet. Empty on the root
    // and on a standalone node.
    ProductFileStatus getProductFileStatus() const;

    // Reads again the user file of every loaded product (on the root), or of this node's
    // product, that changed on disk since this process last read or wrote it, and takes in
    // what another process changed there: every key value this process did not change since,
    // with value events, and new nodes with theirs. Saves nothing. The number of values and
    // nodes changed. Takes the root mutex in upgrade mode.
    std::size_t reloadChangedFiles();

    // The settings file format's constants: the file name suffix ".settings", the XML
    // declaration line, the namespace, and the namespace and schema attributes of a document
    // element.
    static const std::string settingsExtension;
    static const std::string settingsSchemaInfo;
    static const std::string settingsXMLFileHeader;
    static const std::string settingsXMLNameSpace;

    // Writes the selected nodes, all of one product, with their values at `level`, to the file
    // `path` in the settings file format: the product frame once, each selected node in full.
    // ErrorExportMultipleNodesBelongsToDiffProducts, CannotExportSettingsRoot,
    // CannotExportStandaloneSettings, ErrorExportOrImportSettingsUsingRelativePath (checked in
    // that order), ErrorSaveSettingsDueToFileIOError when the file cannot be opened.
    static void exportSettings(const std::vector<boost::shared_ptr<const Settings>>& nodes,
                               const std::wstring& path, const std::string& level);
    // Writes the whole product of the standalone tree `node` belongs to as a factory file,
    // stamped with `version` (which stays set on the tree's top).
    // ErrorCreateFactoryFileFromATreeNode for a node on the tree.
    static void createFactorySettingsFile(const boost::shared_ptr<const Settings>& node,
                                          const std::wstring& path, unsigned int version);

    // Reads a settings file (and the files it names) into a new standalone tree, as an
    // import. ErrorExportOrImportSettingsUsingRelativePath unless `path` is absolute.
    static boost::shared_ptr<Settings> importAsStandaloneObject(const std::wstring& path);

    // The root of instance `id` (after the context registry's mapping to an effective id), or
    // null when the instance has no settings or was reset. Builds the root on first call.
    static boost::shared_ptr<Settings> getSettingsRoot(const tvutil::contextmgr::InstanceID& id);

private:
    friend struct detail::RootMutexAccess;

    // The one lock of all trees of the process.
    static boost::shared_mutex& getTheRootMutex();
};

}  // namespace core
}  // namespace settings
