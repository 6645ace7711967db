// hf::filesystem::get_install_path: the installation root, the parent of the folder that holds
// the platform library (<root>/lib), and a process-wide override of it for tests and for
// programs that embed the libraries elsewhere.
#pragma once

#include <platform/hf/filesystem/Path.hpp>

namespace hf {
namespace filesystem {

// The override when one is set, otherwise the folder above the one holding this library.
// Empty only if the library's own file cannot be found, which the dynamic loader always knows.
upath get_install_path();

// Replaces the answer of get_install_path for the whole process; an empty path restores the
// computed root.
void set_install_path_override(const upath& root);

}  // namespace filesystem
}  // namespace hf
