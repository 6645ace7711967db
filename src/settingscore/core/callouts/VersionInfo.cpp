#include <settingscore/core/callouts/VersionInfo.hpp>

#include <settingscore/Version.hpp>

extern "C" {
const char* const treestore_version = SETTINGSCORE_VERSION;
const char* const treestore_build_date = __DATE__;
}
