// How tvsettings reports a failure: the exit code of its family, the name of its class, its
// message and the details its accessors hold, as text or as JSON on stderr. The tool's own
// refusals (an unknown path, a text that is no value of the key's type...) travel as
// ToolFailure and are reported the same way.
#pragma once

#include <nlohmann/json.hpp>

#include <exception>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tvsettings {

// The process's exit codes. Every failure class maps to exactly one of the last three.
enum class ExitCode : int {
    Success = 0,
    Usage = 1,    // the request itself is wrong: command, option, path, level, value count
    Refused = 2,  // a value or a file refused by validation or by a read-only key or level
    Storage = 3,  // files, folders, libraries, and anything the tool does not know
};

using Details = std::vector<std::pair<std::string, std::string>>;

class ToolFailure : public std::runtime_error {
public:
    ToolFailure(ExitCode code, std::string className, const std::string& message,
                Details details = {});

    ExitCode exitCode() const { return code_; }
    const std::string& className() const { return className_; }
    const Details& details() const { return details_; }

private:
    ExitCode code_;
    std::string className_;
    Details details_;
};

struct FailureReport {
    ExitCode exitCode = ExitCode::Storage;
    std::string className;
    std::string message;
    Details details;
};

// A position in the text of the library's file reader: "LineNum=<line>  ColNum=<line digits>
// <column digits>  <message>", the column field carrying the line's digits before the
// column's. `found` is false for any other text, which is then the message.
struct ReaderPosition {
    bool found = false;
    long line = 0;
    long column = 0;
    std::string message;
};
ReaderPosition parseReaderPosition(const std::string& text);

// Names the failure `failure` holds and gathers what it carries. Never throws.
FailureReport describeFailure(const std::exception_ptr& failure);

nlohmann::ordered_json toJson(const FailureReport& report);

// "tvsettings: <Class>: <message>" and one indented "<name>: <value>" line per detail, or with
// `asJson` one JSON document {"error": ...}.
void printFailure(const FailureReport& report, bool asJson, std::ostream& out);

}  // namespace tvsettings
