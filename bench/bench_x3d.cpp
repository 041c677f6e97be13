// The X3D node catalog: registering and completing all 338 types of the catalog in a type namespace
// of their own, beside copying the same facts into a plain map of names to field records; and making
// one node of each of the 260 concrete types (every field at its default), beside making the same
// fields alone from their field types and default texts.
#include "base/Field.h"
#include "base/FieldType.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/SmartPtr.h"
#include "modules/x3d/X3DCatalog.h"

#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace Orvane;

namespace {

void registerCatalog(benchmark::State& state)
{
    std::unique_ptr<NodeTypeNameSpace> types{NodeTypeNameSpace::create("bench", &theBaseNodeTypeFactory())};
    for (auto _ : state) {
        auto catalog = std::make_unique<X3DCatalog>(*types);
        benchmark::DoNotOptimize(catalog.get());
        state.PauseTiming();
        catalog.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * 338);
}

// The facts alone, as a naive registry keeps them: type name to its fields' texts and numbers.
struct PlainField {
    std::string name, defaultValue, valueType;
    int         access, dataType;
};

void registerPlain(benchmark::State& state)
{
    const X3DCatalog& catalog = X3DCatalog::init();
    for (auto _ : state) {
        std::map<std::string, std::vector<PlainField>> registry;
        for (const SmartPtr<NodeType>& type : catalog.types()) {
            std::vector<PlainField>& fields = registry[type->name()];
            for (const NodePartDesc* desc : type->localParts())
                fields.push_back({desc->name(), desc->defaultValue(), desc->valueType(), desc->partType(),
                                  desc->dataType()});
        }
        benchmark::DoNotOptimize(registry);
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * 338);
}

std::vector<NodeType*> concreteTypes()
{
    std::vector<NodeType*> out;
    for (const SmartPtr<NodeType>& type : X3DCatalog::init().types())
        if (!type->isAbstract())
            out.push_back(type.get());
    return out;
}

void createEachType(benchmark::State& state)
{
    const std::vector<NodeType*> types = concreteTypes();
    SmartPtr<NodeNameSpace>      scene{new NodeNameSpace("bench")};
    std::vector<SmartPtr<Node>>  nodes;
    nodes.reserve(types.size());
    for (auto _ : state) {
        for (NodeType* type : types)
            nodes.emplace_back(type->createNode(scene.get()));
        nodes.clear();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(types.size()));
}

// Every field of every node made from its field type and set from its default text, without nodes.
void createFieldsOnly(benchmark::State& state)
{
    const std::vector<NodeType*> types = concreteTypes();
    SmartPtr<NodeNameSpace>      scene{new NodeNameSpace("bench")};
    SmartPtr<Node>               owner{types.front()->createNode(scene.get())};
    std::vector<std::unique_ptr<Field>> fields;
    for (auto _ : state) {
        for (NodeType* type : types)
            for (unsigned id = 0; id < type->partCount(); ++id) {
                const NodePartDesc* desc = type->part(id);
                Field* field = FieldType::create(desc->dataType(), *owner);
                if (!desc->defaultValue().empty())
                    field->setValueByStr(0.0, desc->defaultValue().c_str());
                fields.emplace_back(field);
            }
        fields.clear();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(types.size()));
}

} // namespace

BENCHMARK(registerCatalog)->Name("register_catalog/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK(registerPlain)->Name("register_catalog/plain_map")->Unit(benchmark::kMillisecond);
BENCHMARK(createEachType)->Name("create_each_type/orvane")->Unit(benchmark::kMicrosecond);
BENCHMARK(createFieldsOnly)->Name("create_each_type/fields_only")->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
