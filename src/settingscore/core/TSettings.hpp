// settings::core::TSettings: the node interface of the host. Beyond what every client sees it
// restructures the tree (attach, remove), sets validators and records events; its static
// members create standalone nodes, reach and reset the root of an instance, point an instance
// at its directories and drain the events a root recorded.
#pragma once

#include <settingscore/core/Settings.hpp>
#include <settingscore/core/SettingsProperties.hpp>

#include <boost/optional.hpp>

#include <queue>
#include <string>

namespace settings {
namespace core {

class TSettings : public Settings {
public:
    // On the root: turns recording of events into the root's queue on or off. Elsewhere it has
    // no effect.
    virtual void setRecordEvents(bool record) = 0;
    // Detaches child group `name` (NoSuchNode, NotANodeName) or child key `name` (NoSuchKey,
    // NotAKeyName), and saves or deletes the files concerned.
    virtual void removeNode(const std::string& name) = 0;
    virtual void removeKey(const std::string& name) = 0;
    // Attaches this standalone node under `parent` and saves the levels concerned.
    virtual void setParent(const boost::shared_ptr<Settings>& parent) = 0;
    virtual void setValidator(ValidatorVariant validator) = 0;
    // True when the parent is the root.
    virtual bool isProductNode() const = 0;

    // --- Entry points of the host ---

    // A new standalone group or key: visible unless `hidden`, read-only state 1 or 0, a copy of
    // the validator. The name is not checked: validateSettingOrGroupName is the host's to call.
    static boost::shared_ptr<TSettings> createSetting(const std::string& name, bool isKey,
                                                      SettingsProperties& properties);
    static boost::shared_ptr<TSettings> createSettingsNode(const std::string& name, bool isKey,
                                                           bool visible,
                                                           const ValidatorVariant& validator,
                                                           bool readOnly);
    static boost::shared_ptr<TSettings> getTSettingsRoot(const tvutil::contextmgr::InstanceID& id);
    // Resets the blessed instance, whatever `id` is, and hands back its old root (null when it
    // had none). AnyInstanceID also replaces every instance's state by one fresh blessed state.
    static boost::shared_ptr<TSettings> reset(const tvutil::contextmgr::InstanceID& id);
    // Gives instance `id` a settings state; false when it had one.
    static bool createEmptySettingsFor(const tvutil::contextmgr::InstanceID& id);
    // Exchanges `queue`'s content with the events the instance's root recorded. No root: the
    // queue stays as it is.
    static void eventQueue(std::queue<boost::shared_ptr<const SettingsEvent>>& queue,
                           const tvutil::contextmgr::InstanceID& id);
    // The instance's directories, each resolved once per instance. getFactoryDir answers empty
    // for an id below BlessedInstanceID; getUserDir throws SettingsUserDirectoryNotExist when
    // the user directory cannot be had.
    static std::wstring getFactoryDir(const tvutil::contextmgr::InstanceID& id);
    static std::wstring getUserDir(const tvutil::contextmgr::InstanceID& id);
    static std::wstring getWorkgroupDir(const tvutil::contextmgr::InstanceID& id);
    // States all three overrides of an instance at once: a present value replaces, an absent
    // one clears (the directory is then resolved anew on its next use). Nothing is reloaded.
    static void setSettingsFileLocation(const tvutil::contextmgr::InstanceID& id,
                                        const boost::optional<std::wstring>& factoryDir,
                                        const boost::optional<std::wstring>& workgroupDir,
                                        const boost::optional<std::wstring>& userDir);
    // InvalidSettingOrGroupName unless `name` is a valid variable name of the host's language.
    static void validateSettingOrGroupName(const std::string& name);

protected:
    TSettings();
};

}  // namespace core
}  // namespace settings
