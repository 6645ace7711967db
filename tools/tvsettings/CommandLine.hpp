// The command line of tvsettings: global options, one subcommand and its arguments, read into
// a Request. Help, version and usage failures end the run here.
#pragma once

#include "Commands.hpp"

namespace tvsettings {

struct ParsedCommandLine {
    // False when the command line was answered already (help, version) or refused; exitCode
    // then says how the process ends.
    bool run = false;
    int exitCode = 0;
    Request request;
};

// Prints help and version to stdout, a refused command line to stderr (as JSON when --json is
// among the arguments).
ParsedCommandLine parseCommandLine(int argc, char** argv);

}  // namespace tvsettings
