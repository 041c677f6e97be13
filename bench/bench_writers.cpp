// Scene writing: 10,000, 100,000 and 1,000,000 `Transform { Shape { Appearance { Material } Box } }`
// groups written as classic VRML to memory and to a file, beside a naive writer that formats
// each line on its own and hands it to the stream with std::endl (one flush, and for a file one
// system call, per line). The same scenes written as X3D XML, beside the classic writer on the
// same scene and beside a naive XML writer of the same kind. And a 1,000,000-point MFVec3f written through the writer, beside
// std::to_chars(fixed, 6) of the same numbers with the same separators, which the writer's text
// must equal byte for byte.
#include "base/Field.h"
#include "base/MFNode.h"
#include "base/MFVec3f.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/SFColor.h"
#include "base/SFNode.h"
#include "base/SFVec3f.h"
#include "base/SmartPtr.h"
#include "base/VRMLWriteAction.h"
#include "base/X3DWriteAction.h"

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

using namespace Orvane;

namespace {

// Node types of the benchmark, in a type namespace of their own.
struct Types {
    std::unique_ptr<NodeTypeNameSpace> typeSpace{NodeTypeNameSpace::create("benchwriters", &theBaseNodeTypeFactory())};
    NodePartDesc group[1] = {NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, MFNodeType, 0, "children")};
    NodePartDesc transform[2] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFVec3fType, 0, "translation", nullptr, "0 0 0"),
        NodePartDesc(3, PartMask::bit(3), ExposedFieldPartType, MFNodeType, 0, "children")};
    NodePartDesc shape[2] = {NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFNodeType, 0, "appearance"),
                             NodePartDesc(3, PartMask::bit(3), ExposedFieldPartType, SFNodeType, 0, "geometry")};
    NodePartDesc appearance[1] = {NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFNodeType, 0, "material")};
    NodePartDesc material[1] = {
        NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFColorType, 0, "diffuseColor", nullptr, "0.8 0.8 0.8")};
    NodePartDesc box[1] = {NodePartDesc(2, PartMask::bit(2), FieldPartType, SFVec3fType, 0, "size", nullptr, "2 2 2")};
    NodePartDesc points[1] = {NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, MFVec3fType, 0, "point")};
    std::vector<std::unique_ptr<NodeType>> types;

    Types()
    {
        declare("Group", group, 1);
        declare("Transform", transform, 2);
        declare("Shape", shape, 2);
        declare("Appearance", appearance, 1);
        declare("Material", material, 1);
        declare("Box", box, 1);
        declare("Points", points, 1);
        for (auto& type : types)
            type->initType();
        // Where the X3D catalog puts these nodes, so that the XML carries no containerField.
        types[3]->setContainerField("appearance");
        types[4]->setContainerField("material");
        types[5]->setContainerField("geometry");
    }
    void declare(const char* name, NodePartDesc* descs, unsigned count)
    {
        types.push_back(std::make_unique<NodeType>(*typeSpace, name, "Bench", "Node", nullptr, "1.0", "Bench", nullptr,
                                                   "stable", nullptr, "Orvane", false, false, &Node::isNodeType,
                                                   &Node::createNode, &Node::createProc, descs, count));
    }
};

Types& types()
{
    static Types& t = *new Types;
    return t;
}

// Memory that keeps its capacity from one iteration to the next, so that every memory case
// measures its own formatting, not the growth of a fresh string.
class MemorySink : public std::streambuf {
public:
    void               reset() { _data.clear(); }
    const std::string& data() const { return _data; }

protected:
    std::streamsize xsputn(const char* s, std::streamsize n) override
    {
        _data.append(s, static_cast<std::size_t>(n));
        return n;
    }
    int_type overflow(int_type c) override
    {
        if (c != traits_type::eof())
            _data.push_back(static_cast<char>(c));
        return c;
    }

private:
    std::string _data;
};

// One scene per size, built once and kept.
struct Scene {
    SmartPtr<NodeNameSpace> nameSpace;
    SmartPtr<Node>          root;
    std::size_t             vrmlBytes = 0;
};

