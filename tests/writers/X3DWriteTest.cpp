// The X3D writers: exact bytes of small scenes in the XML and the classic encoding. Every XML
// document a test writes is also kept, and all of them are validated against the X3D 4.0
// schema in one xmllint call when the run ends (skipped, with a message, without the schema).
#include "base/EventOutSlot.h"
#include "base/NodeNameSpace.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"
#include "base/ProtoDeclaration.h"
#include "base/Route.h"
#include "base/X3DClassicWriteAction.h"
#include "base/X3DWriteAction.h"
#include "modules/loader/SceneLoader.h"
#include "tests/support/LogCapture.h"
#include "tests/support/X3DDocuments.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

using namespace Orvane;
using Orvane::Test::Documents;

namespace {

LoadedScene load(const std::string& text)
{
    // Inlines get their scenes from the tests, not from files.
    LoadOptions options;
    options.loadInlines = false;
    LoadedScene scene = SceneLoader::loadData(text, "test.x3dv", options);
    for (const LoadError& e : scene.errors)
        ADD_FAILURE() << e.line << ":" << e.column << ": " << e.message;
    return scene;
}

std::string write(WriteAction& writer, Node& root)
{
    std::ostringstream out;
    EXPECT_TRUE(SceneLoader::write(root, writer, out));
    return out.str();
}

std::string writeXml(Node& root, std::uint32_t options = 0)
{
    X3DWriteAction writer;
    writer.setUseTAB(options & WriteAction::UseTAB);
    writer.setForbidNodeUSE(options & WriteAction::ForbidNodeUSE);
    writer.setWriteExactNumbers(options & WriteAction::WriteExactNumbers);
    writer.setWriteDefaultValue(options & WriteAction::WriteDefaultValue);
    std::string text = write(writer, root);
    Documents::the().keep(text);
    return text;
}

// The content of <Scene>.
std::string sceneOf(const std::string& document)
{
    auto from = document.find("  <Scene>\n"), to = document.rfind("  </Scene>\n");
    if (from == std::string::npos || to == std::string::npos || to < from)
        return "no scene in:\n" + document;
    from += 10;
    return document.substr(from, to - from);
}

const char* const x3dHeader = "#X3D V4.0 utf8\nPROFILE Immersive\n";

struct XmlCase {
    const char*   name;
    const char*   classic;  // the scene, after the X3D header
    std::uint32_t options;
    const char*   scene;    // what <Scene> holds
};

class X3DXmlScene : public ::testing::TestWithParam<XmlCase> {};

TEST_P(X3DXmlScene, WritesExactly)
{
    LoadedScene scene = load(std::string(x3dHeader) + GetParam().classic);
    ASSERT_TRUE(scene.readable());
    EXPECT_EQ(sceneOf(writeXml(*scene.root, GetParam().options)), GetParam().scene);
}

const XmlCase xmlCases[] = {
    {"DefUseAndContainerField",
     "DEF T Transform { children [\n"
     "  DEF S Shape { geometry DEF B Box { size 1 2 3 } }\n"
     "  Transform { children USE S }\n"
     "  Collision { proxy USE S children Shape { geometry USE B } }\n"
     "] }\n",
     0,
     "    <Transform DEF='T'>\n"
     "      <Shape DEF='S'>\n"
     "        <Box DEF='B' size='1 2 3'/>\n"
     "      </Shape>\n"
     "      <Transform>\n"
     "        <Shape USE='S'/>\n"
     "      </Transform>\n"
     "      <Collision>\n"
     "        <Shape>\n"
     "          <Box USE='B'/>\n"
     "        </Shape>\n"
     "        <Shape USE='S' containerField='proxy'/>\n"
     "      </Collision>\n"
     "    </Transform>\n"},
    {"ForbidNodeUSEAndExactNumbers",
     "Group { children [ DEF S Shape { } USE S ] }\n"
     "Transform { translation 0.123456789 0 0 }\n",
     WriteAction::ForbidNodeUSE | WriteAction::WriteExactNumbers,
     "    <Group>\n"
     "      <Shape DEF='S'/>\n"
     "      <Shape DEF='S_2'/>\n"
     "    </Group>\n"
     "    <Transform translation='0.12345679 0 0'/>\n"},
    {"DefaultValuesWhenAsked", "Shape { geometry Cone { } }\n", WriteAction::WriteDefaultValue,
     "    <Shape bboxCenter='0 0 0' bboxDisplay='false' bboxSize='-1 -1 -1' castShadow='true' visible='true'>\n"
     "      <Cone bottom='true' bottomRadius='1' height='2' side='true' solid='true'/>\n"
     "    </Shape>\n"},
    {"PrototypeWithISAndNodeValuedInstance",
     "PROTO Tile [ initializeOnly SFVec3f size 1 1 1 initializeOnly SFNode look NULL\n"
     "             inputOutput MFNode parts [ ] ] {\n"
     "  Transform { children IS parts }\n"
     "  Shape { appearance IS look geometry Box { size IS size } }\n"
     "}\n"
     "DEF T Tile { look Appearance { material Material { diffuseColor 1 0 0 } } size 2 2 2 }\n",
     0,
     "    <ProtoDeclare name='Tile'>\n"
     "      <ProtoInterface>\n"
     "        <field accessType='initializeOnly' type='SFVec3f' name='size' value='1 1 1'/>\n"
     "        <field accessType='initializeOnly' type='SFNode' name='look'/>\n"
     "        <field accessType='inputOutput' type='MFNode' name='parts'/>\n"
     "      </ProtoInterface>\n"
     "      <ProtoBody>\n"
     "        <Transform>\n"
     "          <IS>\n"
     "            <connect nodeField='children' protoField='parts'/>\n"
     "          </IS>\n"
     "        </Transform>\n"
     "        <Shape>\n"
     "          <IS>\n"
     "            <connect nodeField='appearance' protoField='look'/>\n"
     "          </IS>\n"
     "          <Box>\n"
     "            <IS>\n"
     "              <connect nodeField='size' protoField='size'/>\n"
     "            </IS>\n"
     "          </Box>\n"
     "        </Shape>\n"
     "      </ProtoBody>\n"
     "    </ProtoDeclare>\n"
     "    <ProtoInstance name='Tile' DEF='T'>\n"
     "      <fieldValue name='size' value='2 2 2'/>\n"
     "      <fieldValue name='look'>\n"
     "        <Appearance>\n"
     "          <Material diffuseColor='1 0 0'/>\n"
     "        </Appearance>\n"
     "      </fieldValue>\n"
     "    </ProtoInstance>\n"},
    {"RoutesAndExports",
     "DEF C TimeSensor { loop TRUE }\n"
     "DEF P PositionInterpolator { key [ 0 1 ] keyValue [ 0 0 0, 1 1 1 ] }\n"
     "DEF M Transform { }\n"
     "ROUTE C.fraction_changed TO P.set_fraction\n"
     "ROUTE P.value_changed TO M.set_translation\n"
     "EXPORT M AS Mover\n",
     0,
     "    <TimeSensor DEF='C' loop='true'/>\n"
     "    <PositionInterpolator DEF='P' key='0.000000, 1.000000' keyValue='0.000000 0.000000 0.000000, 1.000000 "
     "1.000000 1.000000'/>\n"
     "    <Transform DEF='M'/>\n"
     "    <EXPORT localDEF='M' AS='Mover'/>\n"
     "    <ROUTE fromNode='C' fromField='fraction_changed' toNode='P' toField='set_fraction'/>\n"
     "    <ROUTE fromNode='P' fromField='value_changed' toNode='M' toField='translation'/>\n"},
    {"ScriptWithCDataAndDeclarations",
     "DEF S Script {\n"
     "  url [ \"ecmascript: function set_v(v) { if (v < 1 && v > 0) done = true; s = ']]>'; }\" \"code.js\" ]\n"
     "  inputOnly SFFloat set_v\n"
     "  outputOnly SFBool done\n"
     "  initializeOnly SFNode target NULL\n"
     "  initializeOnly MFNode kids [ ]\n"
     "  initializeOnly SFTime start 1.5\n"
     "  directOutput TRUE\n"
     "}\n",
     0,
     "    <Script DEF='S' url='\"code.js\"' directOutput='true'>\n"
     "      <field accessType='inputOnly' type='SFFloat' name='set_v'/>\n"
     "      <field accessType='outputOnly' type='SFBool' name='done'/>\n"
     "      <field accessType='initializeOnly' type='SFNode' name='target'/>\n"
     "      <field accessType='initializeOnly' type='MFNode' name='kids'/>\n"
     "      <field accessType='initializeOnly' type='SFTime' name='start' value='1.5'/>\n"
     "      <![CDATA[ecmascript: function set_v(v) { if (v < 1 && v > 0) done = true; s = ']]]]><![CDATA[>'; "
     "}]]>\n"
     "    </Script>\n"},
    {"FiveSpecialCharactersEscaped",
     "WorldInfo { title \"a&b <c> \\\"d\\\" 'e'\" info [ \"x&y\" \"<\\\"q\\\">\" \"it's\" \"back\\\\slash\" ] }\n",
     0,
     "    <WorldInfo info='\"x&amp;y\" \"&lt;\\&quot;q\\&quot;&gt;\" \"it&apos;s\" \"back\\\\slash\"' "
     "title='a&amp;b &lt;c&gt; &quot;d&quot; &apos;e&apos;'/>\n"},
};

INSTANTIATE_TEST_SUITE_P(Writer, X3DXmlScene, ::testing::ValuesIn(xmlCases),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(X3DXmlDocument, HeaderOfTheSceneOrTheDefaults)
{
    LoadedScene own = load("#X3D V3.3 utf8\nPROFILE Interchange\nCOMPONENT Geospatial:1\n"
                           "UNIT length centimeter 0.01\nMETA \"title\" \"Fish & <Chips>\"\nGroup { }\n");
    ASSERT_TRUE(own.readable());
    EXPECT_EQ(writeXml(*own.root),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<!DOCTYPE X3D PUBLIC \"ISO//Web3D//DTD X3D 3.3//EN\" \"https://www.web3d.org/specifications/x3d-3.3.dtd\">\n"
              "<X3D profile='Interchange' version='3.3' xmlns:xsd='http://www.w3.org/2001/XMLSchema-instance' "
              "xsd:noNamespaceSchemaLocation='https://www.web3d.org/specifications/x3d-3.3.xsd'>\n"
              "  <head>\n"
              "    <component name='Geospatial' level='1'/>\n"
              "    <unit category='length' name='centimeter' conversionFactor='0.01'/>\n"
              "    <meta name='title' content='Fish &amp; &lt;Chips&gt;'/>\n"
              "  </head>\n"
              "  <Scene>\n"
              "    <Group/>\n"
              "  </Scene>\n"
              "</X3D>\n");

    // A VRML97 world says nothing: Immersive, 4.0, no head. Tabs indent with useTAB.
    LoadedScene vrml = load("#VRML V2.0 utf8\nGroup { children Shape { } }\n");
    ASSERT_TRUE(vrml.readable());
    EXPECT_EQ(writeXml(*vrml.root, WriteAction::UseTAB),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<!DOCTYPE X3D PUBLIC \"ISO//Web3D//DTD X3D 4.0//EN\" \"https://www.web3d.org/specifications/x3d-4.0.dtd\">\n"
              "<X3D profile='Immersive' version='4.0' xmlns:xsd='http://www.w3.org/2001/XMLSchema-instance' "
              "xsd:noNamespaceSchemaLocation='https://www.web3d.org/specifications/x3d-4.0.xsd'>\n"
              "\t<Scene>\n"
              "\t\t<Group>\n"
              "\t\t\t<Shape/>\n"
              "\t\t</Group>\n"
              "\t</Scene>\n"
              "</X3D>\n");
}

// The node that roots the scope an Inline brought in.
struct InlineProc : NodeProc {
    InlineProc(Node& node, NodeNameSpace& inner) : NodeProc(node), _inner(&inner) {}
    NodeNameSpace* ownNameSpace() const override { return _inner; }
    NodeNameSpace* _inner;
};

TEST(X3DXmlDocument, ImportFollowsItsInlineAndRoutesUseTheImportedName)
{
    LoadedScene scene = load(std::string(x3dHeader) + "DEF I Inline { url \"lamp.x3d\" }\nDEF C TimeSensor { }\n");
    ASSERT_TRUE(scene.readable());
    NodeNameSpace&          outer = scene.root->nameSpace();
    SmartPtr<NodeNameSpace> inner(new NodeNameSpace("lamp", &outer, &outer.nodeTypeNameSpace()));
    SmartPtr<Node>          light(NodeType::createNode(inner.get(), "PointLight", "Light", RuntimeCreator));
    ASSERT_TRUE(light);
    ASSERT_TRUE(inner->exportNode("Light"));
    Node* inlineNode = outer.findNode("I");
    inlineNode->setProc(new InlineProc(*inlineNode, *inner));
    ASSERT_TRUE(outer.importNode(*inner, "Light", "Lamp"));
    ASSERT_NE(Route::create(*outer.findNode("C")->findField(std::string("isActive")), *light->findField(std::string("on"))),
              nullptr);
    EXPECT_EQ(sceneOf(writeXml(*scene.root)),
              "    <Inline DEF='I' url='\"lamp.x3d\"'/>\n"
              "    <IMPORT inlineDEF='I' importedDEF='Light' AS='Lamp'/>\n"
              "    <TimeSensor DEF='C'/>\n"
              "    <ROUTE fromNode='C' fromField='isActive' toNode='Lamp' toField='on'/>\n");
}

TEST(X3DXmlDocument, ExternalPrototypeDeclaresItsInterface)
{
    LoadedScene scene = load(std::string(x3dHeader) + "Group { }\n");
    ASSERT_TRUE(scene.readable());
    ProtoDeclaration* far;
    {
        Orvane::Test::LogCapture quiet;  // the address is not fetched here
        far = ProtoDeclaration::declareExtern(scene.root->nameSpace(), "Far", {"lib/far.x3d#FarAway"});
    }
    ASSERT_NE(far, nullptr);
    far->addField("inputOutput", "SFFloat", "speed");
    far->addField("inputOnly", "SFInt32", "kick");
    EXPECT_EQ(sceneOf(writeXml(*scene.root)),
              "    <ExternProtoDeclare name='Far' url='\"lib/far.x3d#FarAway\"'>\n"
              "      <field accessType='inputOutput' type='SFFloat' name='speed'/>\n"
              "      <field accessType='inputOnly' type='SFInt32' name='kick'/>\n"
              "    </ExternProtoDeclare>\n"
              "    <Group/>\n");
}

TEST(X3DClassic, HeaderStatementsAndAccessWords)
{
    LoadedScene own = load("#X3D V3.3 utf8\nPROFILE Interchange\nCOMPONENT Geospatial:1\n"
                           "UNIT length centimeter 0.01\nMETA \"title\" \"a \\\"b\\\"\"\nGroup { }\n");
    ASSERT_TRUE(own.readable());
    X3DClassicWriteAction writer;
    EXPECT_EQ(write(writer, *own.root), "#X3D V3.3 utf8\n"
                                        "PROFILE Interchange\n"
                                        "COMPONENT Geospatial:1\n"
                                        "UNIT length centimeter 0.01\n"
                                        "META \"title\" \"a \\\"b\\\"\"\n"
                                        "\n"
                                        "Group {\n"
                                        "}\n"
                                        "\n\n");

    LoadedScene vrml = load("#VRML V2.0 utf8\n"
                            "PROTO P [ exposedField SFFloat a 1 eventIn SFBool b eventOut SFTime c field SFInt32 d 2 ]"
                            " { Group { } }\nP { a 3 }\n");
    ASSERT_TRUE(vrml.readable());
    EXPECT_EQ(write(writer, *vrml.root), "#X3D V4.0 utf8\n"
                                         "PROFILE Immersive\n"
                                         "\n"
                                         "# 1 proto declaration\n"
                                         "PROTO P [\n"
                                         "  inputOutput SFFloat a 1\n"
                                         "  inputOnly SFBool b\n"
                                         "  outputOnly SFTime c\n"
                                         "  initializeOnly SFInt32 d 2\n"
                                         "] {\n"
                                         "  Group {\n"
                                         "  }\n"
                                         "}\n"
                                         "\n"
                                         "P {\n"
                                         "  a 3\n"
                                         "}\n"
                                         "\n\n");
}

} // namespace
