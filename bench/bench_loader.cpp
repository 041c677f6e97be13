// Scene reading: a file with one 1,000,000-point Coordinate read by the classic reader, beside
// std::from_chars over the same 3,000,000 numbers (the bare number parsing any reader must do);
// and files of 10,000, 100,000 and 1,000,000 `Transform { Shape { Appearance { Material } Box } }`
// groups, in MB/s and microseconds per group. The same scenes as X3D XML (".x3d") read by the XML
// reader, beside pugixml's bare parse of the same bytes (with a walk over every attribute) and the
// classic reader on the same scene as X3D classic text (".x3dv"). Beside the cases in fresh
// memory, the cost of their node blocks fresh from the system, written once and nothing else.
#include "base/Log.h"
#include "base/NodeBlockPool.h"
#include "bench/FreshPages.h"
#include "modules/loader/SceneLoader.h"

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include <charconv>
#include <chrono>
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

// Where the memory of the timed reads comes from. Warm: from the reads before, as when a
// program loads scene after scene (an untimed read comes first, and the node block pool keeps
// what it released). Cold: fresh from the system in every read, as for the first scene a
// program loads, so the kernel's faulting in and clearing of the pages is counted too.
enum class Memory { Warm, Cold };

// Times the read alone: the reader is handed its own copy of the bytes, made before the clock
// runs, as a program hands over the buffer it read a file into; the scene is released outside
// the timed part, and what that takes is reported beside it (release_ms, per read).
void readScene(benchmark::State& state, const std::string& text, const char* url, Memory memory = Memory::Warm)
{
    quiet();
    const auto read = [&](std::string input) {
        LoadedScene scene = SceneLoader::loadData(std::move(input), url);
        if (!scene.errors.empty())
            state.SkipWithError("the scene read with errors");
        benchmark::DoNotOptimize(scene.root.get());
        return scene;
    };
    if (memory == Memory::Warm) {
        NodeBlockPool::setRetainLimit(std::size_t(8) << 30);
        read(text);
    }
    double releaseSeconds = 0;
    for (auto _ : state) {
        state.PauseTiming();
        if (memory == Memory::Cold)
            NodeBlockPool::trim();
        std::string input = text;
        state.ResumeTiming();
        LoadedScene scene = read(std::move(input));
        state.PauseTiming();
        const auto start = std::chrono::steady_clock::now();
        scene = LoadedScene();
        releaseSeconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<int64_t>(text.size()) * state.iterations());
    state.counters["release_ms"] = 1e3 * releaseSeconds / double(state.iterations());
}