Node* make(NodeNameSpace& ns, const char* type)
{
    return NodeType::createNode(&ns, type, nullptr, RuntimeCreator);
}

Scene& scene(int groups)
{
    static std::map<int, Scene> scenes;
    Scene& s = scenes[groups];
    if (s.root)
        return s;
    types();
    s.nameSpace = new NodeNameSpace("bench", nullptr, types().typeSpace.get());
    NodeNameSpace& ns = *s.nameSpace;
    s.root = make(ns, "Group");
    auto& children = *static_cast<MFNode*>(s.root->findField("children"));
    for (int i = 0; i < groups; ++i) {
        Node* transform = make(ns, "Transform");
        static_cast<SFVec3f*>(transform->findField("translation"))->setValue(Vec3f(i % 100, 0.5f, -(i / 100)));
        Node* shape = make(ns, "Shape");
        Node* appearance = make(ns, "Appearance");
        Node* material = make(ns, "Material");
        static_cast<SFColor*>(material->findField("diffuseColor"))->setValue(Color3f(1.0f, 0.25f, 0.0f));
        static_cast<SFNode*>(appearance->findField("material"))->setNode(material);
        static_cast<SFNode*>(shape->findField("appearance"))->setNode(appearance);
        static_cast<SFNode*>(shape->findField("geometry"))->setNode(make(ns, "Box"));
        static_cast<MFNode*>(transform->findField("children"))->addChild(shape);
        children.addChild(transform);
    }
    return s;
}

// The naive writer: the same text, a std::string per value and std::endl per line.
void naiveNode(std::ostream& out, Node& node, int level)
{
    out << node.type().name() << " {" << std::endl;
    for (unsigned id = 0; id < node.partCount(); ++id) {
        Field* field = node.findField(id);
        if (!field || !field->desc())
            continue;
        std::string pad(static_cast<std::size_t>(level + 1) * 2, ' ');
        if (field->dataType() == SFNodeType) {
            if (Node* child = static_cast<SFNode*>(field)->node()) {
                out << pad << field->desc()->name() << ' ';
                naiveNode(out, *child, level + 1);
            }
        } else if (field->dataType() == MFNodeType) {
            auto& list = *static_cast<MFNode*>(field);
            if (list.empty())
                continue;
            out << pad << field->desc()->name() << " [" << std::endl;
            for (NodeLink& link : list) {
                out << pad << "  ";
                naiveNode(out, *link.node(), level + 2);
            }
            out << pad << "]" << std::endl;
        } else if (!field->valueIsDefault()) {
            out << pad << field->desc()->name() << ' ' << field->strValue() << std::endl;
        }
    }
    out << std::string(static_cast<std::size_t>(level) * 2, ' ') << "}" << std::endl;
}

void naiveWrite(std::ostream& out, Node& root)
{
    out << "#VRML V2.0 utf8" << std::endl << std::endl;
    naiveNode(out, root, 0);
}

std::string filePath()
{
    return "/tmp/orvane_bench_writers_" + std::to_string(getpid()) + ".wrl";
}

