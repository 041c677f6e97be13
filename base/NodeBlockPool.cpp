#include "base/NodeBlockPool.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <new>
#include <thread>

#if defined(__SANITIZE_ADDRESS__)
#define ORVANE_POOL_BYPASS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORVANE_POOL_BYPASS 1
#endif
#endif

#if __has_include(<sys/mman.h>)
#include <sys/mman.h>
#define ORVANE_POOL_MMAP 1
#endif

namespace Orvane {

namespace {

// Chunks are aligned to their size, so a block finds its chunk's header by masking its address.
constexpr std::size_t ChunkSize = 256 * 1024;
constexpr std::size_t HeaderSize = 64;
constexpr std::size_t Step = NodeBlockPool::Alignment;
// Larger blocks get a chunk each.
constexpr std::size_t LargestClass = 8192;
constexpr std::size_t ClassCount = LargestClass / Step;

struct FreeBlock {
    FreeBlock* next;
};

struct SizeClass;

struct Chunk {
    SizeClass*    sizeClass = nullptr; // null for a chunk of one large block
    std::size_t   mapped = 0;
    std::size_t   blockBytes = 0; // of the large block
    Chunk*        prev = nullptr; // in its class's list of chunks with room
    Chunk*        next = nullptr;
    FreeBlock*    free = nullptr;
    char*         unused = nullptr; // blocks never handed out start here
    std::uint32_t live = 0;
    bool          hasRoomListed = false;
    bool          retainedEmpty = false;
};
static_assert(sizeof(Chunk) <= HeaderSize);

// The lock of a size class, held for a few pointer moves: taking it is one atomic exchange and
// giving it back one store, where a mutex pays an exchange both ways.
class ClassLock {
public:
    void lock() noexcept
    {
        while (_held.exchange(true, std::memory_order_acquire))
            while (_held.load(std::memory_order_relaxed))
                std::this_thread::yield();
    }
    void unlock() noexcept { _held.store(false, std::memory_order_release); }

private:
    std::atomic<bool> _held{false};
};

struct SizeClass {
    ClassLock   lock;
    Chunk*      withRoom = nullptr;
    std::size_t blockSize = 0;
    std::size_t blocksInUse = 0;
};

struct Pool {
    SizeClass                classes[ClassCount];
    // Large blocks; the classes count their own under their locks.
    std::atomic<std::size_t> largeBlocks{0};
    std::atomic<std::size_t> largeBytes{0};
    std::atomic<std::size_t> bytesMapped{0};
    std::atomic<std::size_t> retained{0};
    std::atomic<std::size_t> retainLimit{std::size_t(256) << 20};

