#include <platform/hf/filesystem/Operations.hpp>

#include <platform/hf/filesystem/detail/ErrorMapping.hpp>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <sys/stat.h>
#include <sys/types.h>

namespace hf {
namespace filesystem {
namespace {

namespace stdfs = std::filesystem;

bool isDirectory(const std::string& path) {
    struct stat info;
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// "a/b///" -> "a/b"; a path of separators only stays "/", the root.
std::string withoutTrailingSeparators(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

// Makes sure `dir` is a folder, creating it and its parents as needed; 0 or the errno of the
// step that failed. An existing folder is success here: only the leaf of create_directories
// reports it.
int ensureDirectory(const std::string& dir) {
    if (::mkdir(dir.c_str(), 0777) == 0) {
        return 0;
    }
    int error = errno;
    if (error == ENOENT) {
        const std::string parent = stdfs::path(dir).parent_path().native();
        if (parent.empty() || parent == dir) {
            return ENOENT;
        }
        if (const int parentError = ensureDirectory(withoutTrailingSeparators(parent))) {
            return parentError;
        }
        if (::mkdir(dir.c_str(), 0777) == 0) {
            return 0;
        }
        error = errno;
    }
    if (error == EEXIST) {
        // Another thread or process may have made it meanwhile; that is fine for a parent.
        return isDirectory(dir) ? 0 : ENOTDIR;
    }
    return error;
}

}  // namespace

bool exists(const upath& path) {
    std::error_code ignored;
    return stdfs::exists(path.native_path(), ignored);
}

void create_directories(const upath& path) {
    const std::string leaf = withoutTrailingSeparators(path.string());
    if (leaf.empty()) {
        detail::throwFilesystemError("create_directories", path,
                                     std::make_error_code(std::errc::no_such_file_or_directory));
    }
    // The leaf is made by one mkdir of its own, so its EEXIST tells "was there" exactly, even
    // when several callers race for it.
    int error = 0;
    if (::mkdir(leaf.c_str(), 0777) != 0) {
        error = errno;
        if (error == ENOENT) {
            const std::string parent = stdfs::path(leaf).parent_path().native();
            error = parent.empty() ? ENOENT : ensureDirectory(withoutTrailingSeparators(parent));
            if (error == 0) {
                error = ::mkdir(leaf.c_str(), 0777) == 0 ? 0 : errno;
            }
        }
    }
    if (error == 0) {
        return;
    }
    if (error == EEXIST) {
        if (isDirectory(leaf)) {
            throw FileExistsError("create_directories", path,
                                  std::make_error_code(std::errc::file_exists));
        }
        throw FsysExceptionBase("create_directories", path,
                                std::make_error_code(std::errc::not_a_directory));
    }
    detail::throwFilesystemError("create_directories", path, {error, std::generic_category()});
}

bool remove(const upath& path) {
    std::error_code error;
    const bool removed = stdfs::remove(path.native_path(), error);
    if (error) {
        detail::throwFilesystemError("remove", path, error);
    }
    return removed;
}

std::uintmax_t remove_all(const upath& path) {
    std::error_code error;
    const std::uintmax_t count = stdfs::remove_all(path.native_path(), error);
    if (error) {
        detail::throwFilesystemError("remove_all", path, error);
    }
    return count;
}

void rename(const upath& from, const upath& to) {
    if (std::rename(from.string().c_str(), to.string().c_str()) != 0) {
        detail::throwFilesystemError("rename", from, to, detail::lastSystemError());
    }
}

void copy_file(const upath& from, const upath& to, copy_option option) {
    const stdfs::copy_options options = option == copy_option::overwrite_if_exists
                                            ? stdfs::copy_options::overwrite_existing
                                            : stdfs::copy_options::none;
    std::error_code error;
    stdfs::copy_file(from.native_path(), to.native_path(), options, error);
    if (error) {
        detail::throwFilesystemError("copy_file", from, to, error);
    }
}

std::FILE* fopen(const upath& path, const char* mode) {
    if (!mode) {
        errno = EINVAL;
        return nullptr;
    }
    return std::fopen(detail::make_native_access_form(path).c_str(), mode);
}

namespace detail {

bool is_absolute(const upath& path) {
    return path.native_path().is_absolute();
}

std::string make_native_access_form(const upath& path) {
    return path.string();
}

}  // namespace detail

}  // namespace filesystem
}  // namespace hf
