// The XML reader: each test scene reads as intended (and, written back, as the classic reader
// reads it: see ClassicReaderTest; the one scene in both encodings: see RoundTripTest), faults
// are reported at their line and column with the rest loaded, and hostile documents are read or
// refused in bounded time.
#include "base/MFNode.h"
#include "base/ProtoInstance.h"
#include "modules/loader/XMLReader.h"
#include "tests/loader/SceneSupport.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <tuple>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

TEST(XMLReader, HeaderValuesSharingAndContainerFields)
{
    LogCapture  log;
    LoadedScene scene = SceneLoader::load(data("xml-nodes.x3d"));
    ASSERT_TRUE(scene.readable());
    EXPECT_EQ(scene.header.version, "3.3");
    EXPECT_EQ(text(*scene.root, "profile"), "Interchange");
    EXPECT_EQ(text(*scene.root, "components"), "\"Geospatial:1\" \"Navigation:2\"");
    EXPECT_EQ(text(*scene.root, "units"), "\"length centimeter 0.01\"");
    ASSERT_NE(scene.root->nameSpace().getMetaData("creator"), nullptr);
    EXPECT_EQ(*scene.root->nameSpace().getMetaData("creator"), "tests");

    Node& root = *named(scene, "Root");
    EXPECT_EQ(text(root, "translation"), "1 2.5 -3");
    EXPECT_EQ(text(root, "rotation"), "0 1 0 1.5708");  // comma separators
    EXPECT_EQ(named(scene, "Shared")->parentCount(), 2u);
    EXPECT_EQ(text(*named(scene, "Clock"), "loop"), "TRUE");
    EXPECT_EQ(text(*named(scene, "Info"), "title"), "A \"quoted\" & <escaped> title");
    EXPECT_EQ(text(*named(scene, "Info"), "info"), "\"one\" \"two\\\\three\" \"it's\"");
    std::vector<Node*> nodes;
    scene.root->nameSpace().fillNodeVec(nodes);
    for (Node* node : nodes) {
        if (node->type().name() == "Coordinate") {
            EXPECT_EQ(node->findField(std::string("point"))->size(), 3u);  // a value over two lines
        }
        if (node->type().name() == "IndexedFaceSet") {
            EXPECT_EQ(text(*node, "solid"), "FALSE");
            EXPECT_EQ(node->findField(std::string("metadata"))->strValue().empty(), false);
        }
    }
    EXPECT_NE(scene.root->nameSpace().getExportedNode("Paint"), nullptr);
}

TEST(XMLReader, PrototypesInterfacesInstancesAndExternalDeclarations)
{
    LogCapture  log;
    LoadedScene scene = SceneLoader::load(data("xml-protos.x3d"));
    ASSERT_TRUE(scene.readable());
    Node& kitchen = *named(scene, "Kitchen");
    ASSERT_NE(ProtoInstance::cast(&kitchen), nullptr);
    EXPECT_EQ(text(kitchen, "level"), "0.8");
    EXPECT_EQ(text(kitchen, "label"), "plain & simple");
    EXPECT_EQ(ProtoInstance::cast(&kitchen)->firstNode()->type().name(), "Group");
    // The node-valued fieldValue replaces the interface's default nodes.
    auto* extra = dynamic_cast<MFNode*>(kitchen.findField(std::string("extra")));
    ASSERT_NE(extra, nullptr);
    ASSERT_EQ(extra->size(), 2u);
    EXPECT_EQ(extra->childNode(0)->type().name(), "Shape");
    // The external declaration resolves through the XML file it names.
    Node& pinned = *named(scene, "Pinned");
    ASSERT_NE(ProtoInstance::cast(&pinned), nullptr);
    ASSERT_NE(ProtoInstance::cast(&pinned)->firstNode(), nullptr);
    EXPECT_EQ(ProtoInstance::cast(&pinned)->firstNode()->type().name(), "Transform");
    EXPECT_EQ(text(pinned, "at"), "1 2 3");
}

