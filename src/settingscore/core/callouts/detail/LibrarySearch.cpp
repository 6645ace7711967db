#include <settingscore/core/callouts/detail/LibrarySearch.hpp>

#include <platform/hlu/hlu.h>
#include <platform/hf/i18n/Conversion.hpp>
#include <settingscore/core/exception/CalloutExceptions.hpp>

#include <boost/filesystem/path.hpp>

namespace settings {
namespace core {
namespace detail {

namespace {
constexpr const char* librarySuffix = ".so";
}  // namespace

std::vector<std::string> libraryFileNames(const std::string& packageName) {
    const std::string base =
        boost::filesystem::path(packageName).filename().string() + librarySuffix;
    return {base, "libtv" + base, "lib" + base};
}

void* buildLibraryName(const std::string& packageName) {
    for (const std::string& name : libraryFileNames(packageName)) {
        int status = -1;
        void* handle = hluLoadLibrary(name.c_str(), &status);
        if (status == 0) {
            return handle;
        }
    }
    // hluLastLibraryError is per thread, so this is the text of the third attempt above.
    throw exception::ErrorLoadingLibrary(packageName, hf::i18n::to_ustring(hluLastLibraryError()));
}

}  // namespace detail
}  // namespace core
}  // namespace settings
