#include <platform/hf/filesystem/InstallPath.hpp>

#include <filesystem>
#include <mutex>
#include <system_error>

#include <dlfcn.h>

namespace hf {
namespace filesystem {
namespace {

std::mutex& overrideMutex() {
    static std::mutex mutex;
    return mutex;
}

upath& installPathOverride() {
    static upath root;
    return root;
}

// The loader's name of the file this function lives in, made absolute. Symbolic links are
// left as they are: a lib folder linked from elsewhere belongs to the root it is linked into.
upath computeInstallPath() {
    Dl_info info{};
    if (::dladdr(reinterpret_cast<void*>(&computeInstallPath), &info) == 0 || !info.dli_fname) {
        return upath();
    }
    std::error_code ignored;
    const std::filesystem::path library =
        std::filesystem::absolute(info.dli_fname, ignored).lexically_normal();
    return upath(library.parent_path().parent_path());
}

}  // namespace

upath get_install_path() {
    {
        std::lock_guard<std::mutex> lock(overrideMutex());
        if (!installPathOverride().empty()) {
            return installPathOverride();
        }
    }
    // The library does not move while it is loaded, so the root is found once.
    static const upath computed = computeInstallPath();
    return computed;
}

void set_install_path_override(const upath& root) {
    std::lock_guard<std::mutex> lock(overrideMutex());
    installPathOverride() = root;
}

}  // namespace filesystem
}  // namespace hf
