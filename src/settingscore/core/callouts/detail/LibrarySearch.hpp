// The search for the shared library of a package: the package's last name component with the
// platform's suffix, tried as it is, with "libtv" before it, and with "lib" before it.
#pragma once

#include <string>
#include <vector>

namespace settings {
namespace core {
namespace detail {

// The three file names, in the order they are tried; a directory part of the package name is
// dropped. "tools/foo" gives "foo.so", "libtvfoo.so", "libfoo.so".
std::vector<std::string> libraryFileNames(const std::string& packageName);

// The handle of the first of the three that loads. The library stays loaded for good.
// Throws: exception::ErrorLoadingLibrary with the package name and the loader's text of the
// last attempt.
void* buildLibraryName(const std::string& packageName);

}  // namespace detail
}  // namespace core
}  // namespace settings
