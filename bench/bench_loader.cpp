// Scene reading: a file with one 1,000,000-point Coordinate read by the classic reader, beside
// std::from_chars over the same 3,000,000 numbers (the bare number parsing any reader must do);
// and files of 10,000, 100,000 and 1,000,000 `Transform { Shape { Appearance { Material } Box } }`
// groups, in MB/s and microseconds per group.
#include "base/Log.h"
#include "modules/loader/SceneLoader.h"

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <random>
#include <string>

using namespace Orvane;

namespace {

const std::string& pointsFile()
{
    static const std::string text = [] {
        std::mt19937                          random(7);
        std::uniform_real_distribution<float> value(-1000.0f, 1000.0f);
        std::string out = "#VRML V2.0 utf8\nShape { geometry PointSet { coord Coordinate { point [\n";
        char        buffer[64];
        for (int i = 0; i < 1000000; ++i) {
            int n = std::snprintf(buffer, sizeof buffer, "%.6g %.6g %.6g,\n", value(random), value(random),
                                  value(random));
            out.append(buffer, static_cast<std::size_t>(n));
        }
        out += "] } } }\n";
        return out;
    }();
    return text;
}

std::string groupsFile(int groups)
{
    std::string out = "#VRML V2.0 utf8\n";
    char        buffer[256];
    for (int i = 0; i < groups; ++i) {
        int n = std::snprintf(buffer, sizeof buffer,
                              "Transform { translation %d 0 0 children Shape {\n"
                              "  appearance Appearance { material Material { diffuseColor 0.8 0.2 0.1 } }\n"
                              "  geometry Box { size 1 2 3 } } }\n",
                              i);
        out.append(buffer, static_cast<std::size_t>(n));
    }
    return out;
}

void quiet()
{
    Log::the().setLevel(LOG_FATAL);
}

void pointsReader(benchmark::State& state)
{
    quiet();
    const std::string& text = pointsFile();
    for (auto _ : state) {
        LoadedScene scene = SceneLoader::loadData(text, "points.wrl");
        if (!scene.errors.empty())
            state.SkipWithError("the points file read with errors");
        benchmark::DoNotOptimize(scene.root.get());
    }
    state.SetBytesProcessed(static_cast<int64_t>(text.size()) * state.iterations());
}

void pointsFromChars(benchmark::State& state)
{
    const std::string& text = pointsFile();
    const char*        begin = text.data() + text.find('[') + 1;
    const char*        end = text.data() + text.rfind(']');
    for (auto _ : state) {
        double sum = 0;
        for (const char* p = begin; p < end;) {
            while (p < end && (*p == ' ' || *p == ',' || *p == '\n'))
                ++p;
            float v = 0;
            auto  result = std::from_chars(p, end, v);
            if (result.ec != std::errc())
                break;
            sum += v;
            p = result.ptr;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(static_cast<int64_t>(text.size()) * state.iterations());
}

void groupsReader(benchmark::State& state)
{
    quiet();
    const int         groups = static_cast<int>(state.range(0));
    const std::string text = groupsFile(groups);
    for (auto _ : state) {
        LoadedScene scene = SceneLoader::loadData(text, "groups.wrl");
        if (!scene.errors.empty())
            state.SkipWithError("the groups file read with errors");
        benchmark::DoNotOptimize(scene.root.get());
    }
    state.SetBytesProcessed(static_cast<int64_t>(text.size()) * state.iterations());
    state.counters["us_per_group"] = benchmark::Counter(double(groups) * double(state.iterations()) / 1e6,
                                                        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

} // namespace

BENCHMARK(pointsReader)->Name("coordinate_1m_points/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK(pointsFromChars)->Name("coordinate_1m_points/from_chars")->Unit(benchmark::kMillisecond);
BENCHMARK(groupsReader)->Name("transform_groups/orvane")->Arg(10000)->Arg(100000)->Arg(1000000)
    ->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(1);

BENCHMARK_MAIN();
