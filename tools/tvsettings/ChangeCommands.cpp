// The commands that change values or read settings files: set, reset, export, import, check.
#include "Commands.hpp"

#include "ValueText.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <utility>
#include <vector>

namespace tvsettings {

namespace {

namespace sc = settings::core;
namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using hf::i18n::to_string;
using hf::i18n::to_ustring;
using tvutil::contextmgr::BlessedInstanceID;

// The effective value of every key at and below `node`, by path; a key whose value cannot be
// had is left out.
void collectValues(const sc::SettingsPtr& node, std::map<std::string, Json>& values) {
    if (node->isKey()) {
        try {
            values[node->getFullName()] =
                valueToJson(node->getParent()->getAny(node->getName(), ""));
        } catch (...) {
        }
        return;
    }
    for (const sc::SettingsPtr& child : node->getChildren()) {
        collectValues(child, values);
    }
}

// A save that fails throws nothing: the library records it for the product and level until a
// save there succeeds. In a process as short as the tool's, a record at `level` can only come
// from the change just made, which then ends with the process: that is a failure. A level
// without files (session) is never saved and so never recorded.
void requireSaved(const sc::Settings& node, const std::string& level, const std::string& change,
                  Details details) {
    for (const sc::SaveFailure& failure : node.getProductFileStatus().saveFailures) {
        if (failure.level != level) {
            continue;
        }
        const std::string file = to_string(failure.file);
        details.insert(
            details.end(),
            {{"level", level}, {"step", failure.step}, {"file", file}, {"error", failure.error}});
        throw ToolFailure(ExitCode::Storage, "SaveFailed",
                          change + ", but not saved: " + failure.step + " failed for " + file +
                              ": " + failure.error,
                          std::move(details));
    }
}

// The user file of each product of the tree, by the name the products command shows; none
// when the tree cannot be had: the files are then checked on their own.
std::vector<std::pair<fs::path, sc::SettingsPtr>> productUserFiles(const FolderOptions& folders) {
    std::vector<std::pair<fs::path, sc::SettingsPtr>> userFiles;
    try {
        const Session session(folders);
        const sc::SettingsPtr root = session.root();
        const fs::path userDir = sc::TSettings::getUserDir(BlessedInstanceID);
        for (const sc::SettingsPtr& product : root->getChildren()) {
            userFiles.emplace_back(userDir / (product->getName() + ".settings"), product);
        }
    } catch (...) {
        userFiles.clear();
    }
    return userFiles;
}

// The product whose user file `file` is, with what its files showed (see productFilesJson);
// null when it is no product's user file.
Json userFileStatus(const std::vector<std::pair<fs::path, sc::SettingsPtr>>& userFiles,
                    const fs::path& file) {
    for (const auto& [userFile, product] : userFiles) {
        std::error_code error;
        if (!fs::equivalent(file, userFile, error)) {
            continue;
        }
        try {
            product->getChildren();
        } catch (const sc::exception::ErrorReadingSettingsData&) {
            // The first touch reports the load's problems once; the status holds them.
        }
        Json status = {{"userFileOf", product->getName()}};
        status.update(productFilesJson(*product));
        return status;
    }
    return nullptr;
}

// The problems of one file, empty when the library reads it without complaint.
Json checkOneFile(const std::string& given) {
    const fs::path path = fs::absolute(given);
    Json entry = {{"file", given}};
    Json problems = Json::array();
    if (!fs::is_regular_file(path) || !std::ifstream(path).good()) {
        problems.push_back({{"class", "FileNotReadable"},
                            {"message", "the file cannot be read"},
                            {"exitCode", static_cast<int>(ExitCode::Storage)}});
    } else {
        try {
            const sc::SettingsPtr tree = sc::Settings::importAsStandaloneObject(path.wstring());
            entry["product"] = tree->getName();
        } catch (...) {
            const FailureReport report = describeFailure(std::current_exception());
            Json problem = {{"class", report.className},
                            {"message", report.message},
                            {"exitCode", static_cast<int>(report.exitCode)}};
            for (const auto& detail : report.details) {
                if (detail.first != "detail") {
                    continue;
                }
                // The reader's own text: with a position (code 4) or without (code 5).
                const ReaderPosition position = parseReaderPosition(detail.second);
                if (position.found) {
                    problem["line"] = position.line;
                    problem["column"] = position.column;
                }
                problem["message"] = position.message;
            }
            problems.push_back(problem);
        }
    }
    entry["ok"] = problems.empty();
    entry["problems"] = problems;
    return entry;
}

}  // namespace

CommandResult setCommand(const Session& session, const Request& request) {
    const KeyRef key = session.key(request.path);
    Session::requireLevel(request.level);
    const int typeCode = key.typeCode();
    const bool asArray = key.takesArray();
    if (!asArray && typeCode != anyTypeCode && request.values.size() != 1) {
        throw ToolFailure(
            ExitCode::Usage, "WrongNumberOfValues",
            request.path + " holds one " + typeNameOfCode(typeCode) + ", but " +
                std::to_string(request.values.size()) + " values were given",
            {{"path", request.path}, {"values", std::to_string(request.values.size())}});
    }
    if (typeCode == anyTypeCode && request.values.empty()) {
        throw ToolFailure(ExitCode::Usage, "WrongNumberOfValues",
                          request.path + " takes text: give at least one value",
                          {{"path", request.path}, {"values", "0"}});
    }
    key.parent->setAny(key.name, parseValue(typeCode, request.values, asArray), request.level);
    requireSaved(*key.parent, request.level, request.path + " was set at level " + request.level,
                 {{"path", request.path}});
    CommandResult result;
    result.data = {{"path", request.path},
                   {"level", request.level},
                   {"value", valueToJson(key.parent->getAny(key.name, request.level))},
                   {"effective", effectiveValueJson(key)}};
    return result;
}

CommandResult resetCommand(const Session& session, const Request& request) {
    const KeyRef key = session.key(request.path);
    Session::requireLevel(request.level);
    key.parent->removeValue(key.name, request.level);
    requireSaved(*key.parent, request.level,
                 "the value of " + request.path + " at level " + request.level + " was removed",
                 {{"path", request.path}});
    CommandResult result;
    result.data = {{"path", request.path},
                   {"level", request.level},
                   {"removed", true},
                   {"effective", effectiveValueJson(key)}};
    return result;
}

CommandResult exportCommand(const Session& session, const Request& request) {
    Session::requireLevel(request.level);
    std::vector<sc::ConstSettingsPtr> nodes;
    for (const std::string& path : request.paths) {
        nodes.push_back(session.node(path));
    }
    // The path goes to the library as given: it refuses a relative one.
    sc::Settings::exportSettings(nodes, to_ustring(request.file), request.level);
    CommandResult result;
    result.data = {{"file", request.file}, {"level", request.level}, {"paths", request.paths}};
    return result;
}

CommandResult importCommand(const Session& session, const Request& request) {
    Session::requireLevel(request.level);
    // As for export, the library refuses a relative path; a file that is not there is told
    // apart from a malformed one.
    const fs::path given(request.file);
    if (given.is_absolute() && (!fs::is_regular_file(given) || !std::ifstream(given).good())) {
        throw ToolFailure(ExitCode::Storage, "FileNotReadable", request.file + " cannot be read",
                          {{"file", request.file}});
    }
    const sc::SettingsPtr imported =
        sc::Settings::importAsStandaloneObject(to_ustring(request.file));
    const std::string product = imported->getName();
    const sc::SettingsPtr target = session.node(request.into.empty() ? product : request.into);
    const std::string targetPath = target->getFullName();
    const std::string::size_type dot = targetPath.find('.');
    if (targetPath.substr(0, dot) != product) {
        throw ToolFailure(ExitCode::Refused, "ImportOfAnotherProduct",
                          request.file + " holds settings of product " + product + ", not of " +
                              targetPath.substr(0, dot),
                          {{"file", request.file}, {"product", product}, {"into", targetPath}});
    }
    // The node of the file that corresponds to the target, found by the same path below the
    // product.
    const sc::SettingsPtr source =
        dot == std::string::npos ? imported : imported->getNodeByPath(targetPath.substr(dot + 1));
    if (!source) {
        throw ToolFailure(ExitCode::Refused, "ImportLacksNode",
                          request.file + " holds nothing for " + targetPath,
                          {{"file", request.file}, {"into", targetPath}});
    }
    std::map<std::string, Json> before;
    collectValues(target, before);
    target->mergeWith(source, request.level);
    requireSaved(*target, request.level,
                 request.file + " was merged into " + targetPath + " at level " + request.level,
                 {{"imported", request.file}, {"into", targetPath}});
    std::map<std::string, Json> after;
    collectValues(target, after);
    Json changed = Json::array();
    for (const auto& entry : after) {
        const auto old = before.find(entry.first);
        const Json oldValue = old == before.end() ? Json(nullptr) : old->second;
        if (oldValue != entry.second) {
            changed.push_back(
                {{"path", entry.first}, {"before", oldValue}, {"after", entry.second}});
        }
    }
    CommandResult result;
    result.data = {{"file", request.file},
                   {"into", targetPath},
                   {"level", request.level},
                   {"changed", changed}};
    return result;
}

CommandResult checkCommand(const Request& request) {
    CommandResult result;
    Json files = Json::array();
    const auto userFiles = productUserFiles(request.folders);
    for (const std::string& file : request.files) {
        Json entry = checkOneFile(file);
        for (const auto& problem : entry["problems"]) {
            result.exitCode =
                std::max(result.exitCode, static_cast<ExitCode>(problem["exitCode"].get<int>()));
        }
        // A product's user file that reads well alone may still hold values its product
        // refuses (a range a newer factory file narrowed): its content does not fully fit.
        // A kept copy is only told: if it is of this very file, the problems say why already.
        const Json status = userFileStatus(userFiles, fs::absolute(file));
        if (!status.is_null()) {
            entry.update(status);
            if (!status["heldBack"].empty()) {
                entry["ok"] = false;
                result.exitCode = std::max(result.exitCode, ExitCode::Refused);
            }
        }
        files.push_back(entry);
    }
    result.data = {{"files", files}};
    return result;
}

}  // namespace tvsettings