TEST(XMLReader, ScriptAndShaderFieldsAndSources)
{
    LogCapture  log;
    LoadedScene scene = SceneLoader::load(data("xml-script.x3d"));
    ASSERT_TRUE(scene.readable());
    Node& code = *named(scene, "Code");
    EXPECT_EQ(text(code, "counter"), "7");
    EXPECT_EQ(text(code, "directOutput"), "TRUE");
    EXPECT_EQ(code.findField(std::string("names"))->size(), 2u);
    EXPECT_NE(code.findField(std::string("set_fraction")), nullptr);
    EXPECT_NE(code.findField(std::string("position_changed")), nullptr);
    EXPECT_EQ(named(scene, "Target")->parentCount(), 1u);
    // Both CDATA sections make one url entry, without the blank lines around it.
    EXPECT_EQ(text(code, "url"),
              "\"ecmascript:\nfunction set_fraction(v) { if (v < 1 && \\\"]]>\\\") counter++; }\"");
    Node& shader = *named(scene, "Shader");
    EXPECT_EQ(text(shader, "scale"), "2");
    auto* parts = dynamic_cast<MFNode*>(shader.findField(std::string("parts")));
    ASSERT_NE(parts, nullptr);
    ASSERT_EQ(parts->size(), 1u);
    EXPECT_EQ(text(*parts->childNode(0), "url"), "\"void main() { gl_Position = vec4(0.0); }\"");
}

TEST(XMLReader, FaultsAreReportedAtTheirPlaceAndTheRestLoads)
{
    LogCapture  log;
    LoadedScene scene = SceneLoader::load(data("xml-errors.x3d"));
    ASSERT_TRUE(scene.readable());
    const std::vector<Fault> expected = {
        {23, 46, "malformed XML: Start-end tags mismatch"},
        {5, 7, "unknown node type 'Frobnicator'"},
        {6, 19, "value does not fit SFVec3f field Box.size"},
        {7, 26, "unknown field 'nosuchfield' in Appearance"},
        {8, 14, "no field 'children' in Shape for a Transform node (containerField)"},
        {10, 5, "USE of unknown name 'Missing'"},
        {12, 5, "ROUTE A.translation_changed TO Nobody.set_translation: unknown node 'Nobody'"},
        {13, 5, "ROUTE A.nosuch TO A.set_translation: unknown field 'nosuch'"},
        {14, 5, "ROUTE needs fromNode, fromField, toNode and toField"},
        {16, 5, "ROUTE A.translation_changed TO B.children_changed: the fields do not match"},
        {17, 5, "IMPORT from 'B', which is no loaded Inline"},
        {18, 20, "attribute 'bboxSize' beside USE is ignored"},
        {19, 13, "invalid interface declaration 'initializeOnly SFNope f'"},
        {20, 20, "IS outside a PROTO body"},
        {21, 12, "text in a Group node, which takes no source code"},
    };
    EXPECT_EQ(faults(scene), expected);
    EXPECT_TRUE(log.contains(data("xml-errors.x3d") + ":10:5: USE of unknown name 'Missing'\n", LOG_WARNING));
    // The rest is there, the unknown element with its fields as text and its child.
    EXPECT_NE(named(scene, "Last"), nullptr);
    EXPECT_NE(named(scene, "Inside"), nullptr);
    Node* odd = unknownNode(scene, "Frobnicator");
    ASSERT_NE(odd, nullptr);
    EXPECT_EQ(text(*odd, "label"), "kept");
    EXPECT_EQ(text(*odd, "weight"), "3.000000");
    EXPECT_EQ(odd->findField(std::string("children"))->size(), 1u);
}

TEST(XMLReader, NotAnX3DDocumentIsUnreadable)
{
    LogCapture log;
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"<?xml version='1.0'?><html/>", "no X3D root element: not an X3D scene"},
        {"<X3D version='5.0'><Scene/></X3D>", "no X3D version 3.0 to 4.1 in the X3D element: not a scene file"},
        {"<?xml version='1.0'?>", "no X3D root element: not an X3D scene"},
    };
    for (const auto& [document, message] : cases) {
        LoadedScene scene = SceneLoader::loadData(document, "bad.x3d");
        EXPECT_FALSE(scene.readable()) << document;
        ASSERT_FALSE(scene.errors.empty()) << document;
        EXPECT_EQ(scene.errors.back().message, message) << document;
    }
}

