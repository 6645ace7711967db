// One run of the tool against the settings tree: the folder options put in force before the
// first access to the root, the root of the main instance, dotted paths turned into nodes and
// keys, and the level names checked against the level table.
#pragma once

#include <settingscore/settingscore.hpp>

#include <boost/optional.hpp>

#include <string>
#include <vector>

namespace tvsettings {

struct FolderOptions {
    boost::optional<std::string> factoryDir;  // --factory-dir
    boost::optional<std::string> userDir;     // --user-dir
    boost::optional<std::string> prefDir;     // --pref-dir
};

// A key as its parent group reaches it: every question about a key is asked of the parent.
struct KeyRef {
    settings::core::SettingsPtr node;
    settings::core::SettingsPtr parent;
    std::string name;
    std::string path;  // as typed

    // The declared type code, anyTypeCode for a key without one.
    int typeCode() const;
    boost::optional<settings::core::ArraySizeBounds> bounds() const;
    // Whether the bounds let a value have more than one element: such a key takes a vector.
    bool takesArray() const;
    // The first level of the table (strongest first) that has a value; empty when none has.
    std::string effectiveLevel() const;
};

class Session {
public:
    // Puts the folder options in force: they must come before the root is first reached.
    explicit Session(const FolderOptions& folders);

    const FolderOptions& folders() const { return folders_; }

    settings::core::SettingsPtr root() const;
    // The node at `path`, group or key. ToolFailure (Usage, UnknownPath) when there is none.
    settings::core::SettingsPtr node(const std::string& path) const;
    // The key at `path`. ToolFailure (Usage) when there is none or it is a group.
    KeyRef key(const std::string& path) const;

    // The level names in table order, strongest first.
    static std::vector<std::string> levelNames();
    // ToolFailure (Usage, UnknownLevel) unless `level` is a level of the table.
    static void requireLevel(const std::string& level);

private:
    FolderOptions folders_;
};

// "root" for the root, else the node's dotted name from its product down.
std::string pathOf(const settings::core::Settings& node);

}  // namespace tvsettings
