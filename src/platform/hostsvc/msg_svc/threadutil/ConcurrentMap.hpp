// hostsvc::msg_svc::threadutil::ConcurrentMap<K, V>: the interface of a map that many threads
// may use at once. Each operation is atomic on its own; there are no iterators, so a caller
// that wants to look at every entry takes a snapshot with copy().
#pragma once

#include <cstddef>
#include <map>
#include <type_traits>

namespace hostsvc {
namespace msg_svc {
namespace threadutil {

// K may be const-qualified (ConcurrentMap<const Id, V>): the map's keys never change once
// inserted, and key_type is the unqualified type that the operations take.
template <class K, class V>
class ConcurrentMap {
public:
    using key_type = std::remove_const_t<K>;
    using mapped_type = V;
    using snapshot_type = std::map<key_type, mapped_type>;

    virtual ~ConcurrentMap() = default;

    // Removes every entry.
    virtual void clear() = 0;

    // Removes the entry of `key`; whether there was one.
    virtual bool erase(const key_type& key) = 0;

    // Whether `key` has an entry; if so, its value is copied to `out` (otherwise `out` is left
    // as it was).
    virtual bool find(const key_type& key, mapped_type& out) const = 0;

    // The value of `key`, inserting `valueIfAbsent` first when there is none. An
    // implementation that inserts and looks up in two steps throws
    // std::logic_error("neither inserted nor found?") when another thread erased the entry
    // between the two.
    virtual mapped_type findOrInsert(const key_type& key, const mapped_type& valueIfAbsent) = 0;

    // Replaces the whole content by `content`, as one step for every other operation.
    virtual void assign(const snapshot_type& content) = 0;

    // A snapshot of the whole content, taken as one step.
    virtual snapshot_type copy() const = 0;

    // Inserts `value` under `key` unless `key` has an entry; whether it was inserted.
    virtual bool insert(const key_type& key, const mapped_type& value) = 0;

    // The number of entries.
    virtual std::size_t size() const = 0;

protected:
    ConcurrentMap() = default;
    ConcurrentMap(const ConcurrentMap&) = default;
    ConcurrentMap& operator=(const ConcurrentMap&) = default;
};

}  // namespace threadutil
}  // namespace msg_svc
}  // namespace hostsvc
