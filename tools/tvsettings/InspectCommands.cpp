// The commands that only read: products, tree, get, describe, dirs.
#include "Commands.hpp"

#include "ValueText.hpp"

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace tvsettings {

namespace {

namespace sc = settings::core;
namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using hf::i18n::to_string;
using tvutil::contextmgr::BlessedInstanceID;

// The one product whose factory files lie in a folder of another name.
const char renamedFactoryProduct[] = "swarmtools";
const char renamedFactoryFolder[] = "gridpool";

Json boundsJson(const boost::optional<sc::ArraySizeBounds>& bounds) {
    if (!bounds) {
        return nullptr;
    }
    Json max = nullptr;  // no upper limit
    if (bounds->getMaxArraySize() != 0) {
        max = bounds->getMaxArraySize();
    }
    return {{"min", bounds->getMinArraySize()}, {"max", max}};
}

// Names a callout of any kind; null for none.
struct CalloutJson : boost::static_visitor<Json> {
    Json operator()(const boost::mpl::void_&) const { return nullptr; }
    Json operator()(const sc::CValidator& v) const { return named("C", v); }
    Json operator()(const sc::TValidator& v) const { return named("host language", v); }
    Json operator()(const sc::JValidator& v) const { return named("Java", v); }
    Json operator()(const sc::CRunTimeDefault& d) const { return withLevel(named("C", d), d); }
    Json operator()(const sc::TRunTimeDefault& d) const {
        return withLevel(named("host language", d), d);
    }
    Json operator()(const sc::JRunTimeDefault& d) const { return withLevel(named("Java", d), d); }

    template <class Callout>
    static Json named(const char* kind, const Callout& callout) {
        return {{"kind", kind},
                {"package", callout.getPackageName()},
                {"function", callout.getFunctionName()}};
    }
    template <class RunTimeDefault>
    static Json withLevel(Json json, const RunTimeDefault& runTimeDefault) {
        json["level"] = runTimeDefault.getBelongingLevel();
        return json;
    }
};

// The validator that applies to `node`: its own, else its nearest ancestor's, with the node
// that declares it.
Json validatorJson(const sc::SettingsPtr& node) {
    for (sc::SettingsPtr at = node; at; at = at->getParent()) {
        Json validator = boost::apply_visitor(CalloutJson(), at->getValidator());
        if (!validator.is_null()) {
            validator["declaredOn"] = pathOf(*at);
            return validator;
        }
    }
    return nullptr;
}

Json keyEntryJson(const KeyRef& key) {
    Json entry = {{"name", key.name},
                  {"path", pathOf(*key.node)},
                  {"kind", "key"},
                  {"type", typeNameOfCode(key.typeCode())},
                  {"arraySize", boundsJson(key.bounds())}};
    try {
        entry.update(effectiveValueJson(key));
    } catch (...) {
        // One key whose value cannot be had (a failing run-time default) must not hide the
        // rest of the tree.
        entry["value"] = nullptr;
        entry["error"] = describeFailure(std::current_exception()).message;
    }
    entry["readOnly"] = key.node->isReadOnly();
    entry["hidden"] = !key.node->isVisible();
    return entry;
}

Json treeJson(const sc::SettingsPtr& node) {
    if (node->isKey()) {
        KeyRef key{node, node->getParent(), node->getName(), node->getFullName()};
        return keyEntryJson(key);
    }
    Json children = Json::array();
    for (const sc::SettingsPtr& child : node->getChildren()) {
        children.push_back(treeJson(child));
    }
    return {
        {"name", node->getName()},        {"path", pathOf(*node)},        {"kind", "group"},
        {"readOnly", node->isReadOnly()}, {"hidden", !node->isVisible()}, {"children", children}};
}

std::vector<std::string> settingsFilesIn(const fs::path& folder) {
    std::vector<std::string> files;
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        if (it->is_regular_file() && it->path().extension() == ".settings") {
            files.push_back(it->path().string());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

Json folderJson(const std::string& path, const std::string& source) {
    std::error_code error;
    return {{"path", path}, {"source", source}, {"exists", fs::is_directory(path, error)}};
}

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

CommandResult productsCommand(const Session& session) {
    const sc::SettingsPtr root = session.root();
    const fs::path factoryDir = sc::TSettings::getFactoryDir(BlessedInstanceID);
    const fs::path userDir = sc::TSettings::getUserDir(BlessedInstanceID);
    Json products = Json::array();
    for (const sc::SettingsPtr& product : root->getChildren()) {
        // A product is read from its files on first touch of its content; its version and
        // visibility are known only after that.
        product->getChildren();
        const std::string name = product->getName();
        const boost::optional<unsigned> version = product->getProductVersion();
        const std::string folder = name == renamedFactoryProduct ? renamedFactoryFolder : name;
        Json userFiles = Json::array();
        const fs::path userFile = userDir / (name + ".settings");
        if (fs::is_regular_file(userFile)) {
            userFiles.push_back(userFile.string());
        }
        Json entry = {
            {"name", name},
            {"version", version ? Json(*version) : Json(nullptr)},
            {"hidden", !product->isVisible()},
            {"files", {{"factory", settingsFilesIn(factoryDir / folder)}, {"user", userFiles}}}};
        entry.update(productFilesJson(*product));
        products.push_back(entry);
    }
    CommandResult result;
    result.data = {
        {"factoryDir", factoryDir.string()}, {"userDir", userDir.string()}, {"products", products}};
    return result;
}

CommandResult treeCommand(const Session& session, const Request& request) {
    const sc::SettingsPtr top = request.path.empty() ? session.root() : session.node(request.path);
    CommandResult result;
    result.data = treeJson(top);
    return result;
}

CommandResult getCommand(const Session& session, const Request& request) {
    const KeyRef key = session.key(request.path);
    Json answer = {{"path", request.path}, {"type", typeNameOfCode(key.typeCode())}};
    CommandResult result;
    if (request.level.empty()) {
        answer.update(effectiveValueJson(key));
    } else {
        Session::requireLevel(request.level);
        answer["value"] = valueToJson(key.parent->getAny(key.name, request.level));
        answer["level"] = request.level;
    }
    if (answer["value"].is_null()) {
        result.notes.push_back(
            request.path + " has no value" +
            (request.level.empty() ? std::string(" at any level") : " at level " + request.level));
    }
    result.data = answer;
    return result;
}

CommandResult describeCommand(const Session& session, const Request& request) {
    const sc::SettingsPtr node = session.node(request.path);
    Json answer = {{"path", pathOf(*node)}, {"kind", node->isKey() ? "key" : "group"}};
    if (!node->isKey()) {
        const boost::optional<unsigned> version = node->getProductVersion();
        Json groups = Json::array();
        Json keys = Json::array();
        for (const sc::SettingsPtr& child : node->getChildren()) {
            (child->isKey() ? keys : groups).push_back(child->getName());
        }
        answer.update(Json{{"productVersion", version ? Json(*version) : Json(nullptr)},
                           {"validator", validatorJson(node)},
                           {"readOnly", node->isReadOnly()},
                           {"hidden", !node->isVisible()},
                           {"groups", groups},
                           {"keys", keys}});
        answer.update(productFilesJson(*node));
        CommandResult result;
        result.data = answer;
        return result;
    }
    const KeyRef key = session.key(request.path);
    const int typeCode = key.typeCode();
    const sc::SettingsKeyMetaData<boost::any> limits = key.parent->getKeyMetaData(key.name);
    Json choices = nullptr;
    if (limits.getListOfChoice()) {
        choices = Json::array();
        for (const boost::any& choice : *limits.getListOfChoice()) {
            choices.push_back(valueToJson(choice));
        }
    }
    Json levels = Json::object();
    for (const std::string& level : Session::levelNames()) {
        levels[level] = valueToJson(key.parent->getAny(key.name, level));
    }
    answer.update(
        Json{{"type", typeNameOfCode(typeCode)},
             {"arraySize", boundsJson(key.bounds())},
             {"min", valueToJson(limits.getMin())},
             {"max", valueToJson(limits.getMax())},
             // The bounds of a text limit its length.
             {"boundsAreLengths", typeCode == 1},
             {"choices", choices},
             {"validator", validatorJson(node)},
             {"runTimeDefault",
              boost::apply_visitor(CalloutJson(), key.parent->getRunTimeDefault(key.name))},
             {"readOnly", node->isReadOnly()},
             {"hidden", !node->isVisible()}});
    answer.update(effectiveValueJson(key));
    answer["levels"] = levels;
    // The product's, not only this key's: a key's own held-back value is among them by path.
    answer.update(productFilesJson(*node));
    CommandResult result;
    result.data = answer;
    return result;
}

CommandResult dirsCommand(const Session& session) {
    const FolderOptions& options = session.folders();
    const std::string factory = to_string(sc::TSettings::getFactoryDir(BlessedInstanceID));
    const std::string factorySource = options.factoryDir ? "option --factory-dir"
                                      : !environment("SETTINGS_FACTORYDIR").empty()
                                          ? "variable SETTINGS_FACTORYDIR"
                                          : "default: toolbox below the installation root";

    // Resolving the preference folder through the user level would create it; the folder in
    // force is asked for without touching the disk.
    const std::string preferences = to_string(sc::getPreferencesDirectoryUStr(false));
    std::string preferencesSource = "option --pref-dir";
    if (!options.prefDir) {
        preferencesSource = !environment("TOLVAN_PREFDIR").empty() ? "variable TOLVAN_PREFDIR"
                            : !environment("XDG_CONFIG_HOME").empty()
                                ? "default: below $XDG_CONFIG_HOME"
                                : "default: below $HOME/.config";
    }

    std::string user = preferences;
    std::string userSource = "the preference folder";
    if (options.userDir || !environment("SETTINGS_USERDIR").empty()) {
        user = to_string(sc::TSettings::getUserDir(BlessedInstanceID));
        userSource = options.userDir ? "option --user-dir" : "variable SETTINGS_USERDIR";
    }
    CommandResult result;
    result.data = {{"factory", folderJson(factory, factorySource)},
                   {"user", folderJson(user, userSource)},
                   {"preferences", folderJson(preferences, preferencesSource)},
                   {"installationRoot", to_string(sc::tolvanRootUStr())}};
    return result;
}

}  // namespace tvsettings
