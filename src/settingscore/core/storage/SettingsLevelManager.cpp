#include <settingscore/core/storage/SettingsLevelManager.hpp>

#include <settingscore/core/storage/LevelDirectories.hpp>

#include <boost/shared_ptr.hpp>

#include <limits>

namespace settings {
namespace core {

const std::string settingsFileExtension = ".settings";

const boost::array<const SettingsLevel, 3>& SettingsLevelManager::getSettingsLevelObjs() {
    // The table lives in this function-local static rather than in the static member itself:
    // a level holds strings and a function object, so the table cannot be constant-
    // initialised, and the roots, loaders and savers of other translation units may ask for
    // it from their own static initialisers before this unit's dynamic initialisation has
    // run. Built on first use, destroyed at unload after everything initialised later.
    static const boost::array<const SettingsLevel, 3> table = {{
        SettingsLevel("session", boost::function<std::wstring()>(), true, 0, false, false, false),
        SettingsLevel("user", &userLevelRootPath, true, 1, false, false, true),
        SettingsLevel("factory", &factoryLevelRootPath, false,
                      std::numeric_limits<std::uint32_t>::max(), true, false, false),
    }};
    return table;
}

// Binding the member here also builds the table during this library's static
// initialisation, at the latest.
const boost::array<const SettingsLevel, 3>& SettingsLevelManager::settingsLevels_ =
    SettingsLevelManager::getSettingsLevelObjs();

// Constant-initialised (empty), so it is usable from any static initialiser.
boost::shared_ptr<SettingsLevelManager> SettingsLevelManager::settingsLevelManagerPtr_;

boost::shared_ptr<const SettingsLevelManager>
SettingsLevelManager::getSettingsLevelManagerInstance() {
    // Unguarded by design: two first calls may each build a manager and the last store wins.
    // The manager has no state, so either is as good; the atomic load and store only keep
    // the shared pointer itself from being torn by that race.
    boost::shared_ptr<SettingsLevelManager> instance =
        boost::atomic_load(&settingsLevelManagerPtr_);
    if (!instance) {
        instance.reset(new SettingsLevelManager());
        boost::atomic_store(&settingsLevelManagerPtr_, instance);
    }
    return instance;
}

std::string SettingsLevelManager::getLastLevelName() {
    const boost::array<const SettingsLevel, 3>& levels = getSettingsLevelObjs();
    return levels.back().levelName();
}

std::vector<std::string> SettingsLevelManager::getAllLevelNames() const {
    std::vector<std::string> names;
    for (const SettingsLevel& level : getSettingsLevelObjs()) {
        names.push_back(level.levelName());
    }
    return names;
}

const SettingsLevel* SettingsLevelManager::getSettingsLevelByName(const std::string& name) const {
    for (const SettingsLevel& level : getSettingsLevelObjs()) {
        if (level.levelName() == name) {
            return &level;
        }
    }
    return nullptr;
}

bool SettingsLevelManager::isValidLevel(const std::string& name) const {
    return getSettingsLevelByName(name) != nullptr;
}

bool SettingsLevelManager::isWritableLevel(const std::string& name) const {
    const SettingsLevel* level = getSettingsLevelByName(name);
    return level != nullptr && level->canHaveFile();
}

}  // namespace core
}  // namespace settings
