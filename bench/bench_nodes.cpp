// Node creation and release: nodes of a type with ten fields of mixed types made through
// NodeType::createNode and released again, at 10,000, 100,000 and 1,000,000 nodes, beside a plain
// struct with the same ten members made with new and delete. Heap bytes and allocations per node
// are measured by this program's own operator new/delete, which count the bytes that are live and
// the calls made, and by the node block pool's own counts. Beside the cases in fresh memory, the
// cost of the same bytes fresh from the system, written once and nothing else.
#include "base/Color3f.h"
#include "base/MathTypes.h"
#include "base/Node.h"
#include "base/NodeBlockPool.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/SmartPtr.h"
#include "bench/FreshPages.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <malloc.h>
#include <new>
#include <string>
#include <vector>

namespace {

// Live heap bytes as the allocator hands them out (usable size, so rounding is counted), and
// the number of allocations made.
long long liveBytes = 0;
long long allocations = 0;

void* allocate(std::size_t size)
{
    void* p = std::malloc(size ? size : 1);
    if (!p)
        throw std::bad_alloc();
    liveBytes += static_cast<long long>(malloc_usable_size(p));
    ++allocations;
    return p;
}

void release(void* p) noexcept
{
    if (!p)
        return;
    liveBytes -= static_cast<long long>(malloc_usable_size(p));
    std::free(p);
}

} // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void  operator delete(void* p) noexcept { release(p); }
void  operator delete[](void* p) noexcept { release(p); }
void  operator delete(void* p, std::size_t) noexcept { release(p); }
void  operator delete[](void* p, std::size_t) noexcept { release(p); }

using namespace Orvane;

namespace {

// Ten fields after the two every node inherits.
struct BenchType {
    NodePartDesc parts[10] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess, "f"),
        NodePartDesc(3, PartMask::bit(3), ExposedFieldPartType, SFVec3fType, NodePartDesc::CtorAutoProcess, "v"),
        NodePartDesc(4, PartMask::bit(4), ExposedFieldPartType, MFStringType, NodePartDesc::CtorAutoProcess, "s"),
        NodePartDesc(5, PartMask::bit(5), ExposedFieldPartType, SFNodeType, NodePartDesc::CtorAutoProcess, "child"),
        NodePartDesc(6, PartMask::bit(6), ExposedFieldPartType, MFNodeType, NodePartDesc::CtorAutoProcess, "children"),
        NodePartDesc(7, PartMask::bit(7), ExposedFieldPartType, SFInt32Type, NodePartDesc::CtorAutoProcess, "i"),
        NodePartDesc(8, PartMask::bit(8), FieldPartType, SFBoolType, 0, "b"),
        NodePartDesc(9, PartMask::bit(9), ExposedFieldPartType, SFColorType, NodePartDesc::CtorAutoProcess, "c"),
        NodePartDesc(10, PartMask::bit(10), ExposedFieldPartType, MFFloatType, NodePartDesc::CtorAutoProcess, "fs"),
        NodePartDesc(11, PartMask::bit(11), ExposedFieldPartType, SFStringType, NodePartDesc::CtorAutoProcess, "name"),
    };
    NodeType type{theBaseNodeTypeFactory(), "BenchTen", "Bench", "Node", nullptr, "1.0", "Bench", nullptr, "stable",
                  nullptr, "Orvane", false, false, &Node::isNodeType, &Node::createNode, &Node::createProc, parts, 10};
    SmartPtr<NodeNameSpace> nameSpace{new NodeNameSpace("bench")};

    BenchType() { type.initType(); }
};

BenchType& benchType()
{
    static BenchType& t = *new BenchType;
    return t;
}

// Where the memory of the timed rounds comes from. Warm: from the rounds before, as when a
// program builds and releases scenes again and again (an untimed round comes first). Cold:
// fresh from the system in every round, as for the first scene a program builds, so the
// kernel's faulting in and clearing of the pages is counted too.
enum class Memory { Warm, Cold };

