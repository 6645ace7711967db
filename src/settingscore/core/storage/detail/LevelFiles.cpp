#include <settingscore/core/storage/detail/LevelFiles.hpp>

#include <settingscore/core/Settings.hpp>
#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/exception/Exceptions.hpp>
#include <settingscore/core/xml/SettingsFileParser.hpp>
#include <settingscore/core/xml/SettingsFileReading.hpp>

#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/i18n/Conversion.hpp>
#include <platform/hf/i18n/MessageCatalog.hpp>

#include <algorithm>
#include <cctype>
#include <ctime>

#include <strings.h>

namespace settings {
namespace core {
namespace detail {

namespace {

namespace fs = hf::filesystem;

const char unreadableMark[] = ".unreadable-";
// Copies of one file beyond this many, oldest first, are removed when a new one is made.
constexpr std::size_t keptCopiesLimit = 10;

// "20261124T093015Z": sorts as the time does.
std::string utcStamp() {
    const std::time_t now = std::time(nullptr);
    std::tm utc{};
    ::gmtime_r(&now, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &utc);
    return text;
}

}  // namespace

std::string defaultFileNameOf(const std::string& product) {
    return product + Settings::settingsExtension;
}

std::string lockFileNameOf(const std::string& product) {
    std::string lower = product;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return "." + lower + Settings::settingsExtension + ".lock";
}

boost::optional<std::string> findProductFile(fs::FileSystem& files, const fs::upath& folder,
                                             const std::string& product) {
    const std::string exact = defaultFileNameOf(product);
    try {
        if (files.examine(folder / fs::upath(exact)).type == fs::file_type::regular) {
            return exact;
        }
        // Only when the exact spelling is missing: the folder is listed once per product load.
        for (const fs::FolderEntry& entry : files.listFolder(folder)) {
            if (entry.type == fs::file_type::regular &&
                ::strcasecmp(entry.name.c_str(), exact.c_str()) == 0) {
                return entry.name;
            }
        }
    } catch (const fs::FsysExceptionBase&) {
    }
    return boost::none;
}

std::wstring failureTextInFlight() {
    try {
        throw;
    } catch (const exception::ErrorReadingSettingsData& e) {
        return e.getDetailErrorMsg();
    } catch (const hf::except::IMsgIDException& e) {
        return hf::i18n::MessageCatalog::get_message(e.get_message_id(),
                                                     hf::i18n::HfLocale::global());
    } catch (const std::exception& e) {
        return hf::i18n::to_ustring(e.what());
    }
}

LevelFileRead readLevelFile(fs::FileSystem& files, const fs::upath& folder,
                            const std::string& fileName, bool durable) {
    LevelFileRead read;
    const fs::upath file = folder / fs::upath(fileName);
    std::string& content = read.content;
    try {
        content = files.readFile(file, &read.version, SettingsFileParser::maxFileSize);
    } catch (const fs::FsysExceptionBase& e) {
        if (e.code() == std::errc::no_such_file_or_directory) {
            return read;  // no file: nothing to read, nothing to keep
        }
        read.version = files.examine(file);
        read.failure = hf::i18n::to_ustring(e.what());
        return read;
    }
    try {
        read.tree = readSettingsContent(file.wstring(), content);
        if (read.tree) {
            return read;
        }
        read.failure = L"The file holds no settings";
    } catch (...) {
        read.failure = failureTextInFlight();
    }
    try {
        read.keptCopy = keepUnreadableCopy(files, folder, fileName, content, durable).wstring();
    } catch (const std::exception& e) {
        read.keepFailure = hf::i18n::to_ustring(e.what());
    }
    return read;
}

std::vector<fs::upath> keptCopiesOf(fs::FileSystem& files, const fs::upath& folder,
                                    const std::string& fileName) {
    const std::string prefix = fileName + unreadableMark;
    std::vector<std::string> names;
    try {
        for (const fs::FolderEntry& entry : files.listFolder(folder)) {
            if (entry.type == fs::file_type::regular && entry.name.size() > prefix.size() &&
                entry.name.compare(0, prefix.size(), prefix) == 0) {
                names.push_back(entry.name);
            }
        }
    } catch (const fs::FsysExceptionBase&) {
    }
    // The stamps sort as the times do; a second copy within one second has a suffix and sorts
    // after the first.
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    std::vector<fs::upath> copies;
    for (const std::string& name : names) {
        copies.push_back(folder / fs::upath(name));
    }
    return copies;
}

fs::upath keepUnreadableCopy(fs::FileSystem& files, const fs::upath& folder,
                             const std::string& fileName, const std::string& content,
                             bool durable) {
    std::vector<fs::upath> copies = keptCopiesOf(files, folder, fileName);
    if (!copies.empty()) {
        // A file read again unchanged (every start, until something replaces it) is kept once.
        try {
            if (files.readFile(copies.back(), nullptr) == content) {
                return copies.back();
            }
        } catch (const fs::FsysExceptionBase&) {
        }
    }
    const std::string stamp = fileName + unreadableMark + utcStamp();
    fs::upath copy = folder / fs::upath(stamp);
    for (int n = 2; files.examine(copy).exists(); ++n) {
        copy = folder / fs::upath(stamp + "-" + std::to_string(n));
    }
    files.writeFile(copy, content, durable);
    if (durable) {
        files.syncFolder(folder);
    }
    copies.push_back(copy);
    for (std::size_t i = 0; i + keptCopiesLimit < copies.size(); ++i) {
        try {
            files.remove(copies[i]);
        } catch (const fs::FsysExceptionBase&) {
        }
    }
    return copy;
}

}  // namespace detail
}  // namespace core
}  // namespace settings