    Pool()
    {
        for (std::size_t i = 0; i < ClassCount; ++i)
            classes[i].blockSize = (i + 1) * Step;
    }
};

// Never destroyed: nodes may be released while the program's statics go away.
Pool& pool()
{
    static Pool& p = *new Pool;
    return p;
}

void unmapChunk(Chunk* chunk)
{
    const std::size_t bytes = chunk->mapped;
    chunk->~Chunk();
#ifdef ORVANE_POOL_MMAP
    munmap(chunk, bytes);
#else
    std::free(chunk);
#endif
    pool().bytesMapped.fetch_sub(bytes, std::memory_order_relaxed);
}

void unlistWithRoom(SizeClass& cls, Chunk* chunk)
{
    if (chunk->prev)
        chunk->prev->next = chunk->next;
    else
        cls.withRoom = chunk->next;
    if (chunk->next)
        chunk->next->prev = chunk->prev;
    chunk->prev = chunk->next = nullptr;
    chunk->hasRoomListed = false;
}

#ifndef ORVANE_POOL_BYPASS

Chunk* chunkOf(const void* block)
{
    return reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(block) & ~(std::uintptr_t(ChunkSize) - 1));
}

// `bytes` of fresh memory aligned to ChunkSize, with a chunk header at its start; null when the
// system has none.
Chunk* mapChunk(std::size_t bytes)
{
#ifdef ORVANE_POOL_MMAP
    const std::size_t span = bytes + ChunkSize;
    void*             mapped = mmap(nullptr, span, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
        return nullptr;
    const auto start = reinterpret_cast<std::uintptr_t>(mapped);
    const auto aligned = (start + ChunkSize - 1) & ~(std::uintptr_t(ChunkSize) - 1);
    if (aligned > start)
        munmap(mapped, aligned - start);
    if (const std::size_t tail = start + span - (aligned + bytes))
        munmap(reinterpret_cast<void*>(aligned + bytes), tail);
    void* memory = reinterpret_cast<void*>(aligned);
#ifdef MADV_POPULATE_WRITE
    // The chunk is cut into blocks from its start on: fault its pages in with one call rather
    // than one trap each. Kernels without it say no, and the pages come as they are touched.
    madvise(memory, bytes, MADV_POPULATE_WRITE);
#endif
#else
    void* memory = std::aligned_alloc(ChunkSize, bytes);
    if (!memory)
        return nullptr;
#endif
    Chunk* chunk = new (memory) Chunk;
    chunk->mapped = bytes;
    chunk->unused = static_cast<char*>(memory) + HeaderSize;
    pool().bytesMapped.fetch_add(bytes, std::memory_order_relaxed);
    return chunk;
}

bool hasRoom(const Chunk& chunk)
{
    const char* end = reinterpret_cast<const char*>(&chunk) + chunk.mapped;
    return chunk.free || static_cast<std::size_t>(end - chunk.unused) >= chunk.sizeClass->blockSize;
}

void listWithRoom(SizeClass& cls, Chunk* chunk)
{
    chunk->prev = nullptr;
    chunk->next = cls.withRoom;
    if (cls.withRoom)
        cls.withRoom->prev = chunk;
    cls.withRoom = chunk;
    chunk->hasRoomListed = true;
}

void* allocateLarge(std::size_t size)
{
    const std::size_t bytes = (HeaderSize + size + ChunkSize - 1) & ~(ChunkSize - 1);
    Chunk*            chunk = mapChunk(bytes);
    if (!chunk)
        throw std::bad_alloc();
    chunk->blockBytes = size;
    chunk->live = 1;
    pool().largeBlocks.fetch_add(1, std::memory_order_relaxed);
    pool().largeBytes.fetch_add(size, std::memory_order_relaxed);
    return chunk->unused;
}

// Takes a block from the class's first chunk with room, mapping a chunk when none has any.
void* takeBlock(SizeClass& cls)
{
    Pool&                       p = pool();
    std::lock_guard<ClassLock> lock(cls.lock);
    Chunk*                      chunk = cls.withRoom;
    if (!chunk) {
        chunk = mapChunk(ChunkSize);
        if (!chunk)
            throw std::bad_alloc();
        chunk->sizeClass = &cls;
        listWithRoom(cls, chunk);
    }
    if (chunk->retainedEmpty) {
        chunk->retainedEmpty = false;
        p.retained.fetch_sub(ChunkSize, std::memory_order_relaxed);
    }
    void* block;
    if (chunk->free) {
        block = chunk->free;
        chunk->free = chunk->free->next;
        // The next take reads the next free block's link: bring it in meanwhile.
        __builtin_prefetch(chunk->free);
    } else {
        block = chunk->unused;
        chunk->unused += cls.blockSize;
    }
    ++chunk->live;
    ++cls.blocksInUse;
    if (!hasRoom(*chunk))
        unlistWithRoom(cls, chunk);
    return block;
}

// Puts a block back into its chunk; returns the chunk when it went empty and is not kept.
Chunk* putBlock(Chunk* chunk, void* block)
{
    Pool&                       p = pool();
    SizeClass&                  cls = *chunk->sizeClass;
    std::lock_guard<ClassLock> lock(cls.lock);
    auto*                       freed = static_cast<FreeBlock*>(block);
    freed->next = chunk->free;
    chunk->free = freed;
    if (!chunk->hasRoomListed)
        listWithRoom(cls, chunk);
    --cls.blocksInUse;
    if (--chunk->live)
        return nullptr;
    if (p.retained.fetch_add(ChunkSize, std::memory_order_relaxed) + ChunkSize <=
        p.retainLimit.load(std::memory_order_relaxed)) {
        chunk->retainedEmpty = true;
        return nullptr;
    }
    p.retained.fetch_sub(ChunkSize, std::memory_order_relaxed);
    unlistWithRoom(cls, chunk);
    return chunk;
}

#endif

} // namespace

#ifdef ORVANE_POOL_BYPASS

void* NodeBlockPool::allocate(std::size_t size)
{
    return ::operator new(size);
}

void NodeBlockPool::release(void* block) noexcept
{
    ::operator delete(block);
}

bool NodeBlockPool::pooled()
{
    return false;
}

#else

void* NodeBlockPool::allocate(std::size_t size)
{
    size = (std::max<std::size_t>(size, 1) + Step - 1) & ~(Step - 1);
    if (size > LargestClass)
        return allocateLarge(size);
    return takeBlock(pool().classes[size / Step - 1]);
}

void NodeBlockPool::release(void* block) noexcept
{
    if (!block)
        return;
    Chunk* chunk = chunkOf(block);
    if (!chunk->sizeClass) {
        pool().largeBlocks.fetch_sub(1, std::memory_order_relaxed);
        pool().largeBytes.fetch_sub(chunk->blockBytes, std::memory_order_relaxed);
        unmapChunk(chunk);
        return;
    }
    if (Chunk* empty = putBlock(chunk, block))
        unmapChunk(empty);
}

bool NodeBlockPool::pooled()
{
    return true;
}

#endif

namespace {

// Blocks and bytes in use over all classes, read under each class's lock.
template <class Fn>
std::size_t sumInUse(Fn perClass)
{
    std::size_t sum = 0;
    for (SizeClass& cls : pool().classes) {
        std::lock_guard<ClassLock> lock(cls.lock);
        sum += perClass(cls);
    }
    return sum;
}

} // namespace

std::size_t NodeBlockPool::blocksInUse()
{
    return pool().largeBlocks.load(std::memory_order_relaxed) +
           sumInUse([](const SizeClass& cls) { return cls.blocksInUse; });
}

std::size_t NodeBlockPool::bytesInUse()
{
    return pool().largeBytes.load(std::memory_order_relaxed) +
           sumInUse([](const SizeClass& cls) { return cls.blocksInUse * cls.blockSize; });
}

std::size_t NodeBlockPool::bytesMapped()
{
    return pool().bytesMapped.load(std::memory_order_relaxed);
}

std::size_t NodeBlockPool::retainLimit()
{
    return pool().retainLimit.load(std::memory_order_relaxed);
}

void NodeBlockPool::setRetainLimit(std::size_t bytes)
{
    pool().retainLimit.store(bytes, std::memory_order_relaxed);
}

std::size_t NodeBlockPool::trim()
{
    Pool&       p = pool();
    std::size_t given = 0;
    for (SizeClass& cls : p.classes) {
        Chunk* empty = nullptr;
        {
            std::lock_guard<ClassLock> lock(cls.lock);
            for (Chunk* chunk = cls.withRoom; chunk;) {
                Chunk* next = chunk->next;
                if (chunk->live == 0) {
                    unlistWithRoom(cls, chunk);
                    if (chunk->retainedEmpty)
                        p.retained.fetch_sub(ChunkSize, std::memory_order_relaxed);
                    chunk->next = empty;
                    empty = chunk;
                }
                chunk = next;
            }
        }
        while (empty) {
            Chunk* next = empty->next;
            given += empty->mapped;
            unmapChunk(empty);
            empty = next;
        }
    }
    return given;
}

} // namespace Orvane
