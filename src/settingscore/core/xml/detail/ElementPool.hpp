// settings::core::detail::ElementPool: the memory of the objects that stand for one parse's
// open elements.
//
// Elements open and close in nesting order, so only the objects of the open chain are alive at
// any moment, and a file of many keys makes and drops the same few kinds of object over and
// over. The pool keeps every freed block on a list per size and hands it out again: after the
// first key a parse allocates nothing for its element objects, and the blocks it reuses are
// the ones it touched last. The objects stay shared pointers (allocate_shared with
// PoolAllocator); only where their memory comes from changes.
//
// One pool serves one thread (the parser's). Every object made from it must be gone before the
// pool is: the handler that owns the pool holds the open chain and drops it first.
#pragma once

#include <array>
#include <cstddef>
#include <new>

namespace settings {
namespace core {
namespace detail {

class ElementPool {
public:
    ElementPool() = default;
    ElementPool(const ElementPool&) = delete;
    ElementPool& operator=(const ElementPool&) = delete;
    ~ElementPool();

    void* allocate(std::size_t bytes);
    void deallocate(void* block, std::size_t bytes) noexcept;

private:
    // Sizes are rounded up to this; blocks beyond largestPooled come from and go back to the
    // global heap directly.
    static constexpr std::size_t granularity = 16;
    static constexpr std::size_t largestPooled = 512;

    struct FreeBlock {
        FreeBlock* next;
    };

    // At least 1: every pooled block must hold a FreeBlock once freed.
    static std::size_t sizeClass(std::size_t bytes) {
        return bytes == 0 ? 1 : (bytes + granularity - 1) / granularity;
    }

    std::array<FreeBlock*, largestPooled / granularity + 1> freeLists_{};
};

// A standard allocator over an ElementPool, for boost::allocate_shared.
template <class T>
class PoolAllocator {
public:
    using value_type = T;

    explicit PoolAllocator(ElementPool& pool) noexcept : pool_(&pool) {}
    template <class U>
    PoolAllocator(const PoolAllocator<U>& other) noexcept : pool_(other.pool()) {}

    T* allocate(std::size_t count) {
        // Blocks come from the global operator new, aligned for any ordinary type.
        static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__,
                      "an over-aligned type cannot be made from the pool");
        return static_cast<T*>(pool_->allocate(count * sizeof(T)));
    }
    void deallocate(T* block, std::size_t count) noexcept {
        pool_->deallocate(block, count * sizeof(T));
    }

    ElementPool* pool() const noexcept { return pool_; }

    template <class U>
    bool operator==(const PoolAllocator<U>& other) const noexcept {
        return pool_ == other.pool();
    }
    template <class U>
    bool operator!=(const PoolAllocator<U>& other) const noexcept {
        return pool_ != other.pool();
    }

private:
    ElementPool* pool_;
};

}  // namespace detail
}  // namespace core
}  // namespace settings
