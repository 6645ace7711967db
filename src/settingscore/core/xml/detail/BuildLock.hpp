// settings::core::detail::BuildLock: the tree lock of the nodes that one parse builds.
//
// The nodes that a settings file's elements build belong to the parsing thread alone: no other
// thread can reach them until the finished tree is merged into a live one, under the root
// mutex, which orders everything done here before any other thread's reads. Meanwhile a mutex
// of the parse's own, held exclusively (from upgrade, as the tree's mutex always is) for the
// parser's whole life, stands for the tree lock: the internal operations get the lock witness
// they require, and a file of many keys takes no lock at all per key. Exclusive is safe here
// only because the mutex is private: a validator that an attach runs may read the tree, and
// it takes the process's mutexes, never this one.
#pragma once

#include <settingscore/core/detail/TreeLock.hpp>

#include <boost/thread/shared_mutex.hpp>

namespace settings {
namespace core {
namespace detail {

class BuildLock {
public:
    BuildLock() : upgrade_(mutex_), exclusive_(upgrade_) {}
    BuildLock(const BuildLock&) = delete;
    BuildLock& operator=(const BuildLock&) = delete;

    UniqueFromUpgrade& get() { return exclusive_; }

private:
    // In this order: each is released before what it was taken from.
    boost::shared_mutex mutex_;
    UpgradeLock upgrade_;
    UniqueFromUpgrade exclusive_;
};

}  // namespace detail
}  // namespace core
}  // namespace settings
