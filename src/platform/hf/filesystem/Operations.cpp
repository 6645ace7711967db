#include <platform/hf/filesystem/Operations.hpp>

namespace hf {
namespace filesystem {
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
