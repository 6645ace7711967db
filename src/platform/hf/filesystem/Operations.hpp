// hf::filesystem operations on files and folders: existence, creation, removal, rename, copy,
// opening a C stream, and the tests of a path's form. Failures throw FsysExceptionBase or one
// of its two refinements (FilesystemError.hpp) unless an operation says otherwise.
#pragma once

#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/filesystem/Path.hpp>

#include <cstdint>
#include <cstdio>
#include <string>

namespace hf {
namespace filesystem {

// True when `path` names something that stat can reach (links followed). Never throws: a path
// that cannot be examined counts as absent.
bool exists(const upath& path);

// Creates the folder `path` and any missing parents.
// Throws FileExistsError when the folder is there already (a caller can tell "made now" from
// "was there" only by this), AccessDenied for want of permission or on a read-only file
// system, and FsysExceptionBase otherwise, e.g. when `path` or one of its parents is a file.
// Only one of several concurrent callers for the same folder returns normally.
void create_directories(const upath& path);

// Removes a file or an empty folder. False when nothing was there.
bool remove(const upath& path);

// Removes `path` and everything below it; the number of entries removed (0 when absent).
std::uintmax_t remove_all(const upath& path);

// POSIX rename: an existing target file is replaced atomically.
void rename(const upath& from, const upath& to);

enum class copy_option { fail_if_exists, overwrite_if_exists };

// Copies the regular file `from` to `to`. With fail_if_exists an existing `to` throws
// FileExistsError.
void copy_file(const upath& from, const upath& to, copy_option option);

// std::fopen of `path`; null on failure with errno set.
std::FILE* fopen(const upath& path, const char* mode);

namespace detail {

bool is_absolute(const upath& path);

// The text to hand to the system's file functions for `path`: its UTF-8 form.
std::string make_native_access_form(const upath& path);

}  // namespace detail

using detail::is_absolute;

}  // namespace filesystem
}  // namespace hf
