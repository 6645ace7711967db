// Small types that the node interface's signatures share: a node paired with a value for the
// bulk calls, and the list of (name, message) failures that those calls report.
#pragma once

#include <settingscore/core/SettingsFwd.hpp>

#include <boost/any.hpp>

#include <string>
#include <utility>
#include <vector>

namespace settings {
namespace core {

class SettingsEvent;

// A key and the value meant for it.
using KeyValuePair = std::pair<boost::shared_ptr<Settings>, boost::any>;

// For each failed entry of a bulk call: the key's full name (or a tag) and the message.
using FailureList = std::vector<std::pair<std::string, std::string>>;

}  // namespace core
}  // namespace settings
