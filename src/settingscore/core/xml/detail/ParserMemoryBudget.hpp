// settings::core::detail::ParserMemoryBudget: the memory manager of one XML reader, which
// refuses to hold more than a fixed number of bytes at once.
#pragma once

#include <boost/noncopyable.hpp>

#include <xercesc/framework/MemoryManager.hpp>

#include <cstddef>

namespace settings {
namespace core {
namespace detail {

// The parser keeps a whole attribute value, a whole start tag's attribute list and an
// element's whole text in memory before anyone else sees them, so a file with one 50 MB
// attribute or a million attributes would otherwise cost hundreds of megabytes before the
// first callback could refuse it. Every allocation of a reader created with this manager is
// counted with what the C allocator adds to it, so that the count tracks resident memory, and
// one that would take the total past the limit throws xercesc::OutOfMemoryException, which
// ends the parse at once.
//
// After such a failure the reader is in no state to parse again: the parser library gives up
// its clean-up on that exception. Its owner destroys the reader, then this manager, whose
// destructor frees whatever the reader left allocated.
//
// One manager serves one reader on one thread; nothing here is locked.
class ParserMemoryBudget : public xercesc::MemoryManager, private boost::noncopyable {
public:
    explicit ParserMemoryBudget(std::size_t limitBytes);
    ~ParserMemoryBudget() override;

    // The parser library's exceptions carry their own copies of texts; they are allocated
    // outside the budget, so that the failure can always be reported.
    xercesc::MemoryManager* getExceptionMemoryManager() override;
    void* allocate(XMLSize_t size) override;
    void deallocate(void* p) override;

    // Bytes held now, overhead included.
    std::size_t heldBytes() const { return held_; }
    std::size_t limitBytes() const { return limit_; }

private:
    // Every block starts with this header: the blocks still held form a ring through it.
    struct Block {
        Block* previous;
        Block* next;
        std::size_t charged;
        std::size_t reserved;  // keeps the caller's memory 16-byte aligned
    };

    Block ring_;
    std::size_t held_ = 0;
    const std::size_t limit_;
};

}  // namespace detail
}  // namespace core
}  // namespace settings
