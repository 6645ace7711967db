// The dispatcher: the session, the command chosen, and the product files the library could
// not read, reported as warnings.
#include "Commands.hpp"

#include "ValueText.hpp"

#include <sstream>

namespace tvsettings {

namespace {

namespace sc = settings::core;
using Json = nlohmann::ordered_json;
using hf::i18n::to_string;

// Enough for every product of a tree to fail once.
const int maxLoadRetries = 1000;

// Marks a line of a load failure that is about one value held back, not about the file.
const char heldBackMark[] = " is held back, kept in the file but not used: ";

// "<file>\t<reader text>" per line, as "skipped <file>:<line>:<column>: <message>"; a value
// held back leaves the rest of its file in use, so its line says so instead of "skipped".
std::vector<std::string> loadProblems(const sc::exception::ErrorReadingSettingsData& failure) {
    std::vector<std::string> problems;
    std::istringstream lines(to_string(failure.getDetailErrorMsg()));
    for (std::string line; std::getline(lines, line);) {
        if (line.empty()) {
            continue;
        }
        const std::string::size_type tab = line.find('\t');
        std::string where = line.substr(0, tab);
        const ReaderPosition position =
            parseReaderPosition(tab == std::string::npos ? std::string() : line.substr(tab + 1));
        if (tab == std::string::npos) {
            problems.push_back(line);
            continue;
        }
        if (line.find(heldBackMark, tab) != std::string::npos) {
            problems.push_back(where + ": " + line.substr(tab + 1));
            continue;
        }
        if (position.found) {
            where += ":" + std::to_string(position.line) + ":" + std::to_string(position.column);
        }
        problems.push_back("skipped " + where + ": " + position.message);
    }
    return problems;
}

CommandResult dispatchCommand(const Session& session, const Request& request) {
    if (request.command == "products") {
        return productsCommand(session);
    }
    if (request.command == "tree") {
        return treeCommand(session, request);
    }
    if (request.command == "get") {
        return getCommand(session, request);
    }
    if (request.command == "describe") {
        return describeCommand(session, request);
    }
    if (request.command == "dirs") {
        return dirsCommand(session);
    }
    if (request.command == "set") {
        return setCommand(session, request);
    }
    if (request.command == "reset") {
        return resetCommand(session, request);
    }
    if (request.command == "export") {
        return exportCommand(session, request);
    }
    if (request.command == "import") {
        return importCommand(session, request);
    }
    throw ToolFailure(ExitCode::Usage, "UnknownCommand",
                      "\"" + request.command + "\" is not a command");
}

}  // namespace

Json effectiveValueJson(const KeyRef& key) {
    const std::string level = key.effectiveLevel();
    return {{"value", valueToJson(key.parent->getAny(key.name, ""))},
            {"level", level.empty() ? Json(nullptr) : Json(level)}};
}

Json productFilesJson(const sc::Settings& node) {
    const sc::ProductFileStatus status = node.getProductFileStatus();
    Json heldBack = Json::array();
    for (const sc::HeldBackValue& held : status.heldBack) {
        heldBack.push_back({{"path", held.path},
                            {"level", held.level},
                            {"file", to_string(held.file)},
                            {"reason", to_string(held.reason)}});
    }
    Json keptCopies = Json::array();
    for (const std::wstring& copy : status.keptCopies) {
        keptCopies.push_back(to_string(copy));
    }
    return {{"heldBack", heldBack}, {"keptCopies", keptCopies}};
}

CommandResult runCommand(const Request& request) {
    if (request.command == "check") {
        // Reads files on their own; the tree only tells whose user file one is, and its load
        // problems are reported as that file's findings, not as warnings.
        return checkCommand(request);
    }
    const Session session(request.folders);
    // A product whose files fail to read reports them to the first caller only and then
    // stands with what could be read: the tool reports them as warnings and goes on. Every
    // command touches the products it needs before it changes anything, so running it again
    // repeats nothing.
    std::vector<std::string> warnings;
    for (int attempt = 0;; ++attempt) {
        try {
            CommandResult result = dispatchCommand(session, request);
            if (!warnings.empty()) {
                result.data["warnings"] = warnings;
                for (auto warning = warnings.rbegin(); warning != warnings.rend(); ++warning) {
                    result.notes.insert(result.notes.begin(), "warning: " + *warning);
                }
            }
            return result;
        } catch (const sc::exception::ErrorReadingSettingsData& failure) {
            if (failure.getErrorCode() !=
                    sc::exception::ErrorReadingSettingsData::ProductNodeLoadingFailed ||
                attempt >= maxLoadRetries) {
                throw;
            }
            for (const std::string& problem : loadProblems(failure)) {
                warnings.push_back(problem);
            }
        }
    }
}

}  // namespace tvsettings
