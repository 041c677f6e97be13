// Inline nodes load their files into scenes of their own: IMPORT reaches their exports, routed
// events cross in both directions, and what cannot be loaded is reported once at its place.
#include "base/Field.h"
#include "base/NodeNameSpace.h"
#include "base/ProtoInstance.h"
#include "base/X3DClassicWriteAction.h"
#include "base/X3DWriteAction.h"
#include "modules/loader/InlineProc.h"
#include "modules/loader/SceneLoader.h"
#include "tests/loader/SceneSupport.h"
#include "tests/support/LogCapture.h"
#include "tests/support/X3DDocuments.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <tuple>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

void send(Node& node, const char* field, const double& time, const char* value)
{
    node.findField(std::string(field))->setValueByStr(time, value);
}

// Into the first inline's interpolator, out of its mover through a route inside it, and out of
// the second inline's mover; the two inlines of one file are two scenes. Events flow through
// live nodes: the inlined scenes go live with the scene.
void expectEventsCross(const LoadedScene& scene)
{
    scene.root->setTreeState(0.0, Live);
    Node* clock = named(scene, "Clock");
    Node* path = named(scene, "ChildPath");
    Node* follower = named(scene, "Follower");
    ASSERT_TRUE(clock && path && follower);
    send(*clock, "fraction_changed", 1.0, "0.25");
    EXPECT_EQ(text(*path, "set_fraction"), "0.25");
    send(*path, "value_changed", 2.0, "1 2 3");
    EXPECT_EQ(text(*follower, "translation"), "1 2 3");
    send(*named(scene, "SecondTarget"), "scale", 3.0, "2 2 2");
    EXPECT_EQ(text(*follower, "scale"), "2 2 2");
    EXPECT_EQ(text(*named(scene, "SecondTarget"), "translation"), "0 0 0");
}

struct Host {
    const char* host;
    const char* child;
    const char* remotePlace;  // of the Inline whose first url is remote
};

class InlineHost : public ::testing::TestWithParam<Host> {};

TEST_P(InlineHost, ImportsResolveAndEventsCross)
{
    LogCapture  log;
    const auto& [host, child, remotePlace] = GetParam();
    LoadedScene scene = SceneLoader::load(data(host));
    ASSERT_TRUE(scene.readable());
    for (const LoadError& e : scene.errors)
        ADD_FAILURE() << e.file << ":" << e.line << ":" << e.column << ": " << e.message;

    InlineProc* first = InlineProc::of(*named(scene, "Child"));
    InlineProc* second = InlineProc::of(*named(scene, "Second"));
    ASSERT_TRUE(first && first->scene() && second && second->scene());
    EXPECT_EQ(first->file(), data(child));
    EXPECT_NE(first->ownNameSpace(), second->ownNameSpace());
    EXPECT_EQ(InlineProc::of(*named(scene, "Off"))->file(), "");  // load FALSE
    EXPECT_EQ(log.count(data(host) + ":" + remotePlace + ": Inline url 'https://example.com/" + child +
                            "' is not local; not fetched\n",
                        LOG_NOTICE),
              1);

    // Imported nodes are found by their local names; the inlined file's own Inline loaded too.
    NodeNameSpace& inner = *first->ownNameSpace();
    EXPECT_EQ(named(scene, "ChildPath"), inner.findNode("Path"));
    EXPECT_EQ(named(scene, "Target"), inner.findNode("Mover"));
    EXPECT_NE(named(scene, "SecondTarget"), named(scene, "Target"));
    Node* plain = inner.findNode("Plain");
    ASSERT_NE(plain, nullptr);
    ASSERT_NE(InlineProc::of(*plain), nullptr);
    EXPECT_NE(InlineProc::of(*plain)->ownNameSpace()->findNode("Lamp"), nullptr);

    expectEventsCross(scene);
    EXPECT_EQ(inner.findNode("Mover")->state(), Live);
    // The scene written back and read again still routes across.
    X3DClassicWriteAction writer;
    std::ostringstream    out;
    ASSERT_TRUE(SceneLoader::write(*scene.root, writer, out));
    LoadedScene again = SceneLoader::loadData(out.str(), data(host));
    ASSERT_TRUE(again.readable());
    EXPECT_TRUE(again.errors.empty()) << out.str();
    expectEventsCross(again);

    // Nothing keeps the inlined scene once the scene is let go.
    SmartPtr<NodeNameSpace> kept(&inner);
    scene.root = nullptr;
    EXPECT_EQ(kept->nodeCount(), 0);
    EXPECT_EQ(kept->parent(), nullptr);
    EXPECT_EQ(kept->refCount(), 1);
}

INSTANTIATE_TEST_SUITE_P(Encodings, InlineHost,
                         ::testing::Values(Host{"inline-host.x3dv", "inline-child.x3dv", "6:1"},
                                           Host{"inline-host.x3d", "inline-child.x3d", "7:5"}));

