// settings::core::SettingsLevelManager: the fixed table of levels ("session", "user",
// "factory", in that order) and look-ups in it by name; settingsFileExtension, the suffix of
// every settings file.
#pragma once

#include <settingscore/core/storage/SettingsLevel.hpp>

#include <boost/array.hpp>
#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

namespace settings {
namespace core {

// ".settings".
extern const std::string settingsFileExtension;

class SettingsLevelManager {
public:
    // The singleton, made by the first call.
    static boost::shared_ptr<const SettingsLevelManager> getSettingsLevelManagerInstance();

    // The table itself, built before the first caller sees it, also when that caller is
    // another library's static initialiser.
    static const boost::array<const SettingsLevel, 3>& getSettingsLevelObjs();

    // The name of the table's last entry, "factory".
    static std::string getLastLevelName();

    // The names in table order.
    std::vector<std::string> getAllLevelNames() const;

    // The level called exactly `name` (case counts), or null.
    const SettingsLevel* getSettingsLevelByName(const std::string& name) const;

    bool isValidLevel(const std::string& name) const;

    // False for an unknown name, else whether the level has files. True for "factory" too,
    // whose values still cannot be changed: canBeModified says that.
    bool isWritableLevel(const std::string& name) const;

private:
    SettingsLevelManager() = default;

    // Another name for the table that getSettingsLevelObjs builds; see the definition.
    static const boost::array<const SettingsLevel, 3>& settingsLevels_;
    static boost::shared_ptr<SettingsLevelManager> settingsLevelManagerPtr_;
};

}  // namespace core
}  // namespace settings
