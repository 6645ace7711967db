#include <settingscore/core/detail/FileLayerHooks.hpp>

#include <settingscore/core/SettingsImpl.hpp>
#include <settingscore/core/storage/detail/SaveSequence.hpp>

namespace settings {
namespace core {

namespace {

void loadProductFiles(SettingsImpl& node, std::wstring& errors) {
    node.loadProductNode(errors);
}

}  // namespace

// Bound here, in the same file that defines them, so no other static initialiser can see the
// function objects before they hold their targets.
detail::ProductLoader productLoader = &loadProductFiles;
detail::LevelSaver levelSaver = &detail::saveSettingsAtLevel;

}  // namespace core
}  // namespace settings
