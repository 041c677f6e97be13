// Deep copy of a scene tree: trees of 10,000, 100,000 and 1,000,000 nodes (fan-out 10, every
// node with a float, a vector and a string set, every 100th node DEF'd and routed to the next
// DEF'd one) copied into a new namespace with CopyAction::copy, beside creating and setting the
// same nodes directly in the same run: createNode into the parent's children field, the typed
// field setters, and Route::create for the same routes. Only the making is timed; releasing
// the copies is not. Each case first makes and releases its nodes once untimed, so that both
// measure a warm heap rather than whichever ran first. The counter s_per_node is the time per
// node (shown as e.g. "1.2u", that is microseconds).
#include "base/CopyAction.h"
#include "base/MFNode.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/Route.h"
#include "base/SFFloat.h"
#include "base/SFString.h"
#include "base/SFVec3f.h"
#include "base/SmartPtr.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

using namespace Orvane;

namespace {

constexpr int fanOut = 10;
constexpr int defEvery = 100;

struct BenchType {
    NodePartDesc parts[4] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess, "value"),
        NodePartDesc(3, PartMask::bit(3), ExposedFieldPartType, SFVec3fType, NodePartDesc::CtorAutoProcess,
                     "position"),
        NodePartDesc(4, PartMask::bit(4), ExposedFieldPartType, SFStringType, NodePartDesc::CtorAutoProcess, "label"),
        NodePartDesc(5, PartMask::bit(5), ExposedFieldPartType, MFNodeType, NodePartDesc::CtorAutoProcess,
                     "children"),
    };
    NodeType type{theBaseNodeTypeFactory(), "BenchCopyNode", "Bench", "Node", nullptr, "1.0", "Bench", nullptr,
                  "stable", nullptr, "Orvane", false, false, &Node::isNodeType, &Node::createNode,
                  &Node::createProc, parts, 4};

    BenchType() { type.initType(); }
};

BenchType& benchType()
{
    static BenchType& t = *new BenchType;
    return t;
}

// The texts of the tree, made before any timing: DEF names and labels.
struct TreeTexts {
    std::vector<std::string> names;  // empty for an unnamed node
    std::vector<std::string> labels;

    explicit TreeTexts(int count) : names(static_cast<std::size_t>(count)), labels(static_cast<std::size_t>(count))
    {
        for (int i = 0; i < count; ++i) {
            if (i % defEvery == 0)
                names[i] = "D" + std::to_string(i);
            labels[i] = "node " + std::to_string(i);
        }
    }
};

// The direct way: node i hangs below node (i - 1) / fanOut, made into its parent's children
// field and set field by field; the DEF'd nodes are routed one to the next.
Node* build(NodeNameSpace& nameSpace, const TreeTexts& texts)
{
    BenchType& bt = benchType();
    const int count = static_cast<int>(texts.names.size());
    std::vector<Node*> nodes(static_cast<std::size_t>(count));
    Node* lastNamed = nullptr;
    for (int i = 0; i < count; ++i) {
        BaseObject* parent = i == 0 ? static_cast<BaseObject*>(&nameSpace) : nodes[(i - 1) / fanOut]->findField(5);
        const char* name = texts.names[i].empty() ? nullptr : texts.names[i].c_str();
        Node* node = bt.type.createNode(parent, name);
        nodes[i] = node;
        static_cast<SFFloat*>(node->findField(2))->setValue(0.0, float(i));
        static_cast<SFVec3f*>(node->findField(3))->setValue(0.0, Vec3f(float(i), 1.0f, 2.0f));
        static_cast<SFString*>(node->findField(4))->setValue(0.0, texts.labels[i]);
        if (name) {
            if (lastNamed)
                Route::create(*lastNamed->findField(2), *node->findField(2));
            lastNamed = node;
        }
    }
    return nodes[0];
}

void copyTree(benchmark::State& state, int count)
{
    TreeTexts texts(count);
    SmartPtr<NodeNameSpace> source(new NodeNameSpace("source"));
    SmartPtr<Node> original(build(*source, texts));
    {
        SmartPtr<NodeNameSpace> warm(new NodeNameSpace("warm"));
        CopyAction(0.0, *source, *warm).copy(*original);
    }
    for (auto _ : state) {
        SmartPtr<NodeNameSpace> into(new NodeNameSpace("copy"));
        SmartPtr<Node> copy;
        {
            CopyAction action(0.0, *source, *into);
            copy = action.copy(*original);
        }
        benchmark::DoNotOptimize(copy.get());
        state.PauseTiming();
        if (into->nodeCount() != count)
            state.SkipWithError("the copy is incomplete");
        copy = nullptr;
        into = nullptr;
        state.ResumeTiming();
    }
    state.counters["s_per_node"] =
        benchmark::Counter(double(count), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void buildTree(benchmark::State& state, int count)
{
    TreeTexts texts(count);
    {
        SmartPtr<NodeNameSpace> warm(new NodeNameSpace("warm"));
        SmartPtr<Node> root(build(*warm, texts));
    }
    for (auto _ : state) {
        SmartPtr<NodeNameSpace> into(new NodeNameSpace("direct"));
        SmartPtr<Node> root(build(*into, texts));
        benchmark::DoNotOptimize(root.get());
        state.PauseTiming();
        root = nullptr;
        into = nullptr;
        state.ResumeTiming();
    }
    state.counters["s_per_node"] =
        benchmark::Counter(double(count), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

} // namespace

BENCHMARK_CAPTURE(copyTree, n10k, 10'000)->Name("copy_tree_10k/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(buildTree, n10k, 10'000)->Name("copy_tree_10k/create_and_set")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(copyTree, n100k, 100'000)->Name("copy_tree_100k/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(buildTree, n100k, 100'000)->Name("copy_tree_100k/create_and_set")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(copyTree, n1m, 1'000'000)->Name("copy_tree_1m/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(buildTree, n1m, 1'000'000)->Name("copy_tree_1m/create_and_set")->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