TEST(Inline, WhatCannotLoadIsReportedOnceAtItsPlace)
{
    LogCapture  log;
    LoadedScene scene = SceneLoader::load(data("inline-errors.x3dv"));
    ASSERT_TRUE(scene.readable());
    std::vector<std::tuple<std::string, int, int, std::string>> found;
    for (const LoadError& e : scene.errors)
        found.emplace_back(std::filesystem::path(e.file).filename().string(), e.line, e.column, e.message);
    const std::vector<std::tuple<std::string, int, int, std::string>> expected = {
        {"inline-errors.x3dv", 3, 1, "Inline loads no file: 'no-such-file.x3dv' does not exist"},
        {"inline-errors.x3dv", 4, 1,
         "Inline loads no file: '.' is no regular file; 'no-such-file.wrl' does not exist"},
        {"inline-errors.x3dv", 5, 2,
         "Inline loads no file: 'inline-errors.x3dv' is being read around this Inline (a cycle)"},
        {"inline-cycle-b.x3dv", 3, 18,
         "Inline loads no file: 'inline-cycle-a.x3dv' is being read around this Inline (a cycle)"},
        {"inline-faulty.x3dv", 3, 3, "unknown node type 'Blob'"},
    };
    EXPECT_EQ(found, expected);
    EXPECT_EQ(log.count(data("inline-errors.x3dv") + ":3:1: Inline loads no file: 'no-such-file.x3dv' does not exist\n",
                        LOG_WARNING),
              1);
    // The rest loads: the faulty file is inlined, the remote one is only skipped.
    EXPECT_NE(named(scene, "Box"), nullptr);
    EXPECT_NE(InlineProc::of(*named(scene, "Faulty"))->scene(), nullptr);
    EXPECT_EQ(InlineProc::of(*named(scene, "Remote"))->file(), "");
    EXPECT_EQ(InlineProc::of(*named(scene, "Missing"))->file(), "");
}

// The Inline of a prototype body loads for each instance, with the instance's url.
TEST(Inline, PrototypeInstancesLoadTheirBodiesInlines)
{
    LogCapture  log;
    LoadedScene scene = SceneLoader::load(data("inline-proto.x3dv"));
    ASSERT_TRUE(scene.readable());
    EXPECT_EQ(faults(scene), (std::vector<Fault>{{5, 1, "Inline loads no file: 'no-such-file.x3dv' does not exist"}}));
    auto body = [&](const char* instance) {
        ProtoInstance* lamp = ProtoInstance::cast(named(scene, instance));
        return lamp ? lamp->bodyNameSpace() : nullptr;
    };
    NodeNameSpace* nearBody = body("Near");
    NodeNameSpace* farBody = body("Far");
    ASSERT_TRUE(nearBody && farBody);
    InlineProc* near = InlineProc::of(*nearBody->findNode("Bulb"));
    InlineProc* far = InlineProc::of(*farBody->findNode("Bulb"));
    ASSERT_TRUE(near && far);
    EXPECT_EQ(near->file(), data("inline-child.x3dv"));
    EXPECT_EQ(far->file(), "");

    // Each instance imports from its own Inline, and the body's route runs from there.
    Node* mover = near->ownNameSpace()->findNode("Mover");
    ASSERT_NE(mover, nullptr);
    EXPECT_EQ(nearBody->getImportedNode("BulbTarget"), mover);
    scene.root->setTreeState(0.0, Live);
    send(*mover, "translation", 1.0, "1 2 3");
    EXPECT_EQ(text(*nearBody->findNode("Shade"), "translation"), "1 2 3");
    EXPECT_EQ(text(*farBody->findNode("Shade"), "translation"), "0 0 0");

    // Written back, the body keeps its Inline, IMPORT and ROUTE (once), never what the Inline
    // loaded; read again it is written the same.
    auto write = [](const LoadedScene& loaded) {
        X3DClassicWriteAction writer;
        std::ostringstream    out;
        EXPECT_TRUE(SceneLoader::write(*loaded.root, writer, out));
        return out.str();
    };
    const std::string first = write(scene);
    EXPECT_NE(first.find("      DEF Bulb Inline {\n        url IS where\n      }\n"), std::string::npos) << first;
    for (const char* line : {"IMPORT Bulb.Target AS BulbTarget\n",
                             "ROUTE BulbTarget.translation_changed TO Shade.translation\n"}) {
        const std::size_t at = first.find(line);
        EXPECT_NE(at, std::string::npos) << line << first;
        EXPECT_EQ(first.find(line, at + 1), std::string::npos) << line << first;
    }
    EXPECT_EQ(first.find("Mover"), std::string::npos) << first;
    LoadedScene again = SceneLoader::loadData(first, data("inline-proto.x3dv"));
    EXPECT_EQ(faults(again).size(), 1u);
    EXPECT_EQ(write(again), first);

    // As XML the same, and the instances read from it import from their Inlines again.
    X3DWriteAction     xmlWriter;
    std::ostringstream xml;
    ASSERT_TRUE(SceneLoader::write(*scene.root, xmlWriter, xml));
    Documents::the().keep(xml.str());
    for (const char* element : {"<IMPORT inlineDEF='Bulb' importedDEF='Target' AS='BulbTarget'/>",
                                "<ROUTE fromNode='BulbTarget' fromField='translation_changed' toNode='Shade'"}) {
        const std::size_t at = xml.str().find(element);
        EXPECT_NE(at, std::string::npos) << element << xml.str();
        EXPECT_EQ(xml.str().find(element, at + 1), std::string::npos) << element << xml.str();
    }
    LoadedScene fromXml = SceneLoader::loadData(xml.str(), data("inline-proto.x3d"));
    EXPECT_EQ(faults(fromXml).size(), 1u);
    ProtoInstance* lamp = ProtoInstance::cast(named(fromXml, "Near"));
    ASSERT_TRUE(lamp && lamp->bodyNameSpace());
    Node* bulb = lamp->bodyNameSpace()->findNode("Bulb");
    ASSERT_TRUE(bulb && InlineProc::of(*bulb));
    EXPECT_EQ(lamp->bodyNameSpace()->getImportedNode("BulbTarget"), InlineProc::of(*bulb)->ownNameSpace()->findNode("Mover"));
}

