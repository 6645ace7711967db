// The one lock of every settings tree in the process and the lock types that internal tree
// operations take as their first argument.
//
// Order of the process's locks, outer first: stateMgrRegistryMutex, a root state's stateMutex_,
// the root mutex (this file), the Java validator mutex, the mutex inside rootStates, a root's
// eventQueueMutex_. prefDirMutex stands beside them and covers only file work.
//
// The root mutex is taken shared to read, in upgrade mode to check and decide, and exclusive
// only from upgrade (UniqueFromUpgrade) for the few instructions that change a map. It is not
// recursive: code that holds it calls only the internal, lock-taking forms of the operations.
#pragma once

#include <boost/thread/locks.hpp>
#include <boost/thread/shared_mutex.hpp>

#include <cassert>
#include <type_traits>

namespace settings {
namespace core {
namespace detail {

using RootMutex = boost::shared_mutex;
using SharedLock = boost::shared_lock<RootMutex>;
using UpgradeLock = boost::upgrade_lock<RootMutex>;
using UniqueFromUpgrade = boost::upgrade_to_unique_lock<RootMutex>;

// The process-wide root mutex (Settings::getTheRootMutex, which only the tree's own code may
// reach).
RootMutex& rootMutex();

// True for the lock types that give read access to the tree: an internal operation that reads
// accepts any of them, one that decides needs at least UpgradeLock.
template <class Lock>
struct IsTreeLock : std::integral_constant<bool, std::is_same<Lock, SharedLock>::value ||
                                                     std::is_same<Lock, UpgradeLock>::value ||
                                                     std::is_same<Lock, UniqueFromUpgrade>::value> {
};

template <class Lock>
struct IsUpgradeOrStronger
    : std::integral_constant<bool, std::is_same<Lock, UpgradeLock>::value ||
                                       std::is_same<Lock, UniqueFromUpgrade>::value> {};

// The first statement of every internal operation: the type says a lock of the tree is held,
// and in debug builds the object says it still owns it.
template <class Lock>
inline void requireTreeLock(const Lock& lock) {
    static_assert(IsTreeLock<Lock>::value,
                  "internal tree operations need a lock of the root mutex");
    assert(lock.owns_lock());
    (void)lock;
}

template <class Lock>
inline void requireUpgradeLock(const Lock& lock) {
    static_assert(IsUpgradeOrStronger<Lock>::value,
                  "this operation decides on a change and needs an upgrade lock");
    assert(lock.owns_lock());
    (void)lock;
}

class ReadAccess;

template <>
struct IsTreeLock<ReadAccess> : std::true_type {};

// What a callee that only reads needs to know of its caller's lock: that there is one. Built
// from any tree lock the caller holds, so that function objects with a fixed signature (the
// save hook) can still demand proof of a held lock.
class ReadAccess {
public:
    template <class Lock, class = std::enable_if_t<IsTreeLock<Lock>::value>>
    ReadAccess(const Lock& lock) {  // NOLINT: implicit on purpose, from any held tree lock
        requireTreeLock(lock);
    }
    ReadAccess(const ReadAccess&) = default;
    bool owns_lock() const { return true; }
};

}  // namespace detail
}  // namespace core
}  // namespace settings
