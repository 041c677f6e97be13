// orvane: reads VRML 2.0 / X3D classic scene files (gzip-compressed or not).
//   orvane convert IN [-o OUT] [--to x3d|x3dv|wrl|graph] [--graph] [--exact]
//       write the scene in the encoding that OUT's name says (.x3d X3D XML, .x3dv X3D classic,
//       .wrl or anything else VRML 2.0), or that --to says; standard output is VRML 2.0
//   orvane info IN                                   header, nodes, names, routes, prototypes,
//                                                    inlined files
// Inline nodes load their local files unless --no-inline is given (to either command).
// "-" is standard input or output. Exit status: 0 read without errors, 1 read with errors
// (listed on standard error as file:line:column: message), 2 not read at all.
#include "base/GXDWriteAction.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/Field.h"
#include "base/Route.h"
#include "base/VRMLWriteAction.h"
#include "base/X3DClassicWriteAction.h"
#include "base/X3DWriteAction.h"
#include "modules/loader/InlineProc.h"
#include "modules/loader/SceneLoader.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>

using namespace Orvane;

namespace {

int usage()
{
    std::fprintf(stderr, "usage: orvane convert IN [-o OUT] [--to x3d|x3dv|wrl|graph] [--graph] [--exact] [--no-inline]\n"
                         "       orvane info IN [--no-inline]\n"
                         "IN and OUT may be '-' for standard input and output.\n");
    return 2;
}

LoadedScene readScene(const std::string& in, const LoadOptions& options)
{
    if (in != "-")
        return SceneLoader::load(in, options);
    std::string data((std::istreambuf_iterator<char>(std::cin)), std::istreambuf_iterator<char>());
    return SceneLoader::loadData(std::move(data), "<stdin>", options);
}

// Errors on standard error; the exit status for the scene.
int report(const LoadedScene& scene, const std::string& in)
{
    for (const LoadError& e : scene.errors) {
        if (e.line > 0)
            std::fprintf(stderr, "%s:%d:%d: %s\n", e.file.c_str(), e.line, e.column, e.message.c_str());
        else
            std::fprintf(stderr, "%s: %s\n", e.file.c_str(), e.message.c_str());
    }
    if (!scene.readable()) {
        if (scene.errors.empty())
            std::fprintf(stderr, "%s: cannot read the scene\n", in.c_str());
        return 2;
    }
    return scene.errors.empty() ? 0 : 1;
}

bool endsWith(const std::string& text, const char* suffix)
{
    std::size_t n = std::strlen(suffix);
    return text.size() >= n && text.compare(text.size() - n, n, suffix) == 0;
}

int convert(int argc, char** argv)
{
    std::string in, out = "-", to;
    bool exact = false;
    LoadOptions options;
    for (int i = 0; i < argc; ++i) {
        if (!std::strcmp(argv[i], "-o") && i + 1 < argc)
            out = argv[++i];
        else if (!std::strcmp(argv[i], "--to") && i + 1 < argc)
            to = argv[++i];
        else if (!std::strcmp(argv[i], "--graph"))
            to = "graph";
        else if (!std::strcmp(argv[i], "--exact"))
            exact = true;
        else if (!std::strcmp(argv[i], "--no-inline"))
            options.loadInlines = false;
        else if (in.empty() && (argv[i][0] != '-' || !std::strcmp(argv[i], "-")))
            in = argv[i];
        else
            return usage();
    }
    if (to.empty())
        to = endsWith(out, ".x3d") ? "x3d" : endsWith(out, ".x3dv") ? "x3dv" : "wrl";
    if (in.empty() || (to != "x3d" && to != "x3dv" && to != "wrl" && to != "graph"))
        return usage();
    LoadedScene scene = readScene(in, options);
    int status = report(scene, in);
    if (!scene.readable())
        return status;

    VRMLWriteAction       vrml;
    X3DClassicWriteAction x3dv;
    X3DWriteAction        x3d;
    GXDWriteAction        gxd;
    WriteAction&          writer = to == "graph" ? static_cast<WriteAction&>(gxd)
                                   : to == "x3d"  ? static_cast<WriteAction&>(x3d)
                                   : to == "x3dv" ? static_cast<WriteAction&>(x3dv)
                                                  : vrml;
    writer.setWriteExactNumbers(exact);
    bool written;
    if (out == "-") {
        written = SceneLoader::write(*scene.root, writer, std::cout);
        std::cout.flush();
    } else {
        std::ofstream file(out, std::ios::binary);
        written = file && SceneLoader::write(*scene.root, writer, file);
    }
    if (!written) {
        std::fprintf(stderr, "%s: cannot write\n", out.c_str());
        return 2;
    }
    return status;
}

int info(int argc, char** argv)
{
    std::string in;
    LoadOptions options;
    for (int i = 0; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--no-inline"))
            options.loadInlines = false;
        else if (in.empty() && (argv[i][0] != '-' || !std::strcmp(argv[i], "-")))
            in = argv[i];
        else
            return usage();
    }
    if (in.empty())
        return usage();
    LoadedScene scene = readScene(in, options);
    if (scene.readable()) {
        const SceneHeader& h = scene.header;
        std::printf("header: #%s V%s %s\n", h.encoding.c_str(), h.version.c_str(), h.charset.c_str());
        if (!h.profile.empty())
            std::printf("profile: %s\n", h.profile.c_str());
        for (const auto& c : h.components)
            std::printf("component: %s:%d\n", c.first.c_str(), c.second);
        for (const auto& u : h.units)
            std::printf("unit: %s %s %s\n", u[0].c_str(), u[1].c_str(), u[2].c_str());
        for (const auto& m : h.meta)
            std::printf("meta: \"%s\" \"%s\"\n", m.first.c_str(), m.second.c_str());

        NodeNameSpace&     ns = scene.root->nameSpace();
        std::vector<Node*> nodes;
        ns.fillNodeVec(nodes);
        std::map<std::string, unsigned> byType;
        std::vector<std::string>        names;
        for (Node* node : nodes) {
            if (node == scene.root.get() || node->type().name() == "_ProtoDeclaration")
                continue;
            ++byType[node->type().name()];
            if (node->hasName() && !node->isAutoNamed())
                names.push_back(node->name() + " (" + node->type().name() + ")");
        }
        unsigned total = 0;
        for (const auto& entry : byType)
            total += entry.second;
        std::printf("nodes: %u\n", total);
        for (const auto& [type, count] : byType)
            std::printf("  %-24s %u\n", type.c_str(), count);
        std::printf("DEF names: %zu\n", names.size());
        for (const auto& name : names)
            std::printf("  %s\n", name.c_str());
        std::vector<Route*> routes;
        Route::fillRouteVec(routes, &ns, Route::DEFAULT);
        std::printf("routes: %zu\n", routes.size());
        for (Route* r : routes) {
            Field& from = r->outSlot().field();
            Field& to = r->inSlot().field();
            auto label = [](Field& f) { return (f.owner().hasName() ? f.owner().name() : f.owner().type().name()) + "." + f.findName(); };
            std::printf("  %s TO %s\n", label(from).c_str(), label(to).c_str());
        }
        std::vector<NodeType*> protos;
        ns.protoTypeNameSpace().getTypeVec(protos, 3);
        std::printf("prototypes: %zu\n", protos.size());
        for (NodeType* p : protos)
            std::printf("  %s\n", p->name().c_str());
        std::vector<std::string> inlined;
        for (Node* node : nodes)
            if (InlineProc* proc = InlineProc::of(*node); proc && !proc->file().empty())
                inlined.push_back((node->hasName() ? node->name() + ": " : std::string()) + proc->file());
        std::printf("inlined files: %zu\n", inlined.size());
        for (const auto& file : inlined)
            std::printf("  %s\n", file.c_str());
    }
    std::printf("errors: %zu\n", scene.errors.size());
    std::fflush(stdout);
    return report(scene, in);
}

} // namespace

int main(int argc, char** argv)
{
    // Faults are listed by the program itself, once, in the file:line:column form.
    Log::the().setDefaultSinkEnabled(false);
    if (argc < 3)
        return usage();
    if (!std::strcmp(argv[1], "convert"))
        return convert(argc - 2, argv + 2);
    if (!std::strcmp(argv[1], "info"))
        return info(argc - 2, argv + 2);
    return usage();
}
