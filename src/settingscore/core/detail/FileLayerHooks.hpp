// The two function objects through which the tree reaches its files: productLoader fills a
// product node from its files on first touch, levelSaver writes a node's product file at one
// level. Static initialisation sets them; the saving switch swaps levelSaver at run time.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>
#include <settingscore/core/detail/TreeLock.hpp>

#include <boost/function.hpp>

#include <string>

namespace settings {
namespace core {

class SettingsImpl;
class SettingsLevel;

namespace detail {

// Fills `node` when it is a product node; leaves a text in `errors` when the load failed.
// REQUIRES: no lock of the tree held (the loader takes it for the merge).
using ProductLoader = boost::function<void(SettingsImpl& node, std::wstring& errors)>;

// Writes the file of `node`'s product at `level`. REQUIRES: the caller holds the root mutex
// (shared, or upgrade during a value change), witnessed by the third argument.
using LevelSaver =
    boost::function<void(const SettingsLevel* level, SettingsPtr node, const ReadAccess& lock)>;

}  // namespace detail

extern detail::ProductLoader productLoader;
extern detail::LevelSaver levelSaver;

}  // namespace core
}  // namespace settings
