// The classic reader: the test scenes read cleanly, survive a write and a second read, and every
// kind of fault is reported at its place while the rest of the scene loads.
#include "base/Context.h"
#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/MFNode.h"
#include "base/NodeNameSpace.h"
#include "base/NodeType.h"
#include "base/ProtoInstance.h"
#include "base/Route.h"
#include "base/VRMLWriteAction.h"
#include "modules/loader/SceneLoader.h"
#include "tests/loader/SceneSupport.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <sstream>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

class ClassicReaderTest : public ::testing::TestWithParam<const char*> {};

TEST_P(ClassicReaderTest, ReadsWritesAndReadsBackTheSame)
{
    LogCapture  log;
    LoadedScene first = SceneLoader::load(data(GetParam()));
    ASSERT_TRUE(first.readable());
    for (const LoadError& e : first.errors)
        ADD_FAILURE() << e.file << ":" << e.line << ":" << e.column << ": " << e.message;
    std::string once = write(*first.root);
    LoadedScene second = SceneLoader::loadData(once, data(GetParam()));
    ASSERT_TRUE(second.readable());
    EXPECT_TRUE(second.errors.empty()) << once;
    EXPECT_EQ(shape(*first.root), shape(*second.root));
    EXPECT_EQ(write(*second.root), once);
}

INSTANTIATE_TEST_SUITE_P(Scenes, ClassicReaderTest,
                         ::testing::Values("classic-all.wrl", "classic-x3d.x3dv", "classic-x3d-gz.bin",
                                           "inline-host.x3dv"));
// XML scenes, written back as VRML, read by the classic reader into the same scene.
INSTANTIATE_TEST_SUITE_P(XMLScenes, ClassicReaderTest,
                         ::testing::Values("xml-nodes.x3d", "xml-protos.x3d", "xml-script.x3d", "both.x3d",
                                           "both-x3d-gz.bin", "inline-host.x3d"));

TEST(ClassicReader, ValuesSharingPrototypesAndScripts)
{
    LogCapture  log;
    LoadedScene scene = SceneLoader::load(data("classic-all.wrl"));
    ASSERT_TRUE(scene.readable());
    EXPECT_EQ(named(scene, "Shared")->parentCount(), 2u);
    EXPECT_EQ(named(scene, "Root")->findField(std::string("translation"))->strValue(), "1 2.5 -3");
    // A comment inside a list, escapes inside strings.
    std::vector<Node*> nodes;
    scene.root->nameSpace().fillNodeVec(nodes);
    for (Node* node : nodes) {
        if (node->type().name() == "Coordinate") {
            EXPECT_EQ(node->findField(std::string("point"))->size(), 3u);
        }
    }
    EXPECT_EQ(text(*named(scene, "Info"), "title"), "A \"quoted\" title");
    EXPECT_EQ(named(scene, "Info")->findField(std::string("info"))->size(), 2u);
    // Script interface declarations are dynamic fields with their values.
    Node& code = *named(scene, "Code");
    EXPECT_EQ(text(code, "counter"), "7");
    EXPECT_NE(code.findField(std::string("set_fraction")), nullptr);
    EXPECT_NE(code.findField(std::string("position_changed")), nullptr);
    EXPECT_EQ(code.findField(std::string("names"))->size(), 2u);
    // The prototype instance takes its value; the EXTERNPROTO resolved from the second file.
    Node& kitchen = *named(scene, "Kitchen");
    EXPECT_EQ(text(kitchen, "level"), "0.8");
    ASSERT_NE(ProtoInstance::cast(&kitchen), nullptr);
    EXPECT_EQ(ProtoInstance::cast(&kitchen)->firstNode()->type().name(), "Group");
    EXPECT_NE(scene.root->nameSpace().getExportedNode("Paint"), nullptr);
}

TEST(ClassicReader, X3DHeaderStatementsAreKept)
{
    LogCapture  log;
    LoadedScene scene = SceneLoader::load(data("classic-x3d-gz.bin"));
    ASSERT_TRUE(scene.readable());
    EXPECT_EQ(scene.header.encoding, "X3D");
    EXPECT_EQ(scene.header.version, "3.3");
    EXPECT_EQ(text(*scene.root, "profile"), "Interchange");
    EXPECT_EQ(text(*scene.root, "components"), "\"Geospatial:1\" \"Navigation:2\"");
    EXPECT_EQ(text(*scene.root, "units"), "\"length centimeter 0.01\"");
    ASSERT_NE(scene.root->nameSpace().getMetaData("creator"), nullptr);
    EXPECT_EQ(*scene.root->nameSpace().getMetaData("creator"), "tests");
}

