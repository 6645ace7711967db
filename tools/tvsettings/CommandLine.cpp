#include "CommandLine.hpp"

#include <settingscore/settingscore.hpp>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>

namespace tvsettings {

namespace {

const char footerText[] =
    "Exit codes: 0 success, 1 usage (command, option, path, level, number of values), 2 a "
    "value or file refused (type, range, choices, array size, validator, read-only key or "
    "level, malformed file, a user file with values its product holds back), 3 storage "
    "(files, folders, libraries, a change that could not be saved).\n"
    "A value that starts with '-' and is no number goes after \"--\".";

// The folder options take absolute paths only: a relative one would mean a different folder
// for every working directory.
const CLI::Validator absolutePath(
    [](std::string& path) {
        return std::filesystem::path(path).is_absolute() ? std::string()
                                                         : "must be an absolute path: " + path;
    },
    "ABSOLUTE PATH");

// The first argument that is neither an option nor a folder option's value: the command
// word, when the parser found no command.
std::string firstWord(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--factory-dir" || arg == "--user-dir" || arg == "--pref-dir") {
            ++i;
        } else if (!arg.empty() && arg[0] != '-') {
            return arg;
        }
    }
    return std::string();
}

CLI::App* addCommand(CLI::App& app, const char* name, const char* description) {
    CLI::App* command = app.add_subcommand(name, description);
    command->fallthrough();  // global options also after the command's own arguments
    return command;
}

// `level` must outlive the parse: the option writes into it.
void addLevel(CLI::App* command, std::string& level, const char* defaultLevel) {
    level = defaultLevel;
    command
        ->add_option("--level,-l", level,
                     std::string("the level: session, user or factory") +
                         (*defaultLevel != '\0' ? std::string(" (default ") + defaultLevel + ")"
                                                : std::string(" (default: the effective value)")))
        ->type_name("LEVEL");
}

}  // namespace

ParsedCommandLine parseCommandLine(int argc, char** argv) {
    ParsedCommandLine parsed;
    Request& request = parsed.request;

    CLI::App app("Reads and changes the settings of TOLVAN products.", "tvsettings");
    app.require_subcommand(1, 1);
    app.footer(footerText);
    app.set_version_flag("--version", std::string("tvsettings ") + SETTINGSCORE_VERSION);

    std::string factoryDir;
    std::string userDir;
    std::string prefDir;
    CLI::Option* factoryOption =
        app.add_option("--factory-dir", factoryDir, "folder of the products' factory files")
            ->check(absolutePath);
    CLI::Option* userOption =
        app.add_option("--user-dir", userDir, "folder of the user's settings files")
            ->check(absolutePath);
    CLI::Option* prefOption =
        app.add_option("--pref-dir", prefDir, "preference folder (the user folder by default)")
            ->check(absolutePath);
    app.add_flag("--json", request.json, "answer with one JSON document");

    // Each command has its own level and default; a map's elements stay where they are.
    std::map<std::string, std::string> levels;

    addCommand(app, "products", "the products and their settings files at each level");

    addCommand(app, "tree", "groups and keys below a node, with types, values and levels")
        ->add_option("path", request.path, "dotted path of a group or key (default: all)");

    CLI::App* get = addCommand(app, "get", "the value of a key");
    get->add_option("path", request.path, "dotted path of a key")->required();
    addLevel(get, levels["get"], "");

    CLI::App* set = addCommand(app, "set", "give a key a value at a level");
    set->add_option("path", request.path, "dotted path of a key")->required();
    set->add_option("values", request.values, "the value; several for a key that holds an array");
    addLevel(set, levels["set"], "user");

    CLI::App* reset = addCommand(app, "reset", "remove a key's value at a level");
    reset->add_option("path", request.path, "dotted path of a key")->required();
    addLevel(reset, levels["reset"], "user");

    addCommand(app, "describe", "a key's type, limits, validator, defaults and values")
        ->add_option("path", request.path, "dotted path of a key or group")
        ->required();

    CLI::App* exportCommand = addCommand(app, "export", "write nodes of one product to a file");
    exportCommand->add_option("paths", request.paths, "dotted paths of groups or keys")->required();
    exportCommand->add_option("--file,-f", request.file, "absolute path of the file to write")
        ->required();
    addLevel(exportCommand, levels["export"], "user");

    CLI::App* importCommand = addCommand(app, "import", "merge a settings file into the tree");
    importCommand->add_option("file", request.file, "absolute path of the file to read")
        ->required();
    importCommand->add_option("--into", request.into,
                              "dotted path of the node to merge into (default: the product)");
    addLevel(importCommand, levels["import"], "user");

    addCommand(app, "check", "read settings files against the schema and report problems")
        ->add_option("files", request.files, "settings files")
        ->required();

    addCommand(app, "dirs", "the factory, user and preference folders and where they come from");

    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& answered) {
        parsed.exitCode = app.exit(answered);  // help or version, on stdout
        return parsed;
    } catch (const CLI::ParseError& refused) {
        const bool asJson = std::any_of(
            argv + 1, argv + argc, [](const char* arg) { return arg == std::string("--json"); });
        FailureReport report{ExitCode::Usage, "UsageError", refused.what(), {}};
        if (app.get_subcommands().empty()) {
            const std::string word = firstWord(argc, argv);
            if (!word.empty()) {
                report.message = "unknown command: " + word;
            }
        }
        if (!asJson) {
            report.details.emplace_back("help", "tvsettings --help, tvsettings COMMAND --help");
        }
        printFailure(report, asJson, std::cerr);
        parsed.exitCode = static_cast<int>(ExitCode::Usage);
        return parsed;
    }

    request.command = app.get_subcommands().at(0)->get_name();
    const auto level = levels.find(request.command);
    if (level != levels.end()) {
        request.level = level->second;
    }
    if (*factoryOption) {
        request.folders.factoryDir = factoryDir;
    }
    if (*userOption) {
        request.folders.userDir = userDir;
    }
    if (*prefOption) {
        request.folders.prefDir = prefDir;
    }
    parsed.run = true;
    return parsed;
}

}  // namespace tvsettings
