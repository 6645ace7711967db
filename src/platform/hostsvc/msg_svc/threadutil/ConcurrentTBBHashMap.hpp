// hostsvc::msg_svc::threadutil::ConcurrentTBBHashMap<Interface>: the implementation of a
// ConcurrentMap interface over tbb::concurrent_hash_map, e.g.
// ConcurrentTBBHashMap<ConcurrentMap<const InstanceID, boost::shared_ptr<State>>>.
#pragma once

#include <platform/hostsvc/msg_svc/threadutil/ConcurrentMap.hpp>

#include <oneapi/tbb/concurrent_hash_map.h>
#include <boost/thread/locks.hpp>
#include <boost/thread/shared_mutex.hpp>

#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

namespace hostsvc {
namespace msg_svc {
namespace threadutil {

// Locking: `mutex_` is the only lock. Single-entry operations (find, insert, findOrInsert,
// erase, size) take it shared, because the TBB table is safe for those on its own; whole-table
// operations (assign, copy, clear) take it exclusive, because the TBB table's iteration and
// wholesale changes are not. Keys hash through std::hash<key_type>: TBB 2021's default
// tbb_hash_compare uses std::hash and std::equal_to.
//
// Values leave the map outside the lock: erase, clear and assign hand the old values to a
// local that dies after the guard, so a value whose destructor uses this map again (a state
// object that erases its siblings, say) cannot deadlock on `mutex_`.
template <class Interface>
class ConcurrentTBBHashMap final : public Interface {
public:
    using key_type = typename Interface::key_type;
    using mapped_type = typename Interface::mapped_type;
    using snapshot_type = typename Interface::snapshot_type;

    ConcurrentTBBHashMap() = default;
    ConcurrentTBBHashMap(const ConcurrentTBBHashMap&) = delete;
    ConcurrentTBBHashMap& operator=(const ConcurrentTBBHashMap&) = delete;

    void clear() override {
        Table old;
        boost::unique_lock<boost::shared_mutex> lock(mutex_);
        table_.swap(old);
    }

    bool erase(const key_type& key) override {
        std::optional<mapped_type> removed;  // destroyed after the guard below
        boost::shared_lock<boost::shared_mutex> lock(mutex_);
        typename Table::accessor entry;
        if (!table_.find(entry, key)) {
            return false;
        }
        removed.emplace(entry->second);
        return table_.erase(entry);
    }

    bool find(const key_type& key, mapped_type& out) const override {
        boost::shared_lock<boost::shared_mutex> lock(mutex_);
        typename Table::const_accessor entry;
        if (!table_.find(entry, key)) {
            return false;
        }
        out = entry->second;
        return true;
    }

    // One TBB insert with an accessor both inserts and finds, so the entry cannot vanish
    // between the two and the "neither" failure of the interface does not arise here; the
    // check stays as the interface's documented answer should TBB ever hand back no entry.
    mapped_type findOrInsert(const key_type& key, const mapped_type& valueIfAbsent) override {
        boost::shared_lock<boost::shared_mutex> lock(mutex_);
        typename Table::const_accessor entry;
        table_.insert(entry, typename Table::value_type(key, valueIfAbsent));
        if (entry.empty()) {
            throw std::logic_error("neither inserted nor found?");
        }
        return entry->second;
    }

    void assign(const snapshot_type& content) override {
        Table replacement(content.begin(), content.end());
        {
            boost::unique_lock<boost::shared_mutex> lock(mutex_);
            table_.swap(replacement);
        }
        // `replacement` now holds the old content and dies here, outside the lock.
    }

    snapshot_type copy() const override {
        boost::unique_lock<boost::shared_mutex> lock(mutex_);
        return snapshot_type(table_.begin(), table_.end());
    }

    bool insert(const key_type& key, const mapped_type& value) override {
        boost::shared_lock<boost::shared_mutex> lock(mutex_);
        return table_.insert(typename Table::value_type(key, value));
    }

    std::size_t size() const override {
        boost::shared_lock<boost::shared_mutex> lock(mutex_);
        return table_.size();
    }

private:
    // The standard allocator rather than TBB's pool: entries live as long as the process in
    // some maps, and memory checkers must see the pointers they hold.
    using Table = tbb::concurrent_hash_map<key_type, mapped_type, tbb::tbb_hash_compare<key_type>,
                                           std::allocator<std::pair<const key_type, mapped_type>>>;

    mutable boost::shared_mutex mutex_;
    Table table_;
};

}  // namespace threadutil
}  // namespace msg_svc
}  // namespace hostsvc
