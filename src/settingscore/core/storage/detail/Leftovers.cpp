#include <settingscore/core/storage/detail/Leftovers.hpp>

#include <platform/hf/filesystem/FilesystemError.hpp>

#include <cctype>

namespace settings {
namespace core {
namespace detail {

namespace {

namespace fs = hf::filesystem;

const std::string previousSuffix = ".previous";

std::int64_t nowNs() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

void sweepOne(fs::FileSystem& files, const fs::upath& folder, const fs::upath& leftover) {
    for (const fs::FolderEntry& entry : files.listFolder(leftover)) {
        const std::string& name = entry.name;
        if (name.size() > previousSuffix.size() &&
            name.compare(name.size() - previousSuffix.size(), previousSuffix.size(),
                         previousSuffix) == 0) {
            const fs::upath target =
                folder / fs::upath(name.substr(0, name.size() - previousSuffix.size()));
            if (!files.examine(target).exists()) {
                files.rename(leftover / fs::upath(name), target);
            }
        }
    }
    fs::removeTree(files, leftover);
}

}  // namespace

bool isTemporaryFolderName(const std::string& name) {
    if (name.size() != 36 || name.compare(0, 4, "temp") != 0) {
        return false;
    }
    for (std::size_t i = 4; i < name.size(); ++i) {
        if (!std::isxdigit(static_cast<unsigned char>(name[i]))) {
            return false;
        }
    }
    return true;
}

void sweepLeftovers(fs::FileSystem& files, const fs::upath& folder) {
    std::vector<fs::FolderEntry> entries;
    try {
        entries = files.listFolder(folder);
    } catch (const fs::FsysExceptionBase&) {
        return;
    }
    const std::int64_t oldest =
        nowNs() - std::chrono::duration_cast<std::chrono::nanoseconds>(leftoverAge).count();
    for (const fs::FolderEntry& entry : entries) {
        if (entry.type != fs::file_type::directory || !isTemporaryFolderName(entry.name)) {
            continue;
        }
        const fs::upath leftover = folder / fs::upath(entry.name);
        try {
            const fs::FileInfo info = files.examine(leftover);
            if (info.exists() && info.modifiedNs < oldest) {
                sweepOne(files, folder, leftover);
            }
        } catch (const fs::FsysExceptionBase&) {
            // Another save sweeping the same folder, or one that cannot be removed: the next
            // save tries again.
        }
    }
}

}  // namespace detail
}  // namespace core
}  // namespace settings
