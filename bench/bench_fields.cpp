// Field text form and setter throughput, each beside the bare standard-library loop that does
// the same work.
#include "base/MFFloat.h"
#include "base/MFVec3f.h"
#include "base/Node.h"
#include "base/NodePartDesc.h"
#include "base/NodeNameSpace.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/SFFloat.h"
#include "base/SmartPtr.h"

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdlib>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using namespace Orvane;

namespace {

constexpr int numberCount = 1'000'000;

// 1,000,000 numbers as a field's text form writes them, separated by ", ".
const std::string& numberText()
{
    static const std::string text = [] {
        std::mt19937 random(7);
        std::uniform_real_distribution<float> value(-1000.0f, 1000.0f);
        std::string out;
        for (int i = 0; i < numberCount; ++i) {
            if (i)
                out += ", ";
            char buffer[64];
            auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, double(value(random)),
                                           std::chars_format::fixed, 6);
            out.append(buffer, end);
        }
        return out;
    }();
    return text;
}

// The three fields follow the two that every node type inherits from "Node".
struct Scene {
    NodePartDesc parts[3] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, MFFloatType, 0, "values"),
        NodePartDesc(3, PartMask::bit(3), ExposedFieldPartType, MFVec3fType, 0, "points"),
        NodePartDesc(4, PartMask::bit(4), ExposedFieldPartType, SFFloatType, 0, "scale"),
    };
    NodeType type{theBaseNodeTypeFactory(), "BenchNode", "Bench", "Node", nullptr, "1.0", "Bench", nullptr,
                  "stable", nullptr, "Orvane", false, false, &Node::isNodeType, &Node::createNode,
                  &Node::createProc, parts, 3};
    SmartPtr<NodeNameSpace> nameSpace{new NodeNameSpace("bench")};
    SmartPtr<Node>          node{type.createNode(nameSpace.get())};

    // Field i of the three.
    Field* field(unsigned i) const { return node->findField(i + 2); }
};

Scene& scene()
{
    static Scene s;
    return s;
}

void setBytes(benchmark::State& state)
{
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(numberText().size()));
}

// --- parsing ---

void parseField(benchmark::State& state, unsigned id)
{
    Field& field = *scene().field(id);
    const std::string& text = numberText();
    for (auto _ : state) {
        field.setValueByStr(0.0, text.c_str());
        benchmark::DoNotOptimize(field.size());
    }
    setBytes(state);
}

void parseFromChars(benchmark::State& state)
{
    const std::string& text = numberText();
    std::vector<float> out;
    for (auto _ : state) {
        out.clear();
        const char* p = text.data();
        const char* last = p + text.size();
        while (p < last) {
            while (p < last && (*p == ' ' || *p == ','))
                ++p;
            double value;
            auto [end, ec] = std::from_chars(p, last, value);
            out.push_back(float(value));
            p = end;
        }
        benchmark::DoNotOptimize(out.data());
    }
    setBytes(state);
}

void parseStrtod(benchmark::State& state)
{
    const std::string& text = numberText();
    std::vector<float> out;
    for (auto _ : state) {
        out.clear();
        const char* p = text.c_str();
        for (;;) {
            char* end;
            double value = std::strtod(p, &end);
            if (end == p)
                break;
            out.push_back(float(value));
            p = end;
            while (*p == ',')
                ++p;
        }
        benchmark::DoNotOptimize(out.data());
    }
    setBytes(state);
}

// --- printing ---

void printField(benchmark::State& state, unsigned id)
{
    Field& field = *scene().field(id);
    field.setValueByStr(0.0, numberText().c_str());
    std::string out;
    for (auto _ : state) {
        field.getStrValue(out);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(out.size()));
}

std::vector<float> numbers()
{
    Scene& s = scene();
    auto& values = static_cast<MFFloat&>(*s.field(0));
    values.setValueByStr(0.0, numberText().c_str());
    return values.value();
}

void printToChars(benchmark::State& state)
{
    std::vector<float> values = numbers();
    std::string out;
    for (auto _ : state) {
        out.clear();
        char buffer[64];
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (i)
                out += ", ";
            auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, double(values[i]),
                                           std::chars_format::fixed, 6);
            out.append(buffer, end);
        }
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(out.size()));
}

void printOstream(benchmark::State& state)
{
    std::vector<float> values = numbers();
    std::size_t size = 0;
    for (auto _ : state) {
        std::ostringstream stream;
        stream.setf(std::ios::fixed);
        stream.precision(6);
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (i)
                stream << ", ";
            stream << values[i];
        }
        std::string out = stream.str();
        size = out.size();
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(size));
}

// --- one set on a live node ---

void setLive(benchmark::State& state)
{
    Scene& s = scene();
    s.node->setNodeState(0.0, Live);
    auto& scale = static_cast<SFFloat&>(*s.field(2));
    float v = 0.0f;
    for (auto _ : state) {
        scale.setValue(0.0, v, Field::FieldCaller);
        v += 1.0f;
    }
    benchmark::DoNotOptimize(scale.value());
    state.SetItemsProcessed(state.iterations());
}

void setPlain(benchmark::State& state)
{
    float target = 0.0f;
    float v = 0.0f;
    for (auto _ : state) {
        target = v;
        benchmark::DoNotOptimize(target);
        v += 1.0f;
    }
    state.SetItemsProcessed(state.iterations());
}

} // namespace

BENCHMARK_CAPTURE(parseField, values, 0u)->Name("parse_MFFloat/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK(parseFromChars)->Name("parse_MFFloat/from_chars")->Unit(benchmark::kMillisecond);
BENCHMARK(parseStrtod)->Name("parse_MFFloat/strtod")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseField, points, 1u)->Name("parse_MFVec3f/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK(parseFromChars)->Name("parse_MFVec3f/from_chars")->Unit(benchmark::kMillisecond);
BENCHMARK(parseStrtod)->Name("parse_MFVec3f/strtod")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(printField, values, 0u)->Name("print_MFFloat/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK(printToChars)->Name("print_MFFloat/to_chars")->Unit(benchmark::kMillisecond);
BENCHMARK(printOstream)->Name("print_MFFloat/ostringstream")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(printField, points, 1u)->Name("print_MFVec3f/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK(printToChars)->Name("print_MFVec3f/to_chars")->Unit(benchmark::kMillisecond);
BENCHMARK(printOstream)->Name("print_MFVec3f/ostringstream")->Unit(benchmark::kMillisecond);
BENCHMARK(setLive)->Name("set_SFFloat_live/orvane");
BENCHMARK(setPlain)->Name("set_SFFloat_live/plain_store");

BENCHMARK_MAIN();
