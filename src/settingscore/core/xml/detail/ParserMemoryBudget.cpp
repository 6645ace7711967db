#include <settingscore/core/xml/detail/ParserMemoryBudget.hpp>

#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <algorithm>
#include <cstdlib>

namespace settings {
namespace core {
namespace detail {

namespace {

// What a request of `bytes` takes from the C allocator: its size word added, rounded up to
// 16 bytes, at least 32. Computed rather than asked for: asking costs more than the rest of
// the bookkeeping together, and the parser allocates for every element.
constexpr std::size_t chunkBytes(std::size_t bytes) {
    return std::max<std::size_t>(32, (bytes + sizeof(std::size_t) + 15) & ~std::size_t(15));
}

}  // namespace

ParserMemoryBudget::ParserMemoryBudget(std::size_t limitBytes)
    : ring_{&ring_, &ring_, 0, 0}, limit_(limitBytes) {}

ParserMemoryBudget::~ParserMemoryBudget() {
    Block* block = ring_.next;
    while (block != &ring_) {
        Block* const next = block->next;
        std::free(block);
        block = next;
    }
}

xercesc::MemoryManager* ParserMemoryBudget::getExceptionMemoryManager() {
    return xercesc::XMLPlatformUtils::fgMemoryManager;
}

void* ParserMemoryBudget::allocate(XMLSize_t size) {
    // Checked before the allocation, so that a huge request is refused without being tried.
    if (size > limit_ || held_ + chunkBytes(sizeof(Block) + size) > limit_) {
        throw xercesc::OutOfMemoryException();
    }
    auto* const block = static_cast<Block*>(std::malloc(sizeof(Block) + size));
    if (!block) {
        throw xercesc::OutOfMemoryException();
    }
    block->charged = chunkBytes(sizeof(Block) + size);
    block->previous = &ring_;
    block->next = ring_.next;
    ring_.next->previous = block;
    ring_.next = block;
    held_ += block->charged;
    return block + 1;
}

void ParserMemoryBudget::deallocate(void* p) {
    if (!p) {
        return;
    }
    Block* const block = static_cast<Block*>(p) - 1;
    block->previous->next = block->next;
    block->next->previous = block->previous;
    held_ -= block->charged;
    std::free(block);
}

}  // namespace detail
}  // namespace core
}  // namespace settings