void perGroup(benchmark::State& state, int groups)
{
    state.counters["us_per_group"] = benchmark::Counter(double(groups) * double(state.iterations()) / 1e6,
                                                        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void groupsReader(benchmark::State& state, Memory memory)
{
    const int groups = static_cast<int>(state.range(0));
    readScene(state, groupsFile(groups), "groups.wrl", memory);
    perGroup(state, groups);
}

void pointsReader(benchmark::State& state)
{
    readScene(state, pointsFile(), "points.wrl");
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

// --- the same scenes in the X3D encodings ---

enum class Encoding { Xml, Classic };

std::string pointsText(Encoding encoding)
{
    std::mt19937                          random(7);
    std::uniform_real_distribution<float> value(-1000.0f, 1000.0f);
    std::string out = encoding == Encoding::Xml
                          ? "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<X3D profile=\"Interchange\" version=\"4.0\">"
                            "<Scene><Shape><PointSet><Coordinate point=\""
                          : "#X3D V4.0 utf8\nPROFILE Interchange\nShape { geometry PointSet { coord Coordinate { point [\n";
    char        buffer[64];
    for (int i = 0; i < 1000000; ++i) {
        int n = std::snprintf(buffer, sizeof buffer, "%.6g %.6g %.6g,\n", value(random), value(random), value(random));
        out.append(buffer, static_cast<std::size_t>(n));
    }
    out += encoding == Encoding::Xml ? "\"/></PointSet></Shape></Scene></X3D>\n" : "] } } }\n";
    return out;
}

const std::string& pointsText(int encoding)
{
    static const std::string xml = pointsText(Encoding::Xml), classic = pointsText(Encoding::Classic);
    return encoding == 0 ? xml : classic;
}

std::string groupsText(Encoding encoding, int groups)
{
    const bool  xml = encoding == Encoding::Xml;
    std::string out = xml ? "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<X3D profile=\"Interchange\" version=\"4.0\">"
                            "<Scene>\n"
                          : "#X3D V4.0 utf8\nPROFILE Interchange\n";
    char buffer[256];
    for (int i = 0; i < groups; ++i) {
        int n = std::snprintf(buffer, sizeof buffer,
                              xml ? "<Transform translation=\"%d 0 0\"><Shape>\n"
                                    "  <Appearance><Material diffuseColor=\"0.8 0.2 0.1\"/></Appearance>\n"
                                    "  <Box size=\"1 2 3\"/></Shape></Transform>\n"
                                  : "Transform { translation %d 0 0 children Shape {\n"
                                    "  appearance Appearance { material Material { diffuseColor 0.8 0.2 0.1 } }\n"
                                    "  geometry Box { size 1 2 3 } } }\n",
                              i);
        out.append(buffer, static_cast<std::size_t>(n));
    }
    if (xml)
        out += "</Scene></X3D>\n";
    return out;
}

// The parser alone: its own copy of the bytes, made before the clock runs as for the reader,
// parsed in place, and every attribute value looked at once.
void bareParse(benchmark::State& state, const std::string& text)
{
    for (auto _ : state) {
        state.PauseTiming();
        std::string buffer = text;
        state.ResumeTiming();
        pugi::xml_document  doc;
        const unsigned      options = pugi::parse_cdata | pugi::parse_escapes | pugi::parse_wconv_attribute |
                                 pugi::parse_eol | pugi::parse_doctype;
        if (!doc.load_buffer_inplace(buffer.data(), buffer.size(), options, pugi::encoding_utf8))
            state.SkipWithError("pugixml refused the document");
        std::size_t sum = 0;
        for (pugi::xml_node n = doc.document_element(); n;) {
            for (pugi::xml_attribute a = n.first_attribute(); a; a = a.next_attribute())
                sum += static_cast<unsigned char>(a.value()[0]);
            if (n.first_child())
                n = n.first_child();
            else {
                while (n && !n.next_sibling())
                    n = n.parent();
                if (n)
                    n = n.next_sibling();
            }
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(static_cast<int64_t>(text.size()) * state.iterations());
}

void xmlPointsReader(benchmark::State& state)
{
    readScene(state, pointsText(0), "points.x3d");
}

void xmlPointsBareParse(benchmark::State& state)
{
    bareParse(state, pointsText(0));
}

void xmlPointsClassic(benchmark::State& state)
{
    readScene(state, pointsText(1), "points.x3dv");
}

void xmlGroupsReader(benchmark::State& state, Memory memory)
{
    const int groups = static_cast<int>(state.range(0));
    readScene(state, groupsText(Encoding::Xml, groups), "groups.x3d", memory);
    perGroup(state, groups);
}

void xmlGroupsBareParse(benchmark::State& state)
{
    const int groups = static_cast<int>(state.range(0));
    bareParse(state, groupsText(Encoding::Xml, groups));
    perGroup(state, groups);
}

void xmlGroupsClassic(benchmark::State& state)
{
    const int groups = static_cast<int>(state.range(0));
    readScene(state, groupsText(Encoding::Classic, groups), "groups.x3dv");
    perGroup(state, groups);
}

// The node blocks of the groups, fresh from the system: the floor of the cold group cases.
void groupsFreshPages(benchmark::State& state)
{
    quiet();
    const int         groups = static_cast<int>(state.range(0));
    const std::size_t before = NodeBlockPool::bytesInUse();
    LoadedScene       sample = SceneLoader::loadData(groupsFile(1000), "groups.wrl");
    const std::size_t perGroupBytes = (NodeBlockPool::bytesInUse() - before) / 1000;
    sample = LoadedScene();
    for (auto _ : state)
        Bench::touchFreshPages(perGroupBytes * static_cast<std::size_t>(groups));
    perGroup(state, groups);
}

} // namespace

BENCHMARK(pointsReader)->Name("coordinate_1m_points/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK(pointsFromChars)->Name("coordinate_1m_points/from_chars")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(groupsReader, warm, Memory::Warm)->Name("transform_groups/orvane")->Arg(10000)->Arg(100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(groupsReader, warm, Memory::Warm)->Name("transform_groups/orvane")->Arg(1000000)
    ->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(groupsReader, cold, Memory::Cold)->Name("transform_groups_cold/orvane")->Arg(10000)->Arg(100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(groupsReader, cold, Memory::Cold)->Name("transform_groups_cold/orvane")->Arg(1000000)
    ->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(groupsFreshPages)->Name("transform_groups_cold/fresh_pages")->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(groupsFreshPages)->Name("transform_groups_cold/fresh_pages")->Arg(1000000)->Unit(benchmark::kMillisecond)
    ->Iterations(1);

BENCHMARK(xmlPointsReader)->Name("x3d_coordinate_1m_points/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK(xmlPointsBareParse)->Name("x3d_coordinate_1m_points/pugixml_parse")->Unit(benchmark::kMillisecond);
BENCHMARK(xmlPointsClassic)->Name("x3d_coordinate_1m_points/classic_x3dv")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(xmlGroupsReader, warm, Memory::Warm)->Name("x3d_transform_groups/orvane")->Arg(10000)->Arg(100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(xmlGroupsBareParse)->Name("x3d_transform_groups/pugixml_parse")->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(xmlGroupsClassic)->Name("x3d_transform_groups/classic_x3dv")->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(xmlGroupsReader, warm, Memory::Warm)->Name("x3d_transform_groups/orvane")->Arg(1000000)
    ->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(xmlGroupsBareParse)->Name("x3d_transform_groups/pugixml_parse")->Arg(1000000)->Unit(benchmark::kMillisecond)
    ->Iterations(1)->Repetitions(1);
BENCHMARK(xmlGroupsClassic)->Name("x3d_transform_groups/classic_x3dv")->Arg(1000000)->Unit(benchmark::kMillisecond)
    ->Iterations(1)->Repetitions(1);
BENCHMARK_CAPTURE(xmlGroupsReader, cold, Memory::Cold)->Name("x3d_transform_groups_cold/orvane")->Arg(10000)->Arg(100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(xmlGroupsReader, cold, Memory::Cold)->Name("x3d_transform_groups_cold/orvane")->Arg(1000000)
    ->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(groupsFreshPages)->Name("x3d_transform_groups_cold/fresh_pages")->Arg(10000)->Arg(100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(groupsFreshPages)->Name("x3d_transform_groups_cold/fresh_pages")->Arg(1000000)->Unit(benchmark::kMillisecond)
    ->Iterations(1);

BENCHMARK_MAIN();
