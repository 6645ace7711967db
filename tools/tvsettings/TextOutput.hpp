// The text form of each command's answer, for people: the same facts as the JSON document the
// command built, laid out per command.
#pragma once

#include "Commands.hpp"

#include <ostream>
#include <string>

namespace tvsettings {

void printText(const std::string& command, const CommandResult& result, std::ostream& out);

}  // namespace tvsettings
