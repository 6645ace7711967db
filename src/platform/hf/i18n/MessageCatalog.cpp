#include <platform/hf/i18n/MessageCatalog.hpp>

#include <platform/hf/filesystem/InstallPath.hpp>
#include <platform/hf/i18n/detail/CatalogFile.hpp>
#include <platform/hf/i18n/detail/MessageText.hpp>

#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace hf {
namespace i18n {
namespace {

// Catalogues read so far, by installation root and name, with null for one that could not
// be read: each file is parsed once per process. The root is part of the key because it can
// be overridden while the process runs.
class CatalogCache {
public:
    std::shared_ptr<const detail::CatalogEntries> find(const std::string& catalogName) {
        const hf::filesystem::upath root = hf::filesystem::get_install_path();
        std::lock_guard<std::mutex> lock(mutex_);
        auto key = std::make_pair(root.string(), catalogName);
        const auto found = catalogs_.find(key);
        if (found != catalogs_.end()) {
            return found->second;
        }
        // Read under the lock so that concurrent first lookups parse the file only once.
        auto entries =
            detail::readCatalogFile(detail::catalogFilePath(root, catalogName), catalogName);
        catalogs_.emplace(std::move(key), entries);
        return entries;
    }

private:
    std::mutex mutex_;
    std::map<std::pair<std::string, std::string>, std::shared_ptr<const detail::CatalogEntries>>
        catalogs_;
};

CatalogCache& catalogCache() {
    static CatalogCache cache;
    return cache;
}

}  // namespace

HfLocale::HfLocale(std::string name) : name_(std::move(name)) {}

const HfLocale& HfLocale::global() {
    static const HfLocale locale("en_US");
    return locale;
}

// One language is shipped, so the locale does not choose among files.
std::wstring MessageCatalog::get_message(const hf::resource::BaseMsgID& id, const HfLocale&) {
    const auto entries = catalogCache().find(id.getCatalogName());
    if (entries) {
        const auto found = entries->find(id.getKey());
        if (found != entries->end()) {
            return detail::fillPlaceholders(found->second, id.getArgs());
        }
    }
    return detail::fallbackText(id);
}

}  // namespace i18n
}  // namespace hf
