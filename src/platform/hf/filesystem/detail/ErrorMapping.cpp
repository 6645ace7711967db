#include <platform/hf/filesystem/detail/ErrorMapping.hpp>

#include <platform/hf/filesystem/FilesystemError.hpp>

namespace hf {
namespace filesystem {
namespace detail {

void throwFilesystemError(const char* operation, const upath& path1, const upath& path2,
                          std::error_code code) {
    // Comparing with std::errc goes through the error condition, so codes of the system and of
    // the generic category are treated alike.
    if (code == std::errc::permission_denied || code == std::errc::operation_not_permitted ||
        code == std::errc::read_only_file_system) {
        throw AccessDenied(operation, path1, path2, code);
    }
    if (code == std::errc::file_exists) {
        throw FileExistsError(operation, path1, path2, code);
    }
    throw FsysExceptionBase(operation, path1, path2, code);
}

}  // namespace detail
}  // namespace filesystem
}  // namespace hf
