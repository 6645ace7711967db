#include <settingscore/core/detail/FileLayerHooks.hpp>

namespace settings {
namespace core {

namespace {

// Until the file layer is linked in, a product node has no files to read and a change has no
// file to reach: both hooks leave memory as the only store.
void loadNothing(SettingsImpl&, std::wstring&) {}
void saveNothing(const SettingsLevel*, SettingsPtr, const detail::ReadAccess&) {}

}  // namespace

detail::ProductLoader productLoader = &loadNothing;
detail::LevelSaver levelSaver = &saveNothing;

}  // namespace core
}  // namespace settings
