// tvsettings: reads and changes the settings tree of TOLVAN from the command line, through the
// library's public interface only. See docs/tvsettings.md.
#include "CommandLine.hpp"
#include "Commands.hpp"
#include "Failure.hpp"
#include "TextOutput.hpp"

#include <iostream>

int main(int argc, char** argv) {
    using namespace tvsettings;
    const ParsedCommandLine parsed = parseCommandLine(argc, argv);
    if (!parsed.run) {
        return parsed.exitCode;
    }
    const Request& request = parsed.request;
    try {
        const CommandResult result = runCommand(request);
        if (request.json) {
            std::cout << result.data.dump(2, ' ', false,
                                          nlohmann::ordered_json::error_handler_t::replace)
                      << "\n";
        } else {
            printText(request.command, result, std::cout);
        }
        for (const std::string& note : result.notes) {
            std::cerr << "tvsettings: " << note << "\n";
        }
        std::cout.flush();
        return static_cast<int>(result.exitCode);
    } catch (...) {
        std::cout.flush();
        const FailureReport report = describeFailure(std::current_exception());
        printFailure(report, request.json, std::cerr);
        return static_cast<int>(report.exitCode);
    }
}
