#include <settingscore/core/storage/LevelDirectories.hpp>

#include <settingscore/core/SettingsImplRoot.hpp>
#include <settingscore/core/storage/PreferencesDirectory.hpp>
#include <settingscore/core/storage/SettingsLevel.hpp>
#include <settingscore/core/storage/SettingsLevelManager.hpp>

#include <settingscore/core/storage/detail/LevelFiles.hpp>

#include <platform/hf/filesystem/FileSystem.hpp>
#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/filesystem/Operations.hpp>
#include <platform/hf/filesystem/Path.hpp>
#include <platform/hf/i18n/Conversion.hpp>

#include <filesystem>
#include <map>
#include <mutex>
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
bool isSettingsFile(const fs::FolderEntry& entry) {
    return entry.type == fs::file_type::regular &&
           fs::upath(entry.name).extension().string() == settingsFileExtension;
}

bool isAsciiAlpha(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isAsciiAlnumOrUnderscore(char c) {
    return isAsciiAlpha(c) || (c >= '0' && c <= '9') || c == '_';
}

// A factory product folder: a name of ASCII letters, digits and "_" that begins with a
// letter, holding at least one settings file.
bool isProductDirectory(fs::FileSystem& files, const fs::upath& dir, const fs::FolderEntry& entry) {
    if (entry.type != fs::file_type::directory) {
        return false;
    }
    const std::string& name = entry.name;
    if (!isAsciiAlpha(name.at(0))) {  // an empty name is an out of range failure
        return false;
    }
    for (std::size_t i = 1; i < name.size(); ++i) {
        if (!isAsciiAlnumOrUnderscore(name[i])) {
            return false;
        }
    }
    for (const fs::FolderEntry& inner : files.listFolder(dir / fs::upath(name))) {
        if (isSettingsFile(inner)) {
            return true;
        }
    }
    return false;
}

// The file or folder name cut at its last '.'; "gridpool" is read back as "swarmtools", at
// every level.
std::string productNameOf(const fs::FolderEntry& entry) {
    std::string product = entry.name;
    const std::string::size_type dot = product.rfind('.');
    if (dot != std::string::npos) {
        product.erase(dot);
    }
    return product == factoryFolderName ? factoryFolderProduct : product;
}

struct CaseInsensitiveLess {
    bool operator()(const std::string& a, const std::string& b) const {
        return ::strcasecmp(a.c_str(), b.c_str()) < 0;
    }
};

// A folder named by an environment variable, made absolute against the working directory of
// the first time that text was read: a later change of the working directory must not move the
// files, nor make the reader and the saver disagree on where they are.
std::wstring absoluteOnce(const std::wstring& folder) {
    if (folder.empty() || fs::is_absolute(fs::upath(folder))) {
        return folder;
    }
    static std::mutex mutex;
    static std::map<std::wstring, std::wstring> made;
    std::lock_guard<std::mutex> guard(mutex);
    auto found = made.find(folder);
    if (found == made.end()) {
        std::error_code failed;
        const std::filesystem::path here = std::filesystem::current_path(failed);
        found =
            made.emplace(folder, failed ? folder : (fs::upath(here) / fs::upath(folder)).wstring())
                .first;
    }
    return found->second;
}

}  // namespace

std::wstring factoryLevelRootPath() {
    const std::wstring fromEnvironment = hf::i18n::getenv(L"SETTINGS_FACTORYDIR");
    if (!fromEnvironment.empty()) {
        return absoluteOnce(fromEnvironment);
    }
    return (hf::filesystem::upath(tolvanRootUStr()) / hf::filesystem::upath(L"toolbox")).wstring();
}

std::wstring userLevelRootPath() {
    const std::wstring fromEnvironment = hf::i18n::getenv(L"SETTINGS_USERDIR");
    if (!fromEnvironment.empty()) {
        return absoluteOnce(fromEnvironment);
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
    fs::FileSystem& files = fs::FileSystem::current();
    std::vector<std::wstring> found;
    if (level.isFactoryLevel()) {
        const std::string folderName =
            productName == factoryFolderProduct ? factoryFolderName : productName;
        const fs::upath folder = fs::upath(dir) / fs::upath(folderName);
        try {
            for (const fs::FolderEntry& entry : files.listFolder(folder)) {
                if (isSettingsFile(entry)) {
                    found.push_back((folder / fs::upath(entry.name)).wstring());
                }
            }
        } catch (const fs::FsysExceptionBase&) {
            // A product without a folder, or one that cannot be read: what was found so far.
        }
        return found;
    }
    if (dir.empty()) {
        return found;
    }
    // The user's file follows the rule products are told apart by: case does not count.
    if (const auto name = detail::findProductFile(files, fs::upath(dir), productName)) {
        found.push_back((fs::upath(dir) / fs::upath(*name)).wstring());
    }
    return found;
}

std::vector<std::string> productNamesAtLevel(const SettingsLevel& level,
                                             const boost::shared_ptr<SettingsImplRoot>& root) {
    const std::wstring dir = resolveLevelDirectory(level, root);
    fs::FileSystem& files = fs::FileSystem::current();
    std::vector<std::string> names;
    try {
        for (const fs::FolderEntry& entry : files.listFolder(fs::upath(dir))) {
            const bool isProduct = level.isFactoryLevel()
                                       ? isProductDirectory(files, fs::upath(dir), entry)
                                       : isSettingsFile(entry);
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
