// hf::filesystem directory iteration: directory_iterator walks the entries of one folder
// (never "." or ".."), each a directory_entry with its path and its file_status.
#pragma once

#include <platform/hf/filesystem/FilesystemError.hpp>
#include <platform/hf/filesystem/Path.hpp>

#include <cstddef>
#include <filesystem>
#include <iterator>

namespace hf {
namespace filesystem {

// `symlink` is the type of a link itself; the statuses of this layer follow links as stat
// does, so they report the type of the link's target, or not_found for a dangling link.
enum class file_type { not_found, regular, directory, symlink, other };

class file_status {
public:
    explicit file_status(file_type type = file_type::not_found) : type_(type) {}
    file_type type() const noexcept { return type_; }

private:
    file_type type_;
};

inline bool is_directory(const file_status& status) {
    return status.type() == file_type::directory;
}
inline bool is_regular_file(const file_status& status) {
    return status.type() == file_type::regular;
}

class directory_entry {
public:
    directory_entry() = default;
    directory_entry(upath path, file_status status) : path_(std::move(path)), status_(status) {}

    const upath& path() const noexcept { return path_; }
    // Taken when the iterator reached the entry. An entry that stat cannot reach (dangling
    // link, loop, entry removed meanwhile) is not_found rather than a failure of the walk.
    file_status status() const noexcept { return status_; }

private:
    upath path_;
    file_status status_;
};

// An input iterator; copies share their position. The default-constructed iterator is the
// end. Opening a folder that cannot be read, and a failure while reading it, throw
// FsysExceptionBase (AccessDenied where that is the cause).
class directory_iterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = directory_entry;
    using difference_type = std::ptrdiff_t;
    using pointer = const directory_entry*;
    using reference = const directory_entry&;

    directory_iterator() = default;
    explicit directory_iterator(const upath& folder);

    reference operator*() const { return entry_; }
    pointer operator->() const { return &entry_; }
    directory_iterator& operator++();

    friend bool operator==(const directory_iterator& a, const directory_iterator& b) {
        return a.iterator_ == b.iterator_;
    }
    friend bool operator!=(const directory_iterator& a, const directory_iterator& b) {
        return !(a == b);
    }

private:
    void loadEntry();

    upath folder_;
    std::filesystem::directory_iterator iterator_;
    directory_entry entry_;
};

// For range-for over a folder.
inline directory_iterator begin(directory_iterator it) {
    return it;
}
inline directory_iterator end(const directory_iterator&) {
    return directory_iterator();
}

}  // namespace filesystem
}  // namespace hf
