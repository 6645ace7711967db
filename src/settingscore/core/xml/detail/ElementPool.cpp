#include <settingscore/core/xml/detail/ElementPool.hpp>

namespace settings {
namespace core {
namespace detail {

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
    const std::size_t blockBytes = index * granularity;  // the whole class, to serve it again
    return ::operator new(blockBytes);
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
