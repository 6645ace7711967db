#include <settingscore/core/xml/detail/ElementPool.hpp>

namespace settings {
namespace core {
namespace detail {

static_assert(alignof(std::max_align_t) <= 16, "pooled blocks are aligned to 16 bytes");

ElementPool::~ElementPool() {
    for (FreeBlock* list : freeLists_) {
        while (list) {
            FreeBlock* const next = list->next;
            ::operator delete(list);
            list = next;
        }
    }
}

void* ElementPool::allocate(std::size_t bytes) {
    const std::size_t index = sizeClass(bytes);
    if (index >= freeLists_.size()) {
        return ::operator new(bytes);
    }
    if (FreeBlock* const block = freeLists_[index]) {
        freeLists_[index] = block->next;
        return block;
    }
    return ::operator new(index* granularity);
}

void ElementPool::deallocate(void* block, std::size_t bytes) noexcept {
    const std::size_t index = sizeClass(bytes);
    if (index >= freeLists_.size()) {
        ::operator delete(block);
        return;
    }
    freeLists_[index] = new (block) FreeBlock{freeLists_[index]};
}

}  // namespace detail
}  // namespace core
}  // namespace settings
