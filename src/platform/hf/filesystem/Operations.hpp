// hf::filesystem operations on a path's form. Files and folders themselves are reached through
// the file system in force (FileSystem.hpp).
#pragma once

#include <platform/hf/filesystem/Path.hpp>

#include <string>

namespace hf {
namespace filesystem {

namespace detail {

bool is_absolute(const upath& path);

// The text to hand to the system's file functions for `path`: its UTF-8 form.
std::string make_native_access_form(const upath& path);

}  // namespace detail

using detail::is_absolute;

}  // namespace filesystem
}  // namespace hf
