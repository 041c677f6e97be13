// Conversion between field types and the binary form of field values, each beside the bare
// loop that does the same work.
#include "base/BaseTypeAssign.h"
#include "base/MFFloat.h"
#include "base/MFVec3d.h"
#include "base/MFVec3f.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/SFFloat.h"
#include "base/SFInt32.h"
#include "base/SmartPtr.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

using namespace Orvane;

namespace {

constexpr int pointCount = 100'000;
constexpr int floatCount = 1'000'000;

// Fields without descriptors: conversion and decoding without change processing.
struct Scene {
    NodeType type{theBaseNodeTypeFactory(), "ConvertBenchNode", "Bench", "Node", nullptr, "1.0", "Bench", nullptr,
                  "stable", nullptr, "Orvane", false, false, &Node::isNodeType, &Node::createNode,
                  &Node::createProc, nullptr, 0};
    SmartPtr<NodeNameSpace> nameSpace{new NodeNameSpace("convert bench")};
    SmartPtr<Node>          node{type.createNode(nameSpace.get())};
};

Scene& scene()
{
    static Scene s;
    return s;
}

std::vector<float> randomFloats(int count)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> value(-1000.0f, 1000.0f);
    std::vector<float> out(static_cast<std::size_t>(count));
    for (float& v : out)
        v = value(random);
    return out;
}

// --- SFFloat to SFInt32, one value per call ---

void floatToIntField(benchmark::State& state)
{
    SFFloat from(*scene().node, 0.0f);
    SFInt32 to(*scene().node);
    float v = 0.5f;
    for (auto _ : state) {
        from.setValue(v);
        to.setValueByField(0.0, from);
        benchmark::DoNotOptimize(to.value());
        v += 1.0f;
    }
    state.SetItemsProcessed(state.iterations());
}

void floatToIntFunction(benchmark::State& state)
{
    int to = 0;
    float v = 0.5f;
    for (auto _ : state) {
        assignInt32FromFloat(to, v);
        benchmark::DoNotOptimize(to);
        v += 1.0f;
    }
    state.SetItemsProcessed(state.iterations());
}

void floatToIntCast(benchmark::State& state)
{
    int to = 0;
    float v = 0.5f;
    for (auto _ : state) {
        to = static_cast<int>(v);
        benchmark::DoNotOptimize(to);
        v += 1.0f;
    }
    state.SetItemsProcessed(state.iterations());
}

// --- MFVec3f to MFVec3d, 100,000 elements ---

std::vector<Vec3f> points()
{
    std::vector<float> f = randomFloats(pointCount * 3);
    std::vector<Vec3f> out(pointCount);
    std::memcpy(out.data(), f.data(), f.size() * sizeof(float));
    return out;
}

void vec3fToVec3dField(benchmark::State& state)
{
    MFVec3f from(*scene().node);
    from.value() = points();
    MFVec3d to(*scene().node);
    for (auto _ : state) {
        to.setValueByField(0.0, from);
        benchmark::DoNotOptimize(to.value().data());
    }
    state.SetItemsProcessed(state.iterations() * pointCount);
}

void vec3fToVec3dLoop(benchmark::State& state)
{
    const std::vector<Vec3f> from = points();
    std::vector<Vec3d> to;
    for (auto _ : state) {
        to.resize(from.size());
        for (std::size_t i = 0; i < from.size(); ++i)
            to[i] = Vec3d(from[i]);
        benchmark::DoNotOptimize(to.data());
    }
    state.SetItemsProcessed(state.iterations() * pointCount);
}

// --- MFFloat binary form, 1,000,000 values ---

void setBytes(benchmark::State& state)
{
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(4 + floatCount * 4));
}

void encodeField(benchmark::State& state)
{
    MFFloat field(*scene().node);
    field.value() = randomFloats(floatCount);
    for (auto _ : state) {
        std::string data = field.getBinValue();
        benchmark::DoNotOptimize(data.data());
    }
    setBytes(state);
}

void encodeMemcpy(benchmark::State& state)
{
    const std::vector<float> values = randomFloats(floatCount);
    for (auto _ : state) {
        std::string data(4 + values.size() * 4, '\0');
        int32_t count = int32_t(values.size());
        std::memcpy(data.data(), &count, 4);
        std::memcpy(data.data() + 4, values.data(), values.size() * 4);
        benchmark::DoNotOptimize(data.data());
    }
    setBytes(state);
}

void encodeLoop(benchmark::State& state)
{
    const std::vector<float> values = randomFloats(floatCount);
    for (auto _ : state) {
        std::string data;
        data.reserve(4 + values.size() * 4);
        int32_t count = int32_t(values.size());
        data.append(reinterpret_cast<const char*>(&count), 4);
        for (float v : values)
            data.append(reinterpret_cast<const char*>(&v), 4);
        benchmark::DoNotOptimize(data.data());
    }
    setBytes(state);
}

std::string encoded()
{
    MFFloat field(*scene().node);
    field.value() = randomFloats(floatCount);
    return field.getBinValue();
}

void decodeField(benchmark::State& state)
{
    const std::string data = encoded();
    MFFloat field(*scene().node);
    for (auto _ : state) {
        field.setValueByBin(0.0, data);
        benchmark::DoNotOptimize(field.value().data());
    }
    setBytes(state);
}

void decodeMemcpy(benchmark::State& state)
{
    const std::string data = encoded();
    std::vector<float> values;
    for (auto _ : state) {
        int32_t count;
        std::memcpy(&count, data.data(), 4);
        values.resize(std::size_t(count));
        std::memcpy(values.data(), data.data() + 4, values.size() * 4);
        benchmark::DoNotOptimize(values.data());
    }
    setBytes(state);
}

void decodeLoop(benchmark::State& state)
{
    const std::string data = encoded();
    std::vector<float> values;
    for (auto _ : state) {
        int32_t count;
        std::memcpy(&count, data.data(), 4);
        values.clear();
        const char* p = data.data() + 4;
        for (int32_t i = 0; i < count; ++i, p += 4) {
            float v;
            std::memcpy(&v, p, 4);
            values.push_back(v);
        }
        benchmark::DoNotOptimize(values.data());
    }
    setBytes(state);
}

} // namespace

BENCHMARK(floatToIntField)->Name("convert_SFFloat_SFInt32/orvane");
BENCHMARK(floatToIntFunction)->Name("convert_SFFloat_SFInt32/assign_function");
BENCHMARK(floatToIntCast)->Name("convert_SFFloat_SFInt32/plain_cast");
BENCHMARK(vec3fToVec3dField)->Name("convert_MFVec3f_MFVec3d/orvane")->Unit(benchmark::kMicrosecond);
BENCHMARK(vec3fToVec3dLoop)->Name("convert_MFVec3f_MFVec3d/plain_loop")->Unit(benchmark::kMicrosecond);
BENCHMARK(encodeField)->Name("encode_MFFloat/orvane")->Unit(benchmark::kMicrosecond);
BENCHMARK(encodeMemcpy)->Name("encode_MFFloat/memcpy")->Unit(benchmark::kMicrosecond);
BENCHMARK(encodeLoop)->Name("encode_MFFloat/append_loop")->Unit(benchmark::kMicrosecond);
BENCHMARK(decodeField)->Name("decode_MFFloat/orvane")->Unit(benchmark::kMicrosecond);
BENCHMARK(decodeMemcpy)->Name("decode_MFFloat/memcpy")->Unit(benchmark::kMicrosecond);
BENCHMARK(decodeLoop)->Name("decode_MFFloat/push_loop")->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
