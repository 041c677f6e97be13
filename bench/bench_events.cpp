// Event delivery along routes, each beside the bare work it stands for:
// - one SFFloat event through a chain of 1,000 live nodes routed exposed field to exposed field,
//   beside a chain of 1,000 virtual calls that each copy a float (microseconds per iteration
//   read as nanoseconds per hop; the counter ns_per_hop says it directly);
// - one field routed to 1,000 fields, beside 1,000 virtual calls from one loop;
// - an MFVec3f of 1,000 elements along a chain of 100 nodes, beside memcpy of the same bytes
//   from buffer to buffer (counter ns_per_elem_hop).
#include "base/MFVec3f.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/Route.h"
#include "base/SFFloat.h"
#include "base/SmartPtr.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <vector>

using namespace Orvane;

namespace {

constexpr int chainLength = 1000;
constexpr int fanOut = 1000;
constexpr int vecChainLength = 100;
constexpr int vecSize = 1000;

// Two exposed, auto-processed fields after the two that every node inherits from "Node".
struct BenchType {
    NodePartDesc parts[2] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess, "value"),
        NodePartDesc(3, PartMask::bit(3), ExposedFieldPartType, MFVec3fType, NodePartDesc::CtorAutoProcess, "points"),
    };
    NodeType type{theBaseNodeTypeFactory(), "BenchEventNode", "Bench", "Node", nullptr, "1.0", "Bench", nullptr,
                  "stable", nullptr, "Orvane", false, false, &Node::isNodeType, &Node::createNode,
                  &Node::createProc, parts, 2};
    SmartPtr<NodeNameSpace> nameSpace{new NodeNameSpace("benchEvents")};

    BenchType() { type.initType(); }

    SmartPtr<Node> live()
    {
        SmartPtr<Node> node(type.createNode(nameSpace.get()));
        node->setNodeState(0.0, Live);
        return node;
    }
};

BenchType& benchType()
{
    static BenchType& t = *new BenchType;
    return t;
}

SFFloat& value(Node& node)
{
    return *static_cast<SFFloat*>(node.findField(2u));
}

MFVec3f& points(Node& node)
{
    return *static_cast<MFVec3f*>(node.findField(3u));
}

// Nodes routed one after the other on field `id`.
std::vector<SmartPtr<Node>> chain(int length, unsigned id)
{
    std::vector<SmartPtr<Node>> nodes;
    for (int i = 0; i < length; ++i) {
        nodes.push_back(benchType().live());
        if (i)
            Route::create(*nodes[i - 1]->findField(id), *nodes[i]->findField(id));
    }
    return nodes;
}

// --- the baseline: a chain of virtual calls, each copying a float ---

struct Receiver {
    virtual ~Receiver() = default;
    virtual void receive(float v) = 0;
};

struct ChainLink final : Receiver {
    float     value = 0.0f;
    Receiver* next = nullptr;
    void receive(float v) override
    {
        value = v;
        benchmark::DoNotOptimize(value);
        if (next)
            next->receive(value);
        // Something left to do after the call, as after every delivery: no tail call, so the
        // chain is as deep as the route chain.
        benchmark::ClobberMemory();
    }
};

std::vector<std::unique_ptr<ChainLink>> links(int count, bool chained)
{
    std::vector<std::unique_ptr<ChainLink>> out;
    for (int i = 0; i < count; ++i)
        out.push_back(std::make_unique<ChainLink>());
    if (chained)
        for (int i = 0; i + 1 < count; ++i)
            out[i]->next = out[i + 1].get();
    return out;
}

// --- a chain of 1,000 nodes ---

