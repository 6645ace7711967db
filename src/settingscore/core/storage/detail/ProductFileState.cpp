#include <settingscore/core/storage/detail/ProductFileState.hpp>

namespace settings {
namespace core {
namespace detail {

bool isAtOrBelow(const std::string& inner, const std::string& outer) {
    return inner.size() >= outer.size() && inner.compare(0, outer.size(), outer) == 0 &&
           (inner.size() == outer.size() || inner[outer.size()] == '.');
}

bool isChangedPath(const std::set<std::string>& changed, const std::string& path) {
    if (changed.empty()) {
        return false;
    }
    // Each prefix of `path` that ends at a dot, and the path itself.
    for (std::string::size_type dot = path.find('.'); dot != std::string::npos;
         dot = path.find('.', dot + 1)) {
        if (changed.count(path.substr(0, dot)) != 0) {
            return true;
        }
    }
    return changed.count(path) != 0;
}

void ProductFileState::markChanged(const std::string& level, const std::string& path) {
    std::lock_guard<std::mutex> guard(mutex_);
    LevelFile& file = levels_[level];
    file.changed.insert(path);
    for (auto entry = file.heldBack.begin(); entry != file.heldBack.end();) {
        if (isAtOrBelow(entry->first, path) || isAtOrBelow(path, entry->first)) {
            entry = file.heldBack.erase(entry);
        } else {
            ++entry;
        }
    }
}

std::vector<std::pair<std::string, LevelFile>> ProductFileState::snapshot() const {
    std::lock_guard<std::mutex> guard(mutex_);
    return {levels_.begin(), levels_.end()};
}

}  // namespace detail
}  // namespace core
}  // namespace settings
