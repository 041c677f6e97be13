#ifndef ORVANE_BASE_NODEBLOCKPOOL_H
#define ORVANE_BASE_NODEBLOCKPOOL_H

#include "base/OrvaneExport.h"

#include <cstddef>

namespace Orvane {

// The memory of node blocks. Blocks of one size class are cut from chunks of that class, and a
// freed block goes back to its chunk for the next node of that size, so a scene that is built,
// released and built again reuses its memory instead of giving it back to the system and
// faulting it in anew. Chunks left empty are kept up to retainLimit() bytes in all; the rest
// go back to the system at once, and trim() gives back every empty chunk. Chunks are cut from
// larger regions that the kernel may back with huge pages, so that a scene built in fresh memory
// pays one fault per region rather than one per small page.
//
// Thread safe: each size class has a lock of its own. In builds with the address sanitizer the
// pool hands every block to the global operator new, so that the sanitizer sees each one.
class ORVANE_API NodeBlockPool {
public:
    static constexpr std::size_t Alignment = 16;

    // A block of at least `size` bytes, aligned to Alignment; throws std::bad_alloc when the
    // system has no memory left, like operator new.
    static void* allocate(std::size_t size);
    static void  release(void* block) noexcept;

    // False where blocks come from the global operator new (see above); the figures below are
    // then all 0.
    static bool pooled();
    // Blocks handed out and not released, and their bytes (size classes rounded).
    static std::size_t blocksInUse();
    static std::size_t bytesInUse();
    // Bytes taken from the system, for blocks in use, free blocks and empty chunks.
    static std::size_t bytesMapped();

    static std::size_t retainLimit();
    static void        setRetainLimit(std::size_t bytes);
    // Gives every empty chunk back to the system; returns the bytes given back.
    static std::size_t trim();
};

} // namespace Orvane

#endif