TEST(XMLReader, TheReaderIsChosenByContent)
{
    const std::vector<std::pair<std::string, bool>> cases = {
        {"<?xml version='1.0'?><X3D/>", true},
        {"\xEF\xBB\xBF  \n<X3D version='4.0'/>", true},
        {"<!-- a comment -->\n<!-- another --> <!DOCTYPE X3D><X3D/>", true},
        {"#VRML V2.0 utf8\n", false},
        {"#X3D V4.0 utf8\n<X3D/>", false},
        {"<!-- never closed <X3D/>", false},
        {"", false},
    };
    for (const auto& [content, xml] : cases)
        EXPECT_EQ(SceneLoader::isXml(content), xml) << content;
}

// A Scene larger than a few pieces, with what could mislead a cut: markup characters in values,
// comments, CDATA and a processing instruction between and inside nodes, a route across pieces,
// faults in late pieces and an element after the Scene.
std::string manyPieces(const char* doctype, const char* first = "")
{
    std::string document = std::string("<?xml version='1.0'?>") + doctype + "\n<X3D version='4.0'><Scene>\n" + first;
    int         group = 0;
    while (document.size() < 5 * XMLReader::pieceBytes()) {
        const std::string n = std::to_string(group++);
        document += "<Transform DEF='T" + n + "' translation='" + n + " 0 0'><!-- </Transform> -->\n"
                    "  <WorldInfo title='a > b /> c' info='\"x<y\"'/><Shape><Box size='1 2 3'/></Shape>"
                    "<?pi </Scene> ?></Transform>\n"
                    "<Script DEF='S" + n + "'><![CDATA[ x = '</Scene>'; ]]></Script>\n";
    }
    document += "<Box nosuch='1'/>\n<Transform DEF='Last'/>\n"
                "<ROUTE fromNode='T0' fromField='translation_changed' toNode='Last' toField='set_translation'/>\n"
                "</Scene>\n<Bogus/></X3D>\n";
    return document;
}

TEST(XMLReader, ALargeSceneReadInPiecesIsTheSceneReadWhole)
{
    LogCapture        log;
    const std::size_t pieceBytes = XMLReader::pieceBytes();
    XMLReader::setPieceBytes(4096);
    // An internal DOCTYPE subset makes the reader parse the document whole.
    LoadedScene pieces = SceneLoader::loadData(manyPieces(""), "pieces.x3d");
    LoadedScene whole = SceneLoader::loadData(manyPieces("<!DOCTYPE X3D [ ]>"), "whole.x3d");
    ASSERT_TRUE(pieces.readable());
    ASSERT_TRUE(whole.readable());
    // (Compared as a whole: a difference in these large scenes is not worth printing.)
    EXPECT_TRUE(write(*pieces.root) == write(*whole.root));
    EXPECT_TRUE(shape(*pieces.root) == shape(*whole.root));
    EXPECT_EQ(faults(pieces), faults(whole));
    ASSERT_EQ(faults(pieces).size(), 2u);
    EXPECT_EQ(std::get<2>(faults(pieces)[0]), "unknown field 'nosuch' in Box");
    EXPECT_EQ(std::get<2>(faults(pieces)[1]), "unexpected element 'Bogus' in X3D");
    EXPECT_EQ(std::get<0>(faults(pieces)[1]), std::get<0>(faults(pieces)[0]) + 4);

    // A malformed element is reported at its place, and the pieces after its own load.
    LoadedScene faulty = SceneLoader::loadData(manyPieces("", "<Group bad=oops/>"), "faulty.x3d");
    ASSERT_FALSE(faulty.errors.empty());
    EXPECT_EQ(faults(faulty).front(), Fault(3, 12, "malformed XML: Error parsing element attribute"));
    EXPECT_NE(named(faulty, "Last"), nullptr);
    XMLReader::setPieceBytes(pieceBytes);
}