// Makes `count` objects with `make`, measures what they hold, releases them with `drop`; the
// counters give per node the time (create and release), the live heap bytes and the allocations.
template <class T, class Make, class Drop>
void measure(benchmark::State& state, int count, Make make, Drop drop, Memory memory = Memory::Warm)
{
    std::vector<T*> nodes;
    nodes.reserve(static_cast<std::size_t>(count));
    double bytesPerNode = 0;
    double allocsPerNode = 0;
    const auto heapBytes = [] { return liveBytes + static_cast<long long>(NodeBlockPool::bytesInUse()); };
    const auto heapBlocks = [] { return allocations + static_cast<long long>(NodeBlockPool::blocksInUse()); };
    if (memory == Memory::Warm) {
        // The pool keeps what the untimed round released, the largest scene here included.
        NodeBlockPool::setRetainLimit(std::size_t(2) << 30);
        for (int i = 0; i < count; ++i)
            nodes.push_back(make());
        for (T* node : nodes)
            drop(node);
        nodes.clear();
    }
    for (auto _ : state) {
        if (memory == Memory::Cold) {
            state.PauseTiming();
            NodeBlockPool::trim();
            state.ResumeTiming();
        }
        const long long bytesBefore = heapBytes();
        const long long allocsBefore = heapBlocks();
        for (int i = 0; i < count; ++i)
            nodes.push_back(make());
        bytesPerNode = double(heapBytes() - bytesBefore) / count;
        allocsPerNode = double(heapBlocks() - allocsBefore) / count;
        for (T* node : nodes)
            drop(node);
        nodes.clear();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * count);
    state.counters["bytes_per_node"] = bytesPerNode;
    state.counters["allocs_per_node"] = allocsPerNode;
    state.counters["time_per_node"] =
        benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void createRelease(benchmark::State& state, int count, Memory memory)
{
    BenchType& bt = benchType();
    measure<Node>(
        state, count,
        [&] {
            Node* node = bt.type.createNode(bt.nameSpace.get());
            node->addRef();
            return node;
        },
        [](Node* node) { node->subRef(); }, memory);
}

// The same ten members in a plain struct: what the values alone cost.
struct PlainNode {
    float                    f = 0;
    Vec3f                    v{};
    std::vector<std::string> s;
    PlainNode*               child = nullptr;
    std::vector<PlainNode*>  children;
    int                      i = 0;
    bool                     b = false;
    Color3f                  c;
    std::vector<float>       fs;
    std::string              name;
};

void createReleasePlain(benchmark::State& state, int count)
{
    measure<PlainNode>(state, count, [] { return new PlainNode; }, [](PlainNode* node) { delete node; });
}

// The node blocks of `count` nodes, fresh from the system: the floor of the cold cases.
void freshPages(benchmark::State& state, int count)
{
    BenchType&        bt = benchType();
    const std::size_t before = NodeBlockPool::bytesInUse();
    SmartPtr<Node>    node(bt.type.createNode(bt.nameSpace.get()));
    const std::size_t blockBytes = NodeBlockPool::bytesInUse() - before;
    node = nullptr;
    for (auto _ : state)
        Bench::touchFreshPages(blockBytes * static_cast<std::size_t>(count));
    state.counters["time_per_node"] =
        benchmark::Counter(count, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

} // namespace

BENCHMARK_CAPTURE(createRelease, n10k, 10'000, Memory::Warm)->Name("create_release_10k/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(createReleasePlain, n10k, 10'000)->Name("create_release_10k/plain_struct")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(createRelease, n100k, 100'000, Memory::Warm)->Name("create_release_100k/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(createReleasePlain, n100k, 100'000)->Name("create_release_100k/plain_struct")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(createRelease, n1m, 1'000'000, Memory::Warm)->Name("create_release_1m/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(createReleasePlain, n1m, 1'000'000)->Name("create_release_1m/plain_struct")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(createRelease, cold10k, 10'000, Memory::Cold)->Name("create_release_cold_10k/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(freshPages, n10k, 10'000)->Name("create_release_cold_10k/fresh_pages")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(createRelease, cold100k, 100'000, Memory::Cold)->Name("create_release_cold_100k/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(freshPages, n100k, 100'000)->Name("create_release_cold_100k/fresh_pages")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(createRelease, cold1m, 1'000'000, Memory::Cold)->Name("create_release_cold_1m/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(freshPages, n1m, 1'000'000)->Name("create_release_cold_1m/fresh_pages")->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
