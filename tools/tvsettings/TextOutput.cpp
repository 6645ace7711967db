#include "TextOutput.hpp"

#include "ValueText.hpp"

namespace tvsettings {

namespace {

using Json = nlohmann::ordered_json;

// Names in a list, as "a, b, c".
std::string joined(const Json& names) {
    std::string text;
    for (const Json& name : names) {
        text += (text.empty() ? "" : ", ") + name.get<std::string>();
    }
    return text.empty() ? "(none)" : text;
}

std::string padded(const std::string& label, std::size_t width) {
    return label.size() >= width ? label + " " : label + std::string(width - label.size(), ' ');
}

// "1..1", "0..unlimited"; empty for a key without bounds.
std::string boundsText(const Json& bounds) {
    if (bounds.is_null()) {
        return std::string();
    }
    return std::to_string(bounds["min"].get<unsigned>()) + ".." +
           (bounds["max"].is_null() ? std::string("unlimited")
                                    : std::to_string(bounds["max"].get<unsigned>()));
}

// "int32", or with bounds other than exactly one element "int32[0..unlimited]".
std::string declaredType(const Json& entry) {
    const Json& bounds = entry["arraySize"];
    const bool single =
        !bounds.is_null() && bounds["min"] == 1 && !bounds["max"].is_null() && bounds["max"] == 1;
    std::string type = entry["type"].get<std::string>();
    return single || bounds.is_null() ? type : type + "[" + boundsText(bounds) + "]";
}

std::string marks(const Json& entry) {
    std::string marks;
    if (entry["readOnly"].get<bool>()) {
        marks = "read-only";
    }
    if (entry["hidden"].get<bool>()) {
        marks += marks.empty() ? "hidden" : ", hidden";
    }
    return marks.empty() ? marks : "  [" + marks + "]";
}

std::string levelText(const Json& level) {
    return level.is_null() ? std::string() : "  (" + level.get<std::string>() + ")";
}

// "solver.maxIterations (user): <reason>" for a value held back from a product file.
std::string heldBackText(const Json& held) {
    return held["path"].get<std::string>() + " (" + held["level"].get<std::string>() +
           "): " + held["reason"].get<std::string>();
}

// The node asked for shows its full path, the nodes below it their names.
void printTree(const Json& node, const std::string& indent, bool top, std::ostream& out) {
    const std::string name = node[top ? "path" : "name"].get<std::string>();
    if (node["kind"] == "key") {
        out << indent << name << ": " << declaredType(node) << " = "
            << (node.contains("error") ? "(error: " + node["error"].get<std::string>() + ")"
                                       : displayText(node["value"]))
            << levelText(node["level"]) << marks(node) << "\n";
        return;
    }
    std::string childIndent = indent;
    // The root is no group anybody names: its products start at the left margin.
    if (node["path"] != "root") {
        out << indent << name << "/" << marks(node) << "\n";
        childIndent += "  ";
    }
    for (const Json& child : node["children"]) {
        printTree(child, childIndent, false, out);
    }
}

void printProducts(const Json& data, std::ostream& out) {
    for (const Json& product : data["products"]) {
        out << product["name"].get<std::string>();
        if (!product["version"].is_null()) {
            out << "  (version " << product["version"].get<unsigned>() << ")";
        }
        out << (product["hidden"].get<bool>() ? "  [hidden]" : "") << "\n";
        for (const auto& level : product["files"].items()) {
            if (level.value().empty()) {
                out << "  " << padded(level.key(), 9) << "(no file)\n";
            }
            for (const Json& file : level.value()) {
                out << "  " << padded(level.key(), 9) << file.get<std::string>() << "\n";
            }
        }
        for (const Json& held : product["heldBack"]) {
            out << "  held back  " << heldBackText(held) << "\n";
        }
        for (const Json& copy : product["keptCopies"]) {
            out << "  kept copy  " << copy.get<std::string>() << "\n";
        }
    }
}

void printDescription(const Json& data, std::ostream& out) {
    const auto line = [&out](const std::string& label, const std::string& value) {
        out << "  " << padded(label, 18) << value << "\n";
    };
    const auto callout = [](const Json& callout) -> std::string {
        if (callout.is_null()) {
            return "(none)";
        }
        std::string text = callout["kind"].get<std::string>() + " function " +
                           callout["function"].get<std::string>() + " in package " +
                           callout["package"].get<std::string>();
        if (callout.contains("declaredOn")) {
            text += " (declared on " + callout["declaredOn"].get<std::string>() + ")";
        }
        if (callout.contains("level")) {
            text += " (level " + callout["level"].get<std::string>() + ")";
        }
        return text;
    };
    const auto yesNo = [](const Json& flag) { return flag.get<bool>() ? "yes" : "no"; };
    const auto productFiles = [&line, &data] {
        for (const Json& held : data["heldBack"]) {
            line("held back", heldBackText(held));
        }
        for (const Json& copy : data["keptCopies"]) {
            line("kept copy", copy.get<std::string>());
        }
    };
    out << data["path"].get<std::string>() << "\n";
    line("kind", data["kind"]);
    if (data["kind"] == "group") {
        if (!data["productVersion"].is_null()) {
            line("product version", data["productVersion"].dump());
        }
        line("validator", callout(data["validator"]));
        line("read-only", yesNo(data["readOnly"]));
        line("hidden", yesNo(data["hidden"]));
        line("groups", joined(data["groups"]));
        line("keys", joined(data["keys"]));
        productFiles();
        return;
    }
    const std::string lengths = data["boundsAreLengths"].get<bool>() ? " (text length)" : "";
    line("type", data["type"]);
    line("array size",
         data["arraySize"].is_null() ? "(no type yet)" : boundsText(data["arraySize"]));
    line("min", data["min"].is_null() ? "(none)" : displayText(data["min"]) + lengths);
    line("max", data["max"].is_null() ? "(none)" : displayText(data["max"]) + lengths);
    line("choices", data["choices"].is_null() ? "(none)" : displayText(data["choices"]));
    line("validator", callout(data["validator"]));
    line("run-time default", callout(data["runTimeDefault"]));
    line("read-only", yesNo(data["readOnly"]));
    line("hidden", yesNo(data["hidden"]));
    line("value", displayText(data["value"]) + levelText(data["level"]));
    for (const auto& level : data["levels"].items()) {
        line("at " + level.key(), displayText(level.value()));
    }
    productFiles();
}

void printDirs(const Json& data, std::ostream& out) {
    for (const char* name : {"factory", "user", "preferences"}) {
        const Json& folder = data[name];
        out << padded(name, 18) << folder["path"].get<std::string>() << "  ("
            << folder["source"].get<std::string>() << ")"
            << (folder["exists"].get<bool>() ? "" : "  [missing]") << "\n";
    }
    out << padded("installation root", 18) << data["installationRoot"].get<std::string>() << "\n";
}

void printCheck(const Json& data, std::ostream& out) {
    for (const Json& file : data["files"]) {
        const std::string name = file["file"].get<std::string>();
        if (file["ok"].get<bool>()) {
            out << name << ": ok (product " << file["product"].get<std::string>() << ")\n";
        }
        for (const Json& problem : file["problems"]) {
            out << name;
            if (problem.contains("line")) {
                out << ":" << problem["line"].get<long>() << ":" << problem["column"].get<long>();
            }
            out << ": " << problem["class"].get<std::string>() << ": "
                << problem["message"].get<std::string>() << "\n";
        }
        for (const Json& held : file.value("heldBack", Json::array())) {
            out << name << ": held back by product " << file["userFileOf"].get<std::string>()
                << ": " << heldBackText(held) << "\n";
        }
        for (const Json& copy : file.value("keptCopies", Json::array())) {
            out << name << ": kept copy of an unreadable version: " << copy.get<std::string>()
                << "\n";
        }
    }
}

void printChange(const std::string& command, const Json& data, std::ostream& out) {
    const Json& effective = data["effective"];
    if (command == "set") {
        out << data["path"].get<std::string>() << " = " << displayText(data["value"])
            << "  (set at level " << data["level"].get<std::string>() << ")\n";
        return;
    }
    out << data["path"].get<std::string>() << ": value at level "
        << data["level"].get<std::string>() << " removed; now " << displayText(effective["value"])
        << levelText(effective["level"]) << "\n";
}

void printImport(const Json& data, std::ostream& out) {
    out << "merged " << data["file"].get<std::string>() << " into "
        << data["into"].get<std::string>() << " at level " << data["level"].get<std::string>()
        << ": " << data["changed"].size() << " value(s) changed\n";
    for (const Json& change : data["changed"]) {
        out << "  " << change["path"].get<std::string>() << ": " << displayText(change["before"])
            << " -> " << displayText(change["after"]) << "\n";
    }
}

}  // namespace

void printText(const std::string& command, const CommandResult& result, std::ostream& out) {
    const Json& data = result.data;
    if (command == "products") {
        printProducts(data, out);
    } else if (command == "tree") {
        printTree(data, "", true, out);
    } else if (command == "get") {
        for (const std::string& line : plainLines(data["value"])) {
            out << line << "\n";
        }
    } else if (command == "describe") {
        printDescription(data, out);
    } else if (command == "dirs") {
        printDirs(data, out);
    } else if (command == "set" || command == "reset") {
        printChange(command, data, out);
    } else if (command == "export") {
        out << "exported " << joined(data["paths"]) << " at level "
            << data["level"].get<std::string>() << " to " << data["file"].get<std::string>()
            << "\n";
    } else if (command == "import") {
        printImport(data, out);
    } else if (command == "check") {
        printCheck(data, out);
    } else {
        out << data.dump(2) << "\n";
    }
}

}  // namespace tvsettings
