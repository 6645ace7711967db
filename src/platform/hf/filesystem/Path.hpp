// hf::filesystem::upath: the host's path value, and hf::filesystem::upath_constant: the
// separator and the names of the current and parent directory.
//
// A upath keeps a std::filesystem::path whose narrow form is UTF-8 whatever the C locale says;
// wide text is converted with hf::i18n, never through the locale's codecvt.
#pragma once

#include <filesystem>
#include <string>
#include <utility>

namespace hf {
namespace filesystem {

namespace upath_constant {

// Arrays rather than objects with constructors, so that other static initialisers may use them.
inline constexpr const wchar_t PATHNAME_SEPARATOR[] = L"/";  // every separator character
inline constexpr const wchar_t CURRENT_DIRECTORY[] = L".";
inline constexpr const wchar_t PARENT_DIRECTORY[] = L"..";

}  // namespace upath_constant

class upath {
public:
    upath() = default;
    // Implicit on purpose: the host's callers pass text wherever a path is wanted.
    upath(const std::wstring& path);
    upath(const wchar_t* path);
    upath(const std::string& utf8);
    upath(const char* utf8);
    // The bridge to and from std::filesystem for code of this layer and its tests.
    explicit upath(std::filesystem::path path) : path_(std::move(path)) {}
    const std::filesystem::path& native_path() const noexcept { return path_; }

    // The host's concatenation: `rhs` is joined to this path with exactly one separator
    // between them. Unlike std::filesystem, an absolute `rhs` does not replace the left side,
    // and an empty `rhs` leaves the path as it was.
    upath& operator/=(const upath& rhs);
    friend upath operator/(upath lhs, const upath& rhs) { return lhs /= rhs; }

    std::wstring wstring() const;
    const std::string& string() const noexcept { return path_.native(); }  // UTF-8

    upath filename() const;
    upath parent_path() const;
    // The file name from its last '.' on (".settings" for "a.settings" and for ".settings");
    // empty when the name has no '.' or is "." or "..".
    upath extension() const;
    bool empty() const noexcept { return path_.empty(); }

    friend bool operator==(const upath& a, const upath& b) { return a.path_ == b.path_; }
    friend bool operator!=(const upath& a, const upath& b) { return !(a == b); }
    friend bool operator<(const upath& a, const upath& b) { return a.path_ < b.path_; }

private:
    std::filesystem::path path_;
};

}  // namespace filesystem
}  // namespace hf