void report(benchmark::State& state, std::size_t bytes, int groups)
{
    state.SetBytesProcessed(static_cast<int64_t>(bytes) * state.iterations());
    state.counters["us_per_group"] = benchmark::Counter(double(groups) * double(state.iterations()) / 1e6,
                                                        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// The scene into memory through `write(stream, root)`.
template <class Write>
void toMemory(benchmark::State& state, int groups, Write write)
{
    Scene&       s = scene(groups);
    MemorySink   sink;
    std::ostream out(&sink);
    // One untimed write first: the largest scenes run a single timed iteration, which would
    // otherwise pay for growing the sink to hundreds of megabytes.
    write(out, *s.root);
    for (auto _ : state) {
        sink.reset();
        write(out, *s.root);
        benchmark::DoNotOptimize(sink.data().data());
    }
    report(state, sink.data().size(), groups);
}
template <class Writer>
void byWriter(std::ostream& out, Node& root)
{
    Writer writer;
    writer.writeStream(root, out);
}
void writeMemory(benchmark::State& state, int groups) { toMemory(state, groups, byWriter<VRMLWriteAction>); }
void naiveMemory(benchmark::State& state, int groups) { toMemory(state, groups, naiveWrite); }

template <class Writer>
void toFile(benchmark::State& state, int groups)
{
    Scene&      s = scene(groups);
    std::string path = filePath();
    for (auto _ : state) {
        Writer writer;
        if (!writer.writeFile(*s.root, path))
            state.SkipWithError("write failed");
    }
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    report(state, static_cast<std::size_t>(in.tellg()), groups);
    std::remove(path.c_str());
}
void writeFile(benchmark::State& state, int groups)
{
    toFile<VRMLWriteAction>(state, groups);
}

void naiveFile(benchmark::State& state, int groups)
{
    Scene&      s = scene(groups);
    std::string path = filePath();
    for (auto _ : state) {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        naiveWrite(out, *s.root);
    }
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    report(state, static_cast<std::size_t>(in.tellg()), groups);
    std::remove(path.c_str());
}

// The naive XML writer: an element per node, every value through strValue, std::endl per line.
void naiveXmlNode(std::ostream& out, Node& node, int level, const char* container)
{
    std::string pad(static_cast<std::size_t>(level) * 2, ' ');
    out << pad << '<' << node.type().name();
    if (node.type().containerField() != container)
        out << " containerField='" << container << '\'';
    std::vector<std::pair<const char*, Node*>> children;
    for (unsigned id = 0; id < node.partCount(); ++id) {
        Field* field = node.findField(id);
        if (!field || !field->desc())
            continue;
        if (field->dataType() == SFNodeType) {
            if (Node* child = static_cast<SFNode*>(field)->node())
                children.emplace_back(field->desc()->name().c_str(), child);
        } else if (field->dataType() == MFNodeType) {
            for (NodeLink& link : *static_cast<MFNode*>(field))
                children.emplace_back(field->desc()->name().c_str(), link.node());
        } else if (!field->valueIsDefault()) {
            out << ' ' << field->desc()->name() << "='" << field->strValue() << '\'';
        }
    }
    if (children.empty()) {
        out << "/>" << std::endl;
        return;
    }
    out << '>' << std::endl;
    for (auto& [name, child] : children)
        naiveXmlNode(out, *child, level + 1, name);
    out << pad << "</" << node.type().name() << '>' << std::endl;
}

void naiveXmlWrite(std::ostream& out, Node& root)
{
    out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" << std::endl
        << "<X3D profile='Immersive' version='4.0'>" << std::endl << "  <Scene>" << std::endl;
    naiveXmlNode(out, root, 2, "children");
    out << "  </Scene>" << std::endl << "</X3D>" << std::endl;
}

// The scene as X3D XML into memory, beside the classic writer on the same scene (its own byte
// count) and the naive XML writer.
void xmlMemory(benchmark::State& state, int groups) { toMemory(state, groups, byWriter<X3DWriteAction>); }
void xmlClassicMemory(benchmark::State& state, int groups) { toMemory(state, groups, byWriter<VRMLWriteAction>); }
void xmlNaiveMemory(benchmark::State& state, int groups) { toMemory(state, groups, naiveXmlWrite); }

void xmlFile(benchmark::State& state, int groups) { toFile<X3DWriteAction>(state, groups); }
void xmlClassicFile(benchmark::State& state, int groups) { toFile<VRMLWriteAction>(state, groups); }

// --- the 1,000,000-point MFVec3f ---

struct PointCloud {
    SmartPtr<NodeNameSpace> nameSpace;
    SmartPtr<Node>          node;
    std::vector<Vec3f>      points;
    std::string             reference;  // to_chars of every number, with the field's separators

    PointCloud()
    {
        nameSpace = new NodeNameSpace("benchpoints", nullptr, types().typeSpace.get());
        node = make(*nameSpace, "Points");
        std::mt19937                          random(3);
        std::uniform_real_distribution<float> coordinate(-1000.0f, 1000.0f);
        points.resize(1'000'000);
        for (Vec3f& p : points)
            p = Vec3f(coordinate(random), coordinate(random), coordinate(random));
        static_cast<MFVec3f*>(node->findField("point"))->value() = points;
        toChars(reference);
        // The writer must write exactly these bytes; a benchmark of different output is void.
        std::ostringstream out;
        VRMLWriteAction    writer;
        writer.writeStream(*node, out);
        if (out.str().find("point [ " + reference + " ]\n") == std::string::npos) {
            std::fprintf(stderr, "MFVec3f text differs from to_chars(fixed, 6)\n");
            std::abort();
        }
    }

    void toChars(std::string& out) const
    {
        out.clear();
        char buffer[64];
        bool first = true;
        for (const Vec3f& p : points) {
            if (!first)
                out += ", ";
            first = false;
            for (int i = 0; i < 3; ++i) {
                if (i)
                    out += ' ';
                auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, static_cast<double>(p[i]),
                                               std::chars_format::fixed, 6);
                out.append(buffer, end);
            }
        }
    }
};

PointCloud& pointCloud()
{
    static PointCloud& p = *new PointCloud;
    return p;
}

void pointsWriter(benchmark::State& state)
{
    PointCloud&  p = pointCloud();
    MemorySink   sink;
    std::ostream out(&sink);
    for (auto _ : state) {
        sink.reset();
        VRMLWriteAction writer;
        writer.writeStream(*p.node, out);
        benchmark::DoNotOptimize(sink.data().data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(p.reference.size()) * state.iterations());
    state.SetItemsProcessed(int64_t(p.points.size()) * state.iterations());
}

void pointsToChars(benchmark::State& state)
{
    PointCloud& p = pointCloud();
    std::string out;
    for (auto _ : state) {
        p.toChars(out);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(p.reference.size()) * state.iterations());
    state.SetItemsProcessed(int64_t(p.points.size()) * state.iterations());
}

} // namespace

#define WRITE_CASES(label, count)                                                                                     \
    BENCHMARK_CAPTURE(writeMemory, label, count)->Name("vrml_memory_" #label "/orvane")->Unit(benchmark::kMillisecond); \
    BENCHMARK_CAPTURE(naiveMemory, label, count)->Name("vrml_memory_" #label "/naive_endl")->Unit(benchmark::kMillisecond); \
    BENCHMARK_CAPTURE(writeFile, label, count)->Name("vrml_file_" #label "/orvane")->Unit(benchmark::kMillisecond);     \
    BENCHMARK_CAPTURE(naiveFile, label, count)->Name("vrml_file_" #label "/naive_endl")->Unit(benchmark::kMillisecond);

#define XML_CASES(label, count)                                                                                     \
    BENCHMARK_CAPTURE(xmlMemory, label, count)->Name("x3d_memory_" #label "/orvane")->Unit(benchmark::kMillisecond);   \
    BENCHMARK_CAPTURE(xmlClassicMemory, label, count)->Name("x3d_memory_" #label "/classic_vrml")->Unit(benchmark::kMillisecond); \
    BENCHMARK_CAPTURE(xmlNaiveMemory, label, count)->Name("x3d_memory_" #label "/naive_endl")->Unit(benchmark::kMillisecond); \
    BENCHMARK_CAPTURE(xmlFile, label, count)->Name("x3d_file_" #label "/orvane")->Unit(benchmark::kMillisecond);       \
    BENCHMARK_CAPTURE(xmlClassicFile, label, count)->Name("x3d_file_" #label "/classic_vrml")->Unit(benchmark::kMillisecond);

WRITE_CASES(10k, 10'000)
WRITE_CASES(100k, 100'000)
WRITE_CASES(1m, 1'000'000)
XML_CASES(10k, 10'000)
XML_CASES(100k, 100'000)
XML_CASES(1m, 1'000'000)

BENCHMARK(pointsWriter)->Name("mfvec3f_1m_points/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK(pointsToChars)->Name("mfvec3f_1m_points/to_chars_fixed6")->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
