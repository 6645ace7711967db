#include <settingscore/core/storage/LevelDirectories.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/storage/PreferencesDirectory.hpp>
#include <settingscore/core/storage/SettingsLevel.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>

#include <platform/hf/filesystem/DirectoryIterator.hpp>
#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/filesystem/Operations.hpp>
#include <platform/hf/filesystem/Path.hpp>
#include <platform/hf/i18n/Conversion.hpp>

#include <set>
#include <stdexcept>

#include <strings.h>

namespace settings {
namespace core {
namespace {

namespace fs = hf::filesystem;

// The product called "swarmtools" ships its factory files in a folder called "gridpool".
const char factoryFolderProduct[] = "swarmtools";
const char factoryFolderName[] = "gridpool";

// A regular file (links followed) whose extension, from the last '.', is exactly ".settings".
bool isSettingsFile(const fs::directory_entry& entry) {
    return fs::is_regular_file(entry.status()) &&
           entry.path().extension().string() == settingsFileExtension;
}

bool isAsciiAlpha(wchar_t c) {
    return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z');
}

bool isAsciiAlnumOrUnderscore(wchar_t c) {
    return isAsciiAlpha(c) || (c >= L'0' && c <= L'9') || c == L'_';
}

// A factory product folder: a name of ASCII letters, digits and "_" that begins with a
// letter, holding at least one settings file.
bool isProductDirectory(const fs::directory_entry& entry) {
    if (!fs::is_directory(entry.status())) {
        return false;
    }
    const std::wstring name = entry.path().filename().wstring();
    if (!isAsciiAlpha(name.at(0))) {  // an empty name is an out of range failure
        return false;
    }
    for (std::size_t i = 1; i < name.size(); ++i) {
        if (!isAsciiAlnumOrUnderscore(name[i])) {
            return false;
        }
    }
    for (const fs::directory_entry& inner : fs::directory_iterator(entry.path())) {
        if (isSettingsFile(inner)) {
            return true;
        }
    }
    return false;
}

// The file or folder name cut at its last '.'; "gridpool" is read back as "swarmtools", at
// every level.
std::string productNameOf(const fs::directory_entry& entry) {
    std::wstring name = entry.path().filename().wstring();
    const std::wstring::size_type dot = name.rfind(L'.');
    if (dot != std::wstring::npos) {
        name.erase(dot);
    }
    const std::string product = hf::i18n::to_string(name);
    return product == factoryFolderName ? factoryFolderProduct : product;
}

struct CaseInsensitiveLess {
    bool operator()(const std::string& a, const std::string& b) const {
        return ::strcasecmp(a.c_str(), b.c_str()) < 0;
    }
};

}  // namespace

std::wstring factoryLevelRootPath() {
    const std::wstring fromEnvironment = hf::i18n::getenv(L"SETTINGS_FACTORYDIR");
    if (!fromEnvironment.empty()) {
        return fromEnvironment;
    }
    return (hf::filesystem::upath(tolvanRootUStr()) / hf::filesystem::upath(L"toolbox")).wstring();
}

std::wstring userLevelRootPath() {
    const std::wstring fromEnvironment = hf::i18n::getenv(L"SETTINGS_USERDIR");
    if (!fromEnvironment.empty()) {
        return fromEnvironment;
    }
    return getPreferencesDirectoryUStr(true);
}

std::wstring workgroupLevelRootPath() {
    return hf::i18n::getenv(L"SETTINGS_WORKGROUPDIR");
}

std::wstring resolveLevelDirectory(const SettingsLevel& level,
                                   const boost::shared_ptr<SettingsImplRoot>& root) {
    // A null root counts as a root whose state is gone: it knows no directory.
    if (!root) {
        return std::wstring();
    }
    if (level.isFactoryLevel()) {
        return root->getFactoryDirectory();
    }
    if (level.isWorkgroupLevel()) {
        return root->getWorkgroupDirectory();
    }
    if (level.isUserLevel()) {
        return root->getUserDirectory();
    }
    return std::wstring();
}

std::vector<std::wstring> productSettingsFilesAtLevel(
    const std::string& productName, const SettingsLevel& level,
    const boost::shared_ptr<SettingsImplRoot>& root) {
    const std::wstring dir = resolveLevelDirectory(level, root);
    std::vector<std::wstring> files;
    // Without a directory there is nothing to list, at the factory level too: joining the
    // product to an empty directory would list a folder relative to the working directory.
    if (dir.empty()) {
        return files;
    }
    if (level.isFactoryLevel()) {
        const std::string folder =
            productName == factoryFolderProduct ? factoryFolderName : productName;
        try {
            for (const fs::directory_entry& entry :
                 fs::directory_iterator(fs::upath(dir) / fs::upath(folder))) {
                if (isSettingsFile(entry)) {
                    files.push_back(entry.path().wstring());
                }
            }
        } catch (const fs::FsysExceptionBase&) {
            // A product without a folder, or one that cannot be read: what was found so far.
        }
        return files;
    }
    const fs::upath candidate = fs::upath(dir) / fs::upath(productName + settingsFileExtension);
    if (fs::exists(candidate)) {
        files.push_back(candidate.wstring());
    }
    return files;
}

std::vector<std::string> productNamesAtLevel(const SettingsLevel& level,
                                             const boost::shared_ptr<SettingsImplRoot>& root) {
    const std::wstring dir = resolveLevelDirectory(level, root);
    std::vector<std::string> names;
    try {
        for (const fs::directory_entry& entry : fs::directory_iterator(dir)) {
            const bool isProduct =
                level.isFactoryLevel() ? isProductDirectory(entry) : isSettingsFile(entry);
            if (isProduct) {
                names.push_back(productNameOf(entry));
            }
        }
    } catch (...) {
        // Whatever stops the walk, the products found so far stand.
    }
    return names;
}

std::vector<std::string> collectProductNames(const boost::shared_ptr<SettingsImplRoot>& root) {
    const boost::array<const SettingsLevel, 3>& levels =
        SettingsLevelManager::getSettingsLevelObjs();
    // Names equal but for case are one product; the first found, from the last level of the
    // table on, keeps its spelling.
    std::set<std::string, CaseInsensitiveLess> names;
    for (auto level = levels.rbegin(); level != levels.rend(); ++level) {
        if (!level->canHaveFile()) {
            continue;
        }
        for (const std::string& name : productNamesAtLevel(*level, root)) {
            // A user file called just ".settings" names no product: no path could reach it.
            if (!name.empty()) {
                names.insert(name);
            }
        }
    }
    return std::vector<std::string>(names.begin(), names.end());
}

}  // namespace core
}  // namespace settings
