// The two exported data items that name the library's version and build date, with C
// linkage so that any loader can find them by name.
#pragma once

extern "C" {
// Four decimal numbers joined by points, e.g. "1.0.0.0".
extern const char* const treestore_version;
// Month abbreviation, day and year, as the compiler's __DATE__ gives it.
extern const char* const treestore_build_date;
}
