#include "base/NodeBlockPool.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

using namespace Orvane;

namespace {

class NodeBlockPoolTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!NodeBlockPool::pooled())
            GTEST_SKIP() << "blocks come from the global operator new in this build";
        _limit = NodeBlockPool::retainLimit();
    }
    void TearDown() override
    {
        if (NodeBlockPool::pooled())
            NodeBlockPool::setRetainLimit(_limit);
    }

    std::size_t _limit = 0;
};

// Blocks of every kind of size are aligned, hold their bytes without touching their
// neighbours, and are counted while they are in use.
TEST_F(NodeBlockPoolTest, BlocksHoldTheirBytesAndAreCounted)
{
    const std::size_t sizes[] = {1, 15, 16, 17, 200, 752, 4096, 8192, 8193, 300000};
    const std::size_t blocksBefore = NodeBlockPool::blocksInUse();
    const std::size_t bytesBefore = NodeBlockPool::bytesInUse();
    struct Held {
        unsigned char* block;
        std::size_t    size;
    };
    std::vector<Held> held;
    std::size_t       rounded = 0;
    for (int round = 0; round < 3; ++round)
        for (std::size_t size : sizes) {
            auto* block = static_cast<unsigned char*>(NodeBlockPool::allocate(size));
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(block) % NodeBlockPool::Alignment, 0u) << size;
            std::memset(block, int(held.size() & 0xff), size);
            held.push_back({block, size});
            rounded += (size + 15) / 16 * 16;
        }
    EXPECT_EQ(NodeBlockPool::blocksInUse() - blocksBefore, held.size());
    EXPECT_EQ(NodeBlockPool::bytesInUse() - bytesBefore, rounded);
    for (std::size_t i = 0; i < held.size(); ++i)
        for (std::size_t b = 0; b < held[i].size; ++b)
            ASSERT_EQ(held[i].block[b], i & 0xff) << "block " << i << " byte " << b;
    for (const Held& h : held)
        NodeBlockPool::release(h.block);
    EXPECT_EQ(NodeBlockPool::blocksInUse(), blocksBefore);
    EXPECT_EQ(NodeBlockPool::bytesInUse(), bytesBefore);
}

// Released blocks serve the next blocks of their size; empty chunks are kept up to the limit
// and trim gives them back.
TEST_F(NodeBlockPoolTest, ReleasedMemoryIsReusedKeptUpToTheLimitAndTrimmed)
{
    // A size no other test here uses, enough blocks for several chunks.
    const std::size_t  size = 3008;
    const std::size_t  count = 1000;
    std::vector<void*> blocks(count);
    NodeBlockPool::setRetainLimit(std::size_t(1) << 30);
    NodeBlockPool::trim();
    const std::size_t mappedBefore = NodeBlockPool::bytesMapped();
    for (void*& block : blocks)
        block = NodeBlockPool::allocate(size);
    const std::size_t mappedFull = NodeBlockPool::bytesMapped();
    EXPECT_GE(mappedFull - mappedBefore, size * count);
    for (void* block : blocks)
        NodeBlockPool::release(block);
    EXPECT_EQ(NodeBlockPool::bytesMapped(), mappedFull) << "empty chunks are kept";
    for (void*& block : blocks)
        block = NodeBlockPool::allocate(size);
    EXPECT_EQ(NodeBlockPool::bytesMapped(), mappedFull) << "kept chunks serve again";
    for (void* block : blocks)
        NodeBlockPool::release(block);
    EXPECT_EQ(NodeBlockPool::trim(), mappedFull - mappedBefore);
    EXPECT_EQ(NodeBlockPool::bytesMapped(), mappedBefore);

    // Without room to keep them, chunks go back as they empty.
    NodeBlockPool::setRetainLimit(0);
    for (void*& block : blocks)
        block = NodeBlockPool::allocate(size);
    for (void* block : blocks)
        NodeBlockPool::release(block);
    EXPECT_EQ(NodeBlockPool::bytesMapped(), mappedBefore);
}

// Chunks of several sizes share the memory they are cut from: a chunk given back while its
// neighbours still hold blocks leaves their bytes alone, and its memory serves again.
TEST_F(NodeBlockPoolTest, ChunksGivenBackLeaveTheirNeighboursIntact)
{
    NodeBlockPool::setRetainLimit(0);
    NodeBlockPool::trim();
    const std::size_t  size = 4000;
    std::vector<void*> blocks(1200); // about twenty chunks
    unsigned char*     kept = nullptr;
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            blocks[i] = NodeBlockPool::allocate(size);
            std::memset(blocks[i], int(i & 0xff), size);
        }
        if (!kept) {
            // Its chunk comes right after the others, beside them.
            kept = static_cast<unsigned char*>(NodeBlockPool::allocate(2992));
            std::memset(kept, 0x5a, 2992);
        }
        for (std::size_t i = 0; i < blocks.size(); ++i)
            ASSERT_EQ(static_cast<unsigned char*>(blocks[i])[size - 1], i & 0xff) << "round " << round;
        for (void* block : blocks)
            NodeBlockPool::release(block);
        NodeBlockPool::trim();
    }
    for (std::size_t b = 0; b < 2992; ++b)
        ASSERT_EQ(kept[b], 0x5a) << b;
    NodeBlockPool::release(kept);
}

// Blocks made on one thread and released on another, by several threads at once.
TEST_F(NodeBlockPoolTest, ThreadsShareThePool)
{
    const std::size_t blocksBefore = NodeBlockPool::blocksInUse();
    constexpr int     threads = 4;
    constexpr int     perThread = 5000;
    std::vector<std::vector<void*>> made(threads);
    std::vector<std::thread>        workers;
    for (int t = 0; t < threads; ++t)
        workers.emplace_back([&made, t] {
            for (int i = 0; i < perThread; ++i) {
                void* block = NodeBlockPool::allocate(64 + 16 * std::size_t(i % 8));
                std::memset(block, t, 64);
                made[t].push_back(block);
            }
        });
    for (std::thread& w : workers)
        w.join();
    workers.clear();
    for (int t = 0; t < threads; ++t)
        workers.emplace_back([&made, t] {
            for (void* block : made[(t + 1) % threads])
                NodeBlockPool::release(block);
        });
    for (std::thread& w : workers)
        w.join();
    EXPECT_EQ(NodeBlockPool::blocksInUse(), blocksBefore);
}

} // namespace
