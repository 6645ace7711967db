// The temporary folders that saves killed half way left behind.
#pragma once

#include <platform/hf/filesystem/FileSystem.hpp>

#include <chrono>

namespace settings {
namespace core {
namespace detail {

// How old a "temp<id>" folder must be before a save sweeps it: a live save's folder is
// seconds old at most.
constexpr std::chrono::seconds leftoverAge(60);

// Removes the "temp<id>" folders in `folder` that were last changed more than leftoverAge ago,
// with what they hold. A ".previous" file in one whose target is missing (a save killed after
// it moved the target aside) is first put back as the target: it is the last whole version.
// Nothing else is ever removed. Never throws: what cannot be swept stays for the next save.
void sweepLeftovers(hf::filesystem::FileSystem& files, const hf::filesystem::upath& folder);

// Whether `name` is the name of a save's temporary folder: "temp" and 32 hexadecimal digits.
bool isTemporaryFolderName(const std::string& name);

}  // namespace detail
}  // namespace core
}  // namespace settings
