#include "LargeMemory.h"

#include <cstdlib>
#include <new>

#include <sys/mman.h>

namespace hazelmark {

namespace {
constexpr std::size_t kLargePage = std::size_t(2) << 20;
constexpr std::size_t kCacheLine = 64;
} // namespace

void *allocateLarge(std::size_t bytes)
{
    const std::size_t alignment = bytes >= 2 * kLargePage ? kLargePage : kCacheLine;
    const std::size_t rounded = (bytes + alignment - 1) / alignment * alignment;
    void *const memory = rounded >= bytes ? std::aligned_alloc(alignment, rounded) : nullptr;
    if (!memory && bytes > 0)
        throw std::bad_alloc();
    if (alignment == kLargePage)
        madvise(memory, rounded, MADV_HUGEPAGE); // a hint; without it all works the same
    return memory;
}

void freeLarge(void *memory)
{
    std::free(memory);
}

} // namespace hazelmark
