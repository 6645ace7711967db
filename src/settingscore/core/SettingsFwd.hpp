// Forward declarations of the tree's classes, for headers that only hold or pass nodes.
#pragma once

#include <boost/shared_ptr.hpp>

namespace settings {
namespace core {

class Settings;
class TSettings;
class SettingsLevel;

using SettingsPtr = boost::shared_ptr<Settings>;
using ConstSettingsPtr = boost::shared_ptr<const Settings>;

}  // namespace core
}  // namespace settings
