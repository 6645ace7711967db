// settings::core::detail::BuildLock: the tree lock of the nodes that one parse builds.
//
// The nodes that a settings file's elements build belong to the parsing thread alone: no other
// thread can reach them until the finished tree is merged into a live one, under the root
// mutex, which orders everything done here before any other thread's reads. Meanwhile a mutex
// of the parse's own, held in upgrade mode for the parser's whole life, stands for the tree
// lock: the internal operations get the lock they require (exclusive holds are taken from it
// as usual), and a file of many keys does not take the process's root mutex and the type-cache
// mutex several times per key.
#pragma once

#include <settingscore/core/detail/TreeLock.hpp>

#include <boost/thread/shared_mutex.hpp>

namespace settings {
namespace core {
namespace detail {

class BuildLock {
public:
    BuildLock() : lock_(mutex_) {}
    BuildLock(const BuildLock&) = delete;
    BuildLock& operator=(const BuildLock&) = delete;

    UpgradeLock& get() { return lock_; }

private:
    boost::shared_mutex mutex_;
    UpgradeLock lock_;  // after mutex_: released before it is destroyed
};

}  // namespace detail
}  // namespace core
}  // namespace settings