TEST(ClassicReader, FaultsAreReportedAtTheirPlaceAndTheRestLoads)
{
    LogCapture  log;
    LoadedScene scene = SceneLoader::load(data("classic-errors.wrl"));
    ASSERT_TRUE(scene.readable());
    const std::vector<Fault> expected = {
        {4, 5, "unknown node type 'Frobnicator'"},
        {5, 33, "value does not fit SFVec3f field Box.size"},
        {6, 37, "unknown field 'nosuchfield' in Appearance"},
        {9, 1, "USE of unknown name 'Missing'"},
        {11, 1, "ROUTE A.translation_changed TO Nobody.set_translation: unknown node 'Nobody'"},
        {12, 1, "ROUTE A.nosuch TO A.set_translation: unknown field 'nosuch'"},
        {14, 1, "ROUTE A.translation_changed TO B.children_changed: the fields do not match"},
        {16, 38, "unterminated string"},
        {16, 30, "missing '}' for this WorldInfo node"},
        {16, 18, "missing ']' for this list"},
        {16, 7, "missing '}' for this Group node"},
    };
    EXPECT_EQ(faults(scene), expected);
    const std::string path = data("classic-errors.wrl");
    EXPECT_TRUE(log.contains(path + ":9:1: USE of unknown name 'Missing'\n", LOG_WARNING));
    // The rest is there: later nodes, and the unknown node with its fields as text.
    EXPECT_NE(named(scene, "Last"), nullptr);
    Node* odd = unknownNode(scene, "Frobnicator");
    ASSERT_NE(odd, nullptr);
    EXPECT_EQ(text(*odd, "label"), "\"kept\"");
    EXPECT_EQ(text(*odd, "weight"), "3.000000");
    // Written back under its own name, it reads again the same (its type still unknown) and
    // writes the same bytes.
    VRMLWriteAction    writer;
    std::ostringstream out;
    SceneLoader::write(*scene.root, writer, out);
    EXPECT_NE(out.str().find("Frobnicator {\n"), std::string::npos) << out.str();
    LoadedScene again = SceneLoader::loadData(out.str(), path);
    ASSERT_EQ(again.errors.size(), 1u) << out.str();
    EXPECT_EQ(again.errors[0].message, "unknown node type 'Frobnicator'");
    std::ostringstream second;
    SceneLoader::write(*again.root, writer, second);
    EXPECT_EQ(second.str(), out.str());
}

TEST(ClassicReader, NestingBeyondTheLimitIsAnError)
{
    LogCapture  log;
    std::string deep = "#VRML V2.0 utf8\n";
    for (int i = 0; i < 5000; ++i)
        deep += "Group { children [ ";
    LoadedScene scene = SceneLoader::loadData(deep, "deep.wrl");
    ASSERT_TRUE(scene.readable());
    ASSERT_FALSE(scene.errors.empty());
    EXPECT_EQ(scene.errors.front().message, "nesting deeper than 200 levels");
}

// A prototype's instance in its own body would make the prototype its own base type.
TEST(ClassicReader, AnInstanceInItsOwnPrototypeBodyIsRefused)
{
    LogCapture  log;
    LoadedScene scene = SceneLoader::loadData("#X3D V4.0\nPROTO Lamp [] { Lamp { } Lamp {", "self.x3dv");
    ASSERT_TRUE(scene.readable());
    const std::string refused = "instance of PROTO 'Lamp' refused: it would hold itself or nest too deep";
    EXPECT_EQ(faults(scene), (std::vector<Fault>{{2, 17, refused},
                                                 {2, 26, refused},
                                                 {2, 15, "missing '}' for this prototype body"}}));
    EXPECT_EQ(log.count("Recursive PROTO refused: Lamp inside its own body\n", LOG_WARNING), 2);
}

TEST(ClassicReader, NotASceneAndBrokenGzipAreUnreadable)
{
    LogCapture log;
    EXPECT_FALSE(SceneLoader::loadData("Group { }", "plain.txt").readable());
    EXPECT_FALSE(SceneLoader::loadData(std::string("\x1f\x8b\x08\x00garbage", 12), "bad.gz").readable());
    EXPECT_FALSE(SceneLoader::load(data("no-such-file.wrl")).readable());
}

