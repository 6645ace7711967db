#include <support/PowerCutFileSystem.hpp>

#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/filesystem/detail/ErrorMapping.hpp>

#include <chrono>
#include <functional>
#include <vector>

namespace testsupport {

namespace fs = hf::filesystem;

struct PowerCutFileSystem::Node {
    bool folder = false;
    std::uint64_t inode = 0;
    std::int64_t modified = 0;
    std::string data;        // a file's
    bool dataSynced = true;  // no write since the last sync
    std::map<std::string, std::shared_ptr<Node>> entries, syncedEntries;  // a folder's
};

namespace {

using NodePtr = std::shared_ptr<PowerCutFileSystem::Node>;

[[noreturn]] void fail(const char* operation, const fs::upath& path, std::errc error) {
    fs::detail::throwFilesystemError(operation, path, std::make_error_code(error));
}

// The names of `path` from the root down; "/a//b/" gives "a", "b".
std::vector<std::string> namesOf(const fs::upath& path) {
    std::vector<std::string> names;
    for (const auto& part : path.native_path()) {
        const std::string name = part.string();
        if (!name.empty() && name != "/" && name != ".") {
            names.push_back(name);
        }
    }
    return names;
}

NodePtr deepCopy(const NodePtr& node, std::map<const PowerCutFileSystem::Node*, NodePtr>& made) {
    if (!node) {
        return node;
    }
    const auto found = made.find(node.get());
    if (found != made.end()) {
        return found->second;
    }
    auto copy = std::make_shared<PowerCutFileSystem::Node>(*node);
    made[node.get()] = copy;
    for (auto* entries : {&copy->entries, &copy->syncedEntries}) {
        for (auto& entry : *entries) {
            entry.second = deepCopy(entry.second, made);
        }
    }
    return copy;
}

}  // namespace

PowerCutFileSystem::PowerCutFileSystem() : root_(std::make_shared<Node>()) {
    root_->folder = true;
    root_->inode = 1;
}

PowerCutFileSystem::~PowerCutFileSystem() = default;

int PowerCutFileSystem::calls() const {
    std::lock_guard<std::mutex> guard(mutex_);
    return calls_;
}

void PowerCutFileSystem::cutAfter(int k) {
    std::lock_guard<std::mutex> guard(mutex_);
    cutAt_ = calls_ + k;
}

void PowerCutFileSystem::restart(UnsyncedData data, bool renamesKept) {
    std::lock_guard<std::mutex> guard(mutex_);
    cutAt_ = -1;
    std::function<void(Node&)> survive = [&](Node& node) {
        if (!node.folder) {
            if (!node.dataSynced) {
                node.data = data == UnsyncedData::lost ? std::string()
                            : data == UnsyncedData::halved
                                ? node.data.substr(0, node.data.size() / 2)
                                : node.data;
                node.dataSynced = true;
            }
            return;
        }
        if (!renamesKept) {
            node.entries = node.syncedEntries;
        }
        node.syncedEntries = node.entries;
        for (auto& entry : node.entries) {
            survive(*entry.second);
        }
    };
    survive(*root_);
}

PowerCutFileSystem::Image PowerCutFileSystem::snapshot() const {
    std::lock_guard<std::mutex> guard(mutex_);
    std::map<const Node*, NodePtr> made;
    return deepCopy(root_, made);
}

void PowerCutFileSystem::restore(const Image& image) {
    std::map<const Node*, NodePtr> made;
    NodePtr copy = deepCopy(image, made);
    std::lock_guard<std::mutex> guard(mutex_);
    root_ = copy;
    cutAt_ = -1;
}

void PowerCutFileSystem::enter(const char* operation, const fs::upath& path) {
    ++calls_;
    ++clock_;
    if (cutAt_ >= 0 && calls_ > cutAt_) {
        fail(operation, path, std::errc::io_error);
    }
}

NodePtr PowerCutFileSystem::find(const fs::upath& path, NodePtr* parent) {
    NodePtr node = root_;
    NodePtr above;
    for (const std::string& name : namesOf(path)) {
        if (!node || !node->folder) {
            node = nullptr;
            break;
        }
        above = node;
        const auto found = node->entries.find(name);
        node = found == node->entries.end() ? nullptr : found->second;
    }
    if (parent) {
        *parent = above;
    }
    return node;
}

fs::FileInfo PowerCutFileSystem::infoOf(const Node& node) const {
    fs::FileInfo info;
    info.type = node.folder ? fs::file_type::directory : fs::file_type::regular;
    info.device = 1;
    info.inode = node.inode;
    info.size = node.data.size();
    // Real time for the sweep of old temporary folders, the clock for every change to differ.
    info.modifiedNs = node.modified;
    return info;
}

void PowerCutFileSystem::makeFolder(const fs::upath& folder) {
    std::lock_guard<std::mutex> guard(mutex_);
    enter("make folder", folder);
    NodePtr parent;
    if (find(folder, &parent)) {
        fail("make folder", folder, std::errc::file_exists);
    }
    if (!parent || !parent->folder || namesOf(folder).empty()) {
        fail("make folder", folder, std::errc::no_such_file_or_directory);
    }
    auto made = std::make_shared<Node>();
    made->folder = true;
    made->inode = nextInode_++;
    made->modified = std::chrono::system_clock::now().time_since_epoch().count() + clock_;
    parent->entries[namesOf(folder).back()] = made;
}

std::vector<fs::FolderEntry> PowerCutFileSystem::listFolder(const fs::upath& folder) {
    std::lock_guard<std::mutex> guard(mutex_);
    enter("list folder", folder);
    const NodePtr node = find(folder, nullptr);
    if (!node || !node->folder) {
        fail("list folder", folder,
             node ? std::errc::not_a_directory : std::errc::no_such_file_or_directory);
    }
    std::vector<fs::FolderEntry> entries;
    for (const auto& entry : node->entries) {
        entries.push_back({entry.first, entry.second->folder ? fs::file_type::directory
                                                             : fs::file_type::regular});
    }
    return entries;
}

fs::FileInfo PowerCutFileSystem::examine(const fs::upath& path) {
    std::lock_guard<std::mutex> guard(mutex_);
    enter("examine", path);
    const NodePtr node = find(path, nullptr);
    return node ? infoOf(*node) : fs::FileInfo();
}

std::string PowerCutFileSystem::readFile(const fs::upath& file, fs::FileInfo* info,
                                         std::uint64_t limit) {
    std::lock_guard<std::mutex> guard(mutex_);
    enter("read", file);
    const NodePtr node = find(file, nullptr);
    if (!node || node->folder) {
        fail("read", file, node ? std::errc::is_a_directory : std::errc::no_such_file_or_directory);
    }
    if (node->data.size() > limit) {
        fail("read", file, std::errc::file_too_large);
    }
    if (info) {
        *info = infoOf(*node);
    }
    return node->data;
}

fs::FileInfo PowerCutFileSystem::writeFile(const fs::upath& file, const std::string& data,
                                           bool sync) {
    std::lock_guard<std::mutex> guard(mutex_);
    enter("write", file);
    NodePtr parent;
    NodePtr node = find(file, &parent);
    if (!parent || !parent->folder || (node && node->folder)) {
        fail("write", file,
             node ? std::errc::is_a_directory : std::errc::no_such_file_or_directory);
    }
    if (!node) {
        node = std::make_shared<Node>();
        node->inode = nextInode_++;
        node->dataSynced = false;  // a new file's (empty) data is not on the disk either
        parent->entries[namesOf(file).back()] = node;
    }
    node->data = data;
    node->modified = std::chrono::system_clock::now().time_since_epoch().count() + clock_;
    node->dataSynced = sync;
    return infoOf(*node);
}

void PowerCutFileSystem::rename(const fs::upath& from, const fs::upath& to) {
    std::lock_guard<std::mutex> guard(mutex_);
    enter("rename", from);
    NodePtr fromParent, toParent;
    const NodePtr node = find(from, &fromParent);
    find(to, &toParent);
    if (!node || !toParent || !toParent->folder) {
        fail("rename", from, std::errc::no_such_file_or_directory);
    }
    fromParent->entries.erase(namesOf(from).back());
    toParent->entries[namesOf(to).back()] = node;
}

bool PowerCutFileSystem::remove(const fs::upath& path) {
    std::lock_guard<std::mutex> guard(mutex_);
    enter("remove", path);
    NodePtr parent;
    const NodePtr node = find(path, &parent);
    if (!node) {
        return false;
    }
    if (node->folder && !node->entries.empty()) {
        fail("remove", path, std::errc::directory_not_empty);
    }
    parent->entries.erase(namesOf(path).back());
    return true;
}

void PowerCutFileSystem::syncFolder(const fs::upath& folder) {
    std::lock_guard<std::mutex> guard(mutex_);
    enter("sync folder", folder);
    const NodePtr node = find(folder, nullptr);
    if (!node || !node->folder) {
        fail("sync folder", folder, std::errc::no_such_file_or_directory);
    }
    node->syncedEntries = node->entries;
}

std::error_code PowerCutFileSystem::checkWritable(const fs::upath& file) {
    std::lock_guard<std::mutex> guard(mutex_);
    enter("check writable", file);
    const NodePtr node = find(file, nullptr);
    return node && node->folder ? std::make_error_code(std::errc::is_a_directory)
                                : std::error_code();
}

std::unique_ptr<fs::FileLock> PowerCutFileSystem::lockFile(const fs::upath& lockFile,
                                                           std::chrono::milliseconds) {
    {
        std::lock_guard<std::mutex> guard(mutex_);
        enter("lock", lockFile);
    }
    struct NoLock : fs::FileLock {};
    return std::make_unique<NoLock>();
}

}  // namespace testsupport
