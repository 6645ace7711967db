#include <platform/hf/filesystem/Path.hpp>

#include <platform/hf/i18n/Conversion.hpp>

namespace hf {
namespace filesystem {
namespace {

bool isSeparator(char c) {
    // PATHNAME_SEPARATOR is ASCII only, so a byte comparison is exact on UTF-8 text.
    for (const wchar_t* s = upath_constant::PATHNAME_SEPARATOR; *s; ++s) {
        if (static_cast<wchar_t>(static_cast<unsigned char>(c)) == *s) {
            return true;
        }
    }
    return false;
}

}  // namespace

upath::upath(const std::wstring& path) : path_(hf::i18n::to_string(path)) {}

upath::upath(const wchar_t* path) : upath(std::wstring(path ? path : L"")) {}

upath::upath(const std::string& utf8) : path_(utf8) {}

upath::upath(const char* utf8) : path_(std::string(utf8 ? utf8 : "")) {}

upath& upath::operator/=(const upath& rhs) {
    const std::string& right = rhs.string();
    if (right.empty()) {
        return *this;
    }
    std::string joined = string();
    if (joined.empty()) {
        path_ = right;
        return *this;
    }
    std::size_t start = 0;
    while (start < right.size() && isSeparator(right[start])) {
        ++start;
    }
    if (!isSeparator(joined.back())) {
        joined += static_cast<char>(upath_constant::PATHNAME_SEPARATOR[0]);
    }
    joined.append(right, start, std::string::npos);
    path_ = std::move(joined);
    return *this;
}

std::wstring upath::wstring() const {
    return hf::i18n::to_ustring(string());
}

upath upath::filename() const {
    return upath(path_.filename());
}

upath upath::parent_path() const {
    return upath(path_.parent_path());
}

upath upath::extension() const {
    const std::string name = path_.filename().native();
    if (name == "." || name == "..") {
        return upath();
    }
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? upath() : upath(name.substr(dot));
}

}  // namespace filesystem
}  // namespace hf
