// Prototype instances beside the nodes and routes they stand for:
// - 10,000 instances of a prototype whose body is a Group with nine Value children (ten nodes)
//   and three IS links (two inputOnly, one outputOnly: three IS routes per instance);
// - the same work done directly: per instance one node standing for the interface, the ten body
//   nodes linked the same way, and three routes between them.
// Only the making is timed; releasing runs with the clock stopped. The counter us_per_instance
// gives the cost of one instance (or of one direct set).
#include "base/MFNode.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/ProtoDeclaration.h"
#include "base/ProtoInstance.h"
#include "base/Route.h"
#include "base/SFFloat.h"
#include "base/SmartPtr.h"

#include <benchmark/benchmark.h>

#include <vector>

using namespace Orvane;

namespace {

constexpr int instanceCount = 10000;
constexpr int children = 9;

struct BenchTypes {
    NodePartDesc valueParts[3] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess, "f"),
        NodePartDesc(3, PartMask::bit(3), EventInPartType, SFFloatType, NodePartDesc::CtorAutoProcess, "in"),
        NodePartDesc(4, PartMask::bit(4), EventOutPartType, SFFloatType, NodePartDesc::CtorAutoProcess, "out"),
    };
    NodePartDesc groupParts[1] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, MFNodeType, NodePartDesc::CtorAutoProcess, "children"),
    };
    NodeType valueType{theBaseNodeTypeFactory(), "BenchProtoValue", "Bench", "Node", nullptr, "1.0", "Bench",
                       nullptr, "stable", nullptr, "Orvane", false, false, &Node::isNodeType, &Node::createNode,
                       &Node::createProc, valueParts, 3};
    NodeType groupType{theBaseNodeTypeFactory(), "BenchProtoGroup", "Bench", "Node", nullptr, "1.0", "Bench",
                       nullptr, "stable", nullptr, "Orvane", false, false, &Node::isNodeType, &Node::createNode,
                       &Node::createProc, groupParts, 1};
    SmartPtr<NodeNameSpace> scene{new NodeNameSpace("benchProtos")};
    NodeType*               protoType = nullptr;

    BenchTypes()
    {
        valueType.initType();
        groupType.initType();
        ProtoDeclaration* d = ProtoDeclaration::declare(*scene, "BenchProto");
        d->addField("inputOnly", "SFFloat", "setA");
        d->addField("inputOnly", "SFFloat", "setB");
        d->addField("outputOnly", "SFFloat", "outC");
        Node* group = d->createBodyNode("BenchProtoGroup", "G");
        const char* names[children] = {"A", "B", "C"};
        for (int i = 0; i < children; ++i)
            d->createBodyNode("BenchProtoValue", names[i], group->findField("children"));
        d->addIsLink("setA", "A", "in");
        d->addIsLink("setB", "B", "in");
        d->addIsLink("outC", "C", "out");
        protoType = d->protoType();
    }
};

BenchTypes& types()
{
    static BenchTypes& t = *new BenchTypes;
    return t;
}

void protoInstances(benchmark::State& state)
{
    BenchTypes& t = types();
    std::vector<SmartPtr<Node>> made;
    made.reserve(instanceCount);
    for (auto _ : state) {
        for (int i = 0; i < instanceCount; ++i)
            made.emplace_back(t.protoType->createNode(t.scene.get()));
        state.PauseTiming();
        if (ProtoInstance::cast(made.back().get())->rootNodes().size() != 1)
            state.SkipWithError("the instance has no body");
        made.clear();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * instanceCount);
    state.counters["us_per_instance"] = benchmark::Counter(double(state.iterations()) * instanceCount * 1e-6,
                                                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void directNodes(benchmark::State& state)
{
    BenchTypes& t = types();
    std::vector<SmartPtr<Node>> made;
    made.reserve(instanceCount * 2);
    for (auto _ : state) {
        for (int i = 0; i < instanceCount; ++i) {
            Node* face = t.valueType.createNode(t.scene.get());
            Node* group = t.groupType.createNode(t.scene.get());
            made.emplace_back(face);
            made.emplace_back(group);
            auto& list = static_cast<MFNode&>(*group->findField(2u));
            Node* linked[3] = {};
            for (int c = 0; c < children; ++c) {
                Node* child = t.valueType.createNode(t.scene.get());
                list.addChild(child);
                if (c < 3)
                    linked[c] = child;
            }
            Route::create(*face->findField(2u), *linked[0]->findField(3u), Route::DEFAULT, true);
            Route::create(*face->findField(2u), *linked[1]->findField(3u), Route::DEFAULT, true);
            Route::create(*linked[2]->findField(4u), *face->findField(2u), Route::DEFAULT, true);
        }
        state.PauseTiming();
        made.clear();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * instanceCount);
    state.counters["us_per_instance"] = benchmark::Counter(double(state.iterations()) * instanceCount * 1e-6,
                                                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

} // namespace

BENCHMARK(protoInstances)->Name("proto_instances_10000/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK(directNodes)->Name("proto_instances_10000/direct_nodes_and_routes")->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