TEST(ClassicReader, ContextLoadReadsThroughTheObserver)
{
    LogCapture        log;
    SceneLoader::init();
    SmartPtr<Context> context(Context::create("loading"));
    EXPECT_TRUE(context->load(data("classic-x3d.x3dv"), Context::ReplaceLoad));
    EXPECT_FALSE(log.contains("No _loadContextSubject Observer, cannot load " + data("classic-x3d.x3dv") + "\n"));
    context->exit();
}

// Long lists of plain numbers take a shorter way into their fields than other value text: every
// list, bracketed or as an XML attribute, holds exactly what the field's text setter makes of
// the same text, and the lists the value check refuses are refused.
TEST(ClassicReader, NumberListsHoldWhatTheTextSetterReads)
{
    const struct {
        const char* node;
        const char* field;
        const char* list;
        bool        fits;
    } cases[] = {
        {"Coordinate", "point", "1 2 3, 4 5 6,\n7 8 9", true},
        {"Coordinate", "point", "-.5 5. 1e3 -0 1E-3 0.1", true},
        {"Coordinate", "point", "+1 2 3", true},
        {"Coordinate", "point", "1e400 -1e400 1e-400", true},
        {"Coordinate", "point", "", true},
        {"Coordinate", "point", "1 2", false},
        {"Coordinate", "point", "-inf 0 0", false},
        {"Coordinate", "point", "0x10 0 0", false},
        {"Coordinate", "point", "1 2 3x", false},
        {"ScalarInterpolator", "key", "0 0.25,0.5 1", true},
        {"IndexedFaceSet", "coordIndex", "0 1 2 -1 3 4 5 -1", true},
        {"IndexedFaceSet", "coordIndex", "0x1F -7", true},
        {"IndexedFaceSet", "coordIndex", "99999999999 1", true},
        {"IndexedFaceSet", "coordIndex", "1.5", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.node) + "." + c.field + " [ " + c.list + " ]");
        LogCapture        log;
        const std::string text = std::string("#VRML V2.0 utf8\nDEF N ") + c.node + " { " + c.field + " [ " + c.list +
                                 " ] }\nBogus { }\n";
        LoadedScene scene = SceneLoader::loadData(text, "list.wrl");
        ASSERT_TRUE(scene.readable());
        // The unknown node after the list is where the list's end says it is.
        const int bogusLine = 3 + static_cast<int>(std::count(c.list, c.list + std::strlen(c.list), '\n'));
        ASSERT_FALSE(scene.errors.empty());
        EXPECT_EQ(scene.errors.back().line, bogusLine);
        EXPECT_EQ(scene.errors.size(), c.fits ? 1u : 2u);
        Field& field = *named(scene, "N")->findField(std::string(c.field));
        const std::string read = field.getBinValue();
        // The same list as an XML attribute reads the same.
        LoadedScene xml = SceneLoader::loadData(std::string("<X3D profile='Interchange' version='4.0'><Scene><") + c.node + " DEF='N' " + c.field + "='" +
                                                    c.list + "'/></Scene></X3D>",
                                                "list.x3d");
        ASSERT_TRUE(xml.readable());
        EXPECT_EQ(xml.errors.size(), c.fits ? 0u : 1u);
        EXPECT_EQ(named(xml, "N")->findField(std::string(c.field))->getBinValue(), read);
        if (c.fits) {
            field.setValueByStr(0.0, c.list);
            EXPECT_EQ(field.getBinValue(), read);
        } else {
            EXPECT_EQ(field.size(), 0u);
        }
    }
}

TEST(ClassicReader, ListsAcrossLinesKeepLaterPlaces)
{
    LogCapture        log;
    const std::string text = "#VRML V2.0 utf8\n"
                             "Shape { geometry IndexedFaceSet { coord Coordinate { point [\n"
                             " 0 0 0,\n"
                             " 1 0 0, 1 1 x ] } } }\n"
                             "Shape { geometry PointSet { coord Coordinate { point [ 0 0 0 # first\n"
                             " 1 1 1 ] } } }\n"
                             "Shape { geometry PointSet { coord Coordinate { point [ 0 0 0\n"
                             " 1 1 1 ] } } }\n"
                             "Bogus { }\n";
    LoadedScene scene = SceneLoader::loadData(text, "lists.wrl");
    const std::vector<Fault> expected = {{2, 60, "value does not fit MFVec3f field Coordinate.point"},
                                         {9, 1, "unknown node type 'Bogus'"}};
    EXPECT_EQ(faults(scene), expected);
}

} // namespace