// --- hostile documents: nothing is expanded, fetched or recursed into beyond the limit ---

double secondsFor(const std::string& document, LoadedScene& scene)
{
    auto start = std::chrono::steady_clock::now();
    scene = SceneLoader::loadData(document, "hostile.x3d");
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST(XMLReader, EntityDeclarationsAreNotExpanded)
{
    LogCapture  log;
    std::string laughs = "<?xml version='1.0'?>\n<!DOCTYPE X3D [\n<!ENTITY lol0 'lol'>\n";
    for (int i = 1; i < 10; ++i) {
        laughs += "<!ENTITY lol" + std::to_string(i) + " '";
        for (int j = 0; j < 10; ++j)
            laughs += "&lol" + std::to_string(i - 1) + ";";
        laughs += "'>\n";
    }
    laughs += "<!ENTITY secret SYSTEM 'file:///etc/passwd'>\n]>\n"
              "<X3D version='4.0'><Scene><WorldInfo DEF='W' title='&lol9;&secret;'/></Scene></X3D>";
    std::string blowup = "<?xml version='1.0'?><!DOCTYPE X3D [<!ENTITY a '" + std::string(100000, 'a') +
                         "'>]><X3D version='4.0'><Scene><WorldInfo DEF='W' title='";
    for (int i = 0; i < 100000; ++i)
        blowup += "&a;";
    blowup += "'/></Scene></X3D>";
    for (const std::string* document : {&laughs, &blowup}) {
        LoadedScene scene;
        EXPECT_LT(secondsFor(*document, scene), 5.0);
        ASSERT_TRUE(scene.readable());
        ASSERT_FALSE(scene.errors.empty());
        EXPECT_EQ(scene.errors.front().message, "the DOCTYPE declares entities; they are not expanded");
        EXPECT_EQ(scene.errors.front().line, 1 + (document == &laughs));
        // The references stay as they were written.
        const std::string title = text(*named(scene, "W"), "title");
        if (document == &laughs)
            EXPECT_EQ(title, "&lol9;&secret;");
        else
            EXPECT_EQ(title.size(), 300000u);
    }
}

TEST(XMLReader, NestingAMillionDeepIsCutAtTheLimit)
{
    LogCapture  log;
    std::string deep = "<X3D version='4.0'><Scene>";
    for (int i = 0; i < 1000000; ++i)
        deep += "<Group>";
    for (int i = 0; i < 1000000; ++i)
        deep += "</Group>";
    deep += "<Group DEF='After'/></Scene></X3D>";
    LoadedScene scene;
    EXPECT_LT(secondsFor(deep, scene), 20.0);
    ASSERT_TRUE(scene.readable());
    ASSERT_EQ(scene.errors.size(), 1u);
    EXPECT_EQ(scene.errors.front().message, "nesting deeper than 200 levels");
    EXPECT_EQ(scene.errors.front().column, 27 + 7 * (XMLReader::MaxDepth - 2));
    EXPECT_NE(named(scene, "After"), nullptr);
}

TEST(XMLReader, AnAttributeOfThirtyMegabytesOfPointsReads)
{
    LogCapture  log;
    std::string document = "<X3D version='4.0'><Scene><Shape><PointSet><Coordinate DEF='C' point='";
    const int   points = 1500000;
    for (int i = 0; i < points; ++i)
        document += "123.4567 -89.01234 5678.901, ";
    document += "'/></PointSet></Shape></Scene></X3D>";
    ASSERT_GT(document.size(), 30u << 20);
    LoadedScene scene;
    EXPECT_LT(secondsFor(document, scene), 30.0);
    ASSERT_TRUE(scene.readable());
    EXPECT_TRUE(scene.errors.empty());
    EXPECT_EQ(named(scene, "C")->findField(std::string("point"))->size(), static_cast<unsigned>(points));
}

} // namespace
