#include <platform/hf/filesystem/DirectoryIterator.hpp>

#include <platform/hf/filesystem/detail/ErrorMapping.hpp>

#include <system_error>

namespace hf {
namespace filesystem {
namespace {

namespace stdfs = std::filesystem;

file_status statusOf(const stdfs::directory_entry& entry) {
    std::error_code error;
    const stdfs::file_status status = entry.status(error);  // follows links
    if (error) {
        return file_status(file_type::not_found);
    }
    switch (status.type()) {
        case stdfs::file_type::regular:
            return file_status(file_type::regular);
        case stdfs::file_type::directory:
            return file_status(file_type::directory);
        case stdfs::file_type::symlink:
            return file_status(file_type::symlink);
        case stdfs::file_type::not_found:
        case stdfs::file_type::none:
            return file_status(file_type::not_found);
        default:
            return file_status(file_type::other);
    }
}

}  // namespace

directory_iterator::directory_iterator(const upath& folder) : folder_(folder) {
    std::error_code error;
    iterator_ = stdfs::directory_iterator(folder.native_path(), error);
    if (error) {
        detail::throwFilesystemError("directory_iterator", folder, error);
    }
    loadEntry();
}

directory_iterator& directory_iterator::operator++() {
    std::error_code error;
    iterator_.increment(error);
    if (error) {
        detail::throwFilesystemError("directory_iterator", folder_, error);
    }
    loadEntry();
    return *this;
}

void directory_iterator::loadEntry() {
    if (iterator_ == stdfs::directory_iterator()) {
        entry_ = directory_entry();
        return;
    }
    entry_ = directory_entry(upath(iterator_->path()), statusOf(*iterator_));
}

}  // namespace filesystem
}  // namespace hf
