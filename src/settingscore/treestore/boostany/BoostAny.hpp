// The whole value layer: the supported types and their variant, get<T>, equality and support,
// the variant conversions, the type names and codes, the layer's exceptions, and the type
// export hook.
#pragma once

#include <settingscore/treestore/boostany/Equality.hpp>
#include <settingscore/treestore/boostany/Exceptions.hpp>
#include <settingscore/treestore/boostany/Get.hpp>
#include <settingscore/treestore/boostany/SupportedTypes.hpp>
#include <settingscore/treestore/boostany/TypeNames.hpp>
#include <settingscore/treestore/boostany/VariantConversion.hpp>
#include <settingscore/treestore/boostany/detail/TypeExportHook.hpp>
