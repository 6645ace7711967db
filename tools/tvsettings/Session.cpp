#include "Session.hpp"

#include "Failure.hpp"
#include "ValueText.hpp"

#include <boost/algorithm/string/join.hpp>

namespace tvsettings {

namespace {

namespace sc = settings::core;
using tvutil::contextmgr::BlessedInstanceID;

boost::optional<std::wstring> widened(const boost::optional<std::string>& text) {
    if (!text) {
        return boost::none;
    }
    return hf::i18n::to_ustring(*text);
}

}  // namespace

int KeyRef::typeCode() const {
    return parent->getKeyType(name).value_or(anyTypeCode);
}

boost::optional<sc::ArraySizeBounds> KeyRef::bounds() const {
    return parent->getArraySizeBounds(name);
}

bool KeyRef::takesArray() const {
    const auto limits = bounds();
    return limits && (limits->getMaxArraySize() == 0 || limits->getMaxArraySize() > 1);
}

std::string KeyRef::effectiveLevel() const {
    for (const std::string& level : Session::levelNames()) {
        if (parent->hasValue(name, level)) {
            return level;
        }
    }
    return std::string();
}

Session::Session(const FolderOptions& folders) : folders_(folders) {
    if (folders_.prefDir) {
        sc::setPreferencesDirectoryUStr(hf::i18n::to_ustring(*folders_.prefDir));
    }
    if (folders_.factoryDir || folders_.userDir) {
        // The main instance's state must exist to take the overrides; an absent folder is
        // resolved as usual (variable, then default) on first use.
        sc::TSettings::createEmptySettingsFor(BlessedInstanceID);
        sc::TSettings::setSettingsFileLocation(BlessedInstanceID, widened(folders_.factoryDir),
                                               boost::none, widened(folders_.userDir));
    }
}

sc::SettingsPtr Session::root() const {
    sc::SettingsPtr root = sc::Settings::getSettingsRoot(BlessedInstanceID);
    if (!root) {
        throw ToolFailure(ExitCode::Storage, "NoSettingsRoot",
                          "the main instance has no settings tree");
    }
    return root;
}

sc::SettingsPtr Session::node(const std::string& path) const {
    sc::SettingsPtr found = root()->getNodeByPath(path);
    if (!found) {
        throw ToolFailure(ExitCode::Usage, "UnknownPath", "no group or key at \"" + path + "\"",
                          {{"path", path}});
    }
    return found;
}

KeyRef Session::key(const std::string& path) const {
    KeyRef ref;
    ref.node = node(path);
    if (!ref.node->isKey()) {
        throw ToolFailure(
            ExitCode::Usage, "NotAKey",
            "\"" + path + "\" is a group, not a key; see \"tvsettings tree " + path + "\"",
            {{"path", path}});
    }
    ref.parent = ref.node->getParent();
    ref.name = ref.node->getName();
    ref.path = path;
    return ref;
}

std::vector<std::string> Session::levelNames() {
    return sc::SettingsLevelManager::getSettingsLevelManagerInstance()->getAllLevelNames();
}

void Session::requireLevel(const std::string& level) {
    if (!sc::SettingsLevelManager::getSettingsLevelManagerInstance()->isValidLevel(level)) {
        const std::string known = boost::algorithm::join(levelNames(), ", ");
        throw ToolFailure(ExitCode::Usage, "UnknownLevel",
                          "\"" + level + "\" is not a level; the levels are " + known,
                          {{"level", level}, {"levels", known}});
    }
}

std::string pathOf(const sc::Settings& node) {
    return node.isRoot() ? "root" : node.getFullName();
}

}  // namespace tvsettings
