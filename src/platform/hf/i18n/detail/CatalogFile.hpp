// Reading one message catalogue file: the catalogue "A:B:C" lies at
// <root>/resources/messages/A/B/C.xml and holds
//     <catalog name="A:B:C"><message key="Key">text with {0}</message>...</catalog>
#pragma once

#include <platform/hf/filesystem/Path.hpp>

#include <map>
#include <memory>
#include <string>

namespace hf {
namespace i18n {
namespace detail {

// Key (UTF-8) to entry text.
using CatalogEntries = std::map<std::string, std::wstring>;

// The file of `catalogName` below `root`; empty when the name cannot name a file (an empty
// part, "." or "..", a '/' in a part).
hf::filesystem::upath catalogFilePath(const hf::filesystem::upath& root,
                                      const std::string& catalogName);

// The entries of the catalogue file `file`; null when the file is missing, unreadable or not
// a well-formed catalogue of that name. Never throws.
std::shared_ptr<const CatalogEntries> readCatalogFile(const hf::filesystem::upath& file,
                                                      const std::string& catalogName) noexcept;

}  // namespace detail
}  // namespace i18n
}  // namespace hf
