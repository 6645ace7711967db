// Turns a failed system call of hf::filesystem into the exception class that callers tell
// apart: AccessDenied, FileExistsError, or FsysExceptionBase for everything else.
#pragma once

#include <platform/hf/filesystem/Path.hpp>

#include <cerrno>
#include <system_error>

namespace hf {
namespace filesystem {
namespace detail {

[[noreturn]] void throwFilesystemError(const char* operation, const upath& path1,
                                       const upath& path2, std::error_code code);

[[noreturn]] inline void throwFilesystemError(const char* operation, const upath& path,
                                              std::error_code code) {
    throwFilesystemError(operation, path, upath(), code);
}

// The error of the last failed call, taken from errno.
inline std::error_code lastSystemError() {
    return {errno, std::generic_category()};
}

}  // namespace detail
}  // namespace filesystem
}  // namespace hf
