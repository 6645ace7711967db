// Where each level keeps its files: the root directory of the factory, user and workgroup
// levels, a level's directory for one root, the settings files of a product at a level, and
// the products that have files at a level or at any level. Internal to the library.
#pragma once

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

namespace settings {
namespace core {

class SettingsImplRoot;
class SettingsLevel;

// SETTINGS_FACTORYDIR when set and not empty, else "toolbox" below the installation root.
std::wstring factoryLevelRootPath();

// SETTINGS_USERDIR when set and not empty, else the preference directory, which this may
// create and fill from the previous release.
std::wstring userLevelRootPath();

// SETTINGS_WORKGROUPDIR, empty when unset; there is no fallback.
std::wstring workgroupLevelRootPath();

// The directory `root` uses for `level`; empty for a level without files and for a root
// without state (a null root included).
std::wstring resolveLevelDirectory(const SettingsLevel& level,
                                   const boost::shared_ptr<SettingsImplRoot>& root);

// The settings files of product `productName` at `level`: every "*.settings" file of the
// product's folder at the factory level ("swarmtools" ships in "gridpool"), in directory
// order; at any other level the one file "<dir>/<product>.settings" if it exists.
std::vector<std::wstring> productSettingsFilesAtLevel(
    const std::string& productName, const SettingsLevel& level,
    const boost::shared_ptr<SettingsImplRoot>& root);

// The products with files at `level`, in directory order; a failing walk yields what it found
// so far.
std::vector<std::string> productNamesAtLevel(const SettingsLevel& level,
                                             const boost::shared_ptr<SettingsImplRoot>& root);

// The products of every level that can have files, walked from the last level of the table
// to the first, each once: names that differ only in case count as one and the first found
// stays. Ordered case-insensitively.
std::vector<std::string> collectProductNames(const boost::shared_ptr<SettingsImplRoot>& root);

}  // namespace core
}  // namespace settings
