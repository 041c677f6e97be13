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
#ifndef ORVANE_POOL_BYPASS
#define ORVANE_POOL_REGIONS 1
#endif
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

// Chunks with room and regions with a free slot are kept in intrusive lists: an entry is put
// first or taken out wherever it stands, with no memory of its own.
template <class T>
void pushFront(T*& head, T* item)
{
    item->prev = nullptr;
    item->next = head;
    if (head)
        head->prev = item;
    head = item;
}

template <class T>
void takeOut(T*& head, T* item)
{
    if (item->prev)
        item->prev->next = item->next;
    else
        head = item->next;
    if (item->next)
        item->next->prev = item->prev;
    item->prev = item->next = nullptr;
}

struct SizeClass;
struct Region;

struct Chunk {
    SizeClass*    sizeClass = nullptr; // null for a chunk of one large block
    std::size_t   mapped = 0;
    union {
        std::size_t blockBytes = 0; // of the large block
        Region*     region;         // a class chunk's region, where chunks come from regions
    };
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

#ifdef ORVANE_POOL_REGIONS

// Class chunks are cut from regions of eight, aligned to their size, which the kernel may back
// with one huge page: a region then costs one fault and one page-table entry where its chunks
// would cost 512 of each. On a virtual machine every first touch of a small page also costs the
// host a fault, several microseconds each, so for a scene built in fresh memory this is most of
// what its nodes cost beyond their construction. A chunk given back while its region still
// serves others returns its pages alone; an empty region is unmapped whole.
constexpr std::size_t   RegionSize = 8 * ChunkSize;
constexpr std::uint32_t AllSlots = (1u << (RegionSize / ChunkSize)) - 1;
// A region's record lives in a small page of its own mapping, after the region.
constexpr std::size_t   RecordPage = 4096;

struct Region {
    char*         base = nullptr;
    std::uint32_t used = 0; // a bit per chunk slot
    Region*       prev = nullptr; // in the list of regions with a free slot
    Region*       next = nullptr;
};

struct Regions {
    std::mutex lock;
    Region*    withFree = nullptr;
};

Regions& regions()
{
    static Regions& r = *new Regions;
    return r;
}

// `bytes` of fresh address space aligned to `alignment`; null when the system has none.
void* mapAligned(std::size_t bytes, std::size_t alignment)
{
    const std::size_t span = bytes + alignment;
    void*             mapped = mmap(nullptr, span, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED)
        return nullptr;
    const auto start = reinterpret_cast<std::uintptr_t>(mapped);
    const auto aligned = (start + alignment - 1) & ~(std::uintptr_t(alignment) - 1);
    if (aligned > start)
        munmap(mapped, aligned - start);
    if (const std::size_t tail = start + span - (aligned + bytes))
        munmap(reinterpret_cast<void*>(aligned + bytes), tail);
    return reinterpret_cast<void*>(aligned);
}

// Blocks are cut from a chunk's start on: fault its pages in with one call rather than one trap
// each. Kernels without it say no, and the pages come as they are touched.
void populate(void* memory, std::size_t bytes)
{
#ifdef MADV_POPULATE_WRITE
    madvise(memory, bytes, MADV_POPULATE_WRITE);
#else
    (void)memory;
    (void)bytes;
#endif
}

// A free chunk slot's memory and its region; null when the system has none.
void* takeSlot(Region*& owner)
{
    Regions&                    rs = regions();
    std::lock_guard<std::mutex> lock(rs.lock);
    Region*                     region = rs.withFree;
    if (!region) {
        void* memory = mapAligned(RegionSize + RecordPage, RegionSize);
        if (!memory)
            return nullptr;
        region = ::new (static_cast<char*>(memory) + RegionSize) Region;
#ifdef MADV_HUGEPAGE
        madvise(memory, RegionSize, MADV_HUGEPAGE);
#endif
        region->base = static_cast<char*>(memory);
        pushFront(rs.withFree, region);
    }
    const unsigned slot = static_cast<unsigned>(__builtin_ctz(~region->used));
    region->used |= 1u << slot;
    if (region->used == AllSlots)
        takeOut(rs.withFree, region);
    owner = region;
    return region->base + slot * ChunkSize;
}

void giveSlot(Region* region, void* memory)
{
    Regions&                    rs = regions();
    std::lock_guard<std::mutex> lock(rs.lock);
    const bool                  wasFull = region->used == AllSlots;
    region->used &= ~(1u << ((static_cast<char*>(memory) - region->base) / ChunkSize));
    if (!region->used) {
        if (!wasFull)
            takeOut(rs.withFree, region);
        munmap(region->base, RegionSize + RecordPage);  // the record with it
        return;
    }
    madvise(memory, ChunkSize, MADV_DONTNEED);
    if (wasFull)
        pushFront(rs.withFree, region);
}

#endif

void unmapChunk(Chunk* chunk)
{
    const std::size_t bytes = chunk->mapped;
#ifdef ORVANE_POOL_REGIONS
    Region* region = chunk->sizeClass ? chunk->region : nullptr;
    chunk->~Chunk();
    if (region)
        giveSlot(region, chunk);
    else
        munmap(chunk, bytes);
#else
    chunk->~Chunk();
    std::free(chunk);
#endif
    pool().bytesMapped.fetch_sub(bytes, std::memory_order_relaxed);
}

void unlistWithRoom(SizeClass& cls, Chunk* chunk)
{
    takeOut(cls.withRoom, chunk);
    chunk->hasRoomListed = false;
}

#ifndef ORVANE_POOL_BYPASS

Chunk* chunkOf(const void* block)
{
    return reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(block) & ~(std::uintptr_t(ChunkSize) - 1));
}

// A chunk of `bytes` fresh memory aligned to ChunkSize, its header made; a class chunk
// (`bytes` == ChunkSize) is cut from a region. Null when the system has no memory left.
Chunk* mapChunk(std::size_t bytes, bool forClass)
{
#ifdef ORVANE_POOL_REGIONS
    Region* region = nullptr;
    void*   memory = forClass ? takeSlot(region) : mapAligned(bytes, ChunkSize);
    if (!memory)
        return nullptr;
    populate(memory, bytes);
#else
    (void)forClass;
    void* memory = std::aligned_alloc(ChunkSize, bytes);
    if (!memory)
        return nullptr;
#endif
    Chunk* chunk = new (memory) Chunk;
    chunk->mapped = bytes;
    chunk->unused = static_cast<char*>(memory) + HeaderSize;
#ifdef ORVANE_POOL_REGIONS
    if (forClass)
        chunk->region = region;
#endif
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
    pushFront(cls.withRoom, chunk);
    chunk->hasRoomListed = true;
}

void* allocateLarge(std::size_t size)
{
    const std::size_t bytes = (HeaderSize + size + ChunkSize - 1) & ~(ChunkSize - 1);
    Chunk*            chunk = mapChunk(bytes, false);
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
        chunk = mapChunk(ChunkSize, true);
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
