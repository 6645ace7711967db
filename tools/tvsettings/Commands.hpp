// The commands of tvsettings. Each one works through a Session and answers with a JSON
// document: printed as is under --json, else turned into text by TextOutput. runCommand
// (Commands.cpp) picks the command; those that only read live in InspectCommands.cpp, those
// that change values or read files in ChangeCommands.cpp.
#pragma once

#include "Failure.hpp"
#include "Session.hpp"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace tvsettings {

// Everything the command line said.
struct Request {
    std::string command;
    FolderOptions folders;
    bool json = false;
    std::string path;                // tree, get, set, reset, describe
    std::vector<std::string> paths;  // export
    std::vector<std::string> values;
    std::vector<std::string> files;  // check
    // --level; empty: the effective value for get and describe, "user" for the changes.
    std::string level;
    std::string file;  // export, import
    std::string into;  // import; empty: the file's product
};

struct CommandResult {
    nlohmann::ordered_json data = nlohmann::ordered_json::object();
    // A command that reports problems without failing (check) sets its code here.
    ExitCode exitCode = ExitCode::Success;
    // Remarks for stderr, e.g. that a key has no value at the level asked.
    std::vector<std::string> notes;
};

// Runs request.command; a failure is thrown, library failures unchanged.
CommandResult runCommand(const Request& request);

// One function per command.
CommandResult productsCommand(const Session& session);
CommandResult treeCommand(const Session& session, const Request& request);
CommandResult getCommand(const Session& session, const Request& request);
CommandResult describeCommand(const Session& session, const Request& request);
CommandResult dirsCommand(const Session& session);
CommandResult setCommand(const Session& session, const Request& request);
CommandResult resetCommand(const Session& session, const Request& request);
CommandResult exportCommand(const Session& session, const Request& request);
CommandResult importCommand(const Session& session, const Request& request);
CommandResult checkCommand(const Request& request);

// A key's value as the commands report it: {"value": ..., "level": ...}, the level being the
// one the effective value comes from (null when no level has one).
nlohmann::ordered_json effectiveValueJson(const KeyRef& key);

// What the files of `node`'s product showed beyond its values: {"heldBack": [{"path", "level",
// "file", "reason"}...], "keptCopies": [file...]}, both empty on the root. Reads the product
// first if nothing touched it yet, which may throw its load problems once.
nlohmann::ordered_json productFilesJson(const settings::core::Settings& node);

}  // namespace tvsettings
