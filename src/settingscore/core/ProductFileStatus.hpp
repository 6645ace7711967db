// settings::core::ProductFileStatus: what a product's files showed this process that its values
// alone do not tell. A value of a user file that failed its key's checks at load is held back:
// not served (reads fall through to the next level) but kept, and written back unchanged by
// every save, until that key at that level is set, reset or removed. A user file that could not
// be read at all was copied aside before anything replaced it. A save that could not be done
// is remembered until a save of that product at that level succeeds.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace settings {
namespace core {

struct HeldBackValue {
    std::string path;     // full name of the key (or group) as the file has it, product first
    std::string level;    // the level of the file
    std::wstring file;    // the file it was read from
    std::wstring reason;  // why the tree could not take it
};

struct SaveFailure {
    std::string level;
    std::wstring file;  // the file that could not be written
    std::string step;   // what failed, e.g. "write the temporary file"
    std::string error;  // the system's error text
    std::chrono::system_clock::time_point when;
};

struct ProductFileStatus {
    std::string product;
    std::vector<HeldBackValue> heldBack;    // by path
    std::vector<std::wstring> keptCopies;   // copies of unreadable user files, oldest first
    std::vector<SaveFailure> saveFailures;  // the last failed save of each level, until one works
};

}  // namespace core
}  // namespace settings