void eventChain(benchmark::State& state)
{
    auto nodes = chain(chainLength, 2u);
    SFFloat& first = value(*nodes.front());
    float    v = 0.0f;
    for (auto _ : state) {
        first.setValue(1.0, v += 1.0f, Field::FieldCaller);
        benchmark::DoNotOptimize(value(*nodes.back()).value());
    }
    if (value(*nodes.back()).value() != v)
        state.SkipWithError("the event did not reach the end of the chain");
    state.SetItemsProcessed(state.iterations() * chainLength);
    state.counters["ns_per_hop"] =
        benchmark::Counter(double(state.iterations()) * chainLength, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void virtualChain(benchmark::State& state)
{
    auto   chainLinks = links(chainLength, true);
    Receiver* first = chainLinks.front().get();
    benchmark::DoNotOptimize(first);
    float v = 0.0f;
    for (auto _ : state) {
        first->receive(v += 1.0f);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * chainLength);
    state.counters["ns_per_hop"] =
        benchmark::Counter(double(state.iterations()) * chainLength, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// --- one field to 1,000 ---

void eventFanOut(benchmark::State& state)
{
    std::vector<SmartPtr<Node>> nodes;
    nodes.push_back(benchType().live());
    for (int i = 0; i < fanOut; ++i) {
        nodes.push_back(benchType().live());
        Route::create(value(*nodes.front()), value(*nodes.back()));
    }
    SFFloat& source = value(*nodes.front());
    float    v = 0.0f;
    for (auto _ : state) {
        source.setValue(1.0, v += 1.0f, Field::FieldCaller);
        benchmark::DoNotOptimize(value(*nodes.back()).value());
    }
    if (value(*nodes.back()).value() != v)
        state.SkipWithError("the event did not reach the last target");
    state.SetItemsProcessed(state.iterations() * fanOut);
    state.counters["ns_per_target"] =
        benchmark::Counter(double(state.iterations()) * fanOut, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void virtualFanOut(benchmark::State& state)
{
    auto targets = links(fanOut, false);
    std::vector<Receiver*> receivers;
    for (auto& t : targets)
        receivers.push_back(t.get());
    benchmark::DoNotOptimize(receivers.data());
    float v = 0.0f;
    for (auto _ : state) {
        v += 1.0f;
        for (Receiver* r : receivers)
            r->receive(v);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * fanOut);
    state.counters["ns_per_target"] =
        benchmark::Counter(double(state.iterations()) * fanOut, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// --- an MFVec3f of 1,000 elements through 100 nodes ---

void setElementHops(benchmark::State& state)
{
    const double elementHops = double(state.iterations()) * vecSize * vecChainLength;
    state.SetBytesProcessed(int64_t(state.iterations()) * vecChainLength * vecSize * int64_t(sizeof(Vec3f)));
    state.counters["ns_per_elem_hop"] =
        benchmark::Counter(elementHops, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void vecChain(benchmark::State& state)
{
    // The first node sends to the second: 100 hops.
    auto nodes = chain(vecChainLength + 1, 3u);
    MFVec3f& first = points(*nodes.front());
    std::vector<Vec3f> values(vecSize, Vec3f(1.0f, 2.0f, 3.0f));
    for (auto _ : state) {
        values[0].x += 1.0f;
        first.setValue(1.0, values, Field::FieldCaller);
        benchmark::DoNotOptimize(points(*nodes.back()).value().data());
    }
    if (points(*nodes.back()).value() != values)
        state.SkipWithError("the value did not reach the end of the chain");
    setElementHops(state);
}

void vecMemcpy(benchmark::State& state)
{
    std::vector<std::vector<Vec3f>> buffers(vecChainLength + 1, std::vector<Vec3f>(vecSize));
    std::vector<Vec3f> values(vecSize, Vec3f(1.0f, 2.0f, 3.0f));
    for (auto _ : state) {
        values[0].x += 1.0f;
        std::memcpy(buffers[0].data(), values.data(), vecSize * sizeof(Vec3f));
        for (int i = 1; i <= vecChainLength; ++i)
            std::memcpy(buffers[i].data(), buffers[i - 1].data(), vecSize * sizeof(Vec3f));
        benchmark::DoNotOptimize(buffers.back().data());
        benchmark::ClobberMemory();
    }
    setElementHops(state);
}

} // namespace

BENCHMARK(eventChain)->Name("event_chain_1000/orvane")->Unit(benchmark::kMicrosecond);
BENCHMARK(virtualChain)->Name("event_chain_1000/virtual_calls")->Unit(benchmark::kMicrosecond);
BENCHMARK(eventFanOut)->Name("fan_out_1000/orvane")->Unit(benchmark::kMicrosecond);
BENCHMARK(virtualFanOut)->Name("fan_out_1000/virtual_calls")->Unit(benchmark::kMicrosecond);
BENCHMARK(vecChain)->Name("mfvec3f_1000_chain_100/orvane")->Unit(benchmark::kMicrosecond);
BENCHMARK(vecMemcpy)->Name("mfvec3f_1000_chain_100/memcpy")->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