TEST(Inline, NestingBeyondTheLimitIsRefused)
{
    LogCapture            log;
    std::filesystem::path dir = std::filesystem::temp_directory_path() / ("orvane-inline-" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    const int files = SceneBuilder::MaxInlineDepth + 2;
    for (int i = 0; i < files; ++i)
        std::ofstream(dir / ("deep" + std::to_string(i) + ".x3dv"))
            << "#X3D V4.0 utf8\nInline { url \"deep" << i + 1 << ".x3dv\" }\n";
    LoadedScene scene = SceneLoader::load((dir / "deep0.x3dv").string());
    std::filesystem::remove_all(dir);
    ASSERT_TRUE(scene.readable());
    ASSERT_EQ(scene.errors.size(), 1u);
    const LoadError& e = scene.errors.front();
    EXPECT_EQ(std::filesystem::path(e.file).filename(), "deep16.x3dv");
    EXPECT_EQ(std::make_tuple(e.line, e.column, e.message),
              std::make_tuple(2, 1, std::string("Inline loads no file: 'deep17.x3dv' is nested deeper than 16 files")));
}

TEST(Inline, FileUrlsXmlPlacesAndLoadingOff)
{
    LogCapture        log;
    const std::string xml = "<X3D version='4.0'><Scene>\n"
                            "  <Inline DEF='F' url='\"file://" + data("inline-child.x3dv") + "\"'/>\n"
                            "  <Inline url='\"/dev/zero\"'/>\n"
                            "</Scene></X3D>\n";
    LoadedScene scene = SceneLoader::loadData(xml, "scene.x3d");
    ASSERT_TRUE(scene.readable());
    EXPECT_NE(InlineProc::of(*named(scene, "F"))->scene(), nullptr);
    EXPECT_EQ(faults(scene), (std::vector<Fault>{{3, 3, "Inline loads no file: '/dev/zero' is no regular file"}}));

    // With loading off nothing is read, yet the IMPORTs and the routes through them are kept
    // (through stand-ins in the empty scenes) and written back as they were read.
    LoadOptions off;
    off.loadInlines = false;
    LoadedScene host = SceneLoader::load(data("inline-host.x3dv"), off);
    ASSERT_TRUE(host.readable());
    EXPECT_EQ(faults(host), std::vector<Fault>{});
    EXPECT_EQ(InlineProc::of(*named(host, "Child"))->file(), "");
    X3DClassicWriteAction writer;
    std::ostringstream    first;
    ASSERT_TRUE(SceneLoader::write(*host.root, writer, first));
    for (const char* line : {"IMPORT Child.Path AS ChildPath\n", "IMPORT Child.Target\n",
                             "    IMPORT Second.Target AS SecondTarget\n",
                             "ROUTE Clock.fraction_changed TO ChildPath.set_fraction\n",
                             "ROUTE Target.translation_changed TO Follower.translation\n",
                             "ROUTE SecondTarget.scale_changed TO Follower.scale\n"})
        EXPECT_NE(first.str().find(line), std::string::npos) << line << first.str();
    LoadedScene again = SceneLoader::loadData(first.str(), data("inline-host.x3dv"), off);
    EXPECT_EQ(faults(again), std::vector<Fault>{});
    X3DClassicWriteAction rewriter;
    std::ostringstream    second;
    ASSERT_TRUE(SceneLoader::write(*again.root, rewriter, second));
    EXPECT_EQ(second.str(), first.str());
    // Read with loading on, the written scene routes across the real inlined nodes.
    LoadedScene loaded = SceneLoader::loadData(first.str(), data("inline-host.x3dv"));
    EXPECT_EQ(faults(loaded), std::vector<Fault>{});
    expectEventsCross(loaded);
}

} // namespace
