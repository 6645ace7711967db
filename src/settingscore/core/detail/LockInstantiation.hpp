// Internal tree operations are templates over the held lock's type, defined in the .cpp files
// that own them and instantiated there for every tree lock type with this list.
#pragma once

#include <settingscore/core/detail/TreeLock.hpp>

#define SETTINGSCORE_FOR_EACH_TREE_LOCK(X)         \
    X(::settings::core::detail::SharedLock)        \
    X(::settings::core::detail::UpgradeLock)       \
    X(::settings::core::detail::UniqueFromUpgrade) \
    X(::settings::core::detail::ReadAccess)
