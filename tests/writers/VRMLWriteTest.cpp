// The classic VRML writer: exact bytes for small scenes.
#include "base/MFFloat.h"
#include "base/MFNode.h"
#include "base/EventOutSlot.h"
#include "base/MFString.h"
#include "base/NodeProc.h"
#include "base/Route.h"
#include "base/SFFloat.h"
#include "base/SFNode.h"
#include "base/SFString.h"
#include "base/VRMLWriteAction.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

const char* const header = "#VRML V2.0 utf8\n\n";

struct VRMLWriteTest : ::testing::Test {
    TypeScope scope;
    NodeType& group = scope.declare("Group", "Node", {{"children", ExposedFieldPartType, MFNodeType}});
    NodeType& box = scope.declare("Box", "Node",
                                  {{"size", ExposedFieldPartType, SFVec3fType, 0, "2 2 2"},
                                   {"label", FieldPartType, SFStringType, 0, "none"},
                                   {"weights", ExposedFieldPartType, MFFloatType},
                                   {"names", ExposedFieldPartType, MFStringType},
                                   {"in", EventInPartType, SFFloatType}});
    NodeType& holder = scope.declare("Holder", "Node", {{"item", ExposedFieldPartType, SFNodeType}});

    void SetUp() override { scope.initAll(); }

    static void set(Node& node, const char* field, const char* text) { node.findField(field)->setValueByStr(0.0, text); }
    static void add(Node& parent, Node& child) { ASSERT_NE(parent.addChild(&child), nullptr); }

    static std::string write(VRMLWriteAction& writer, Node& root)
    {
        std::ostringstream out;
        EXPECT_TRUE(writer.writeStream(root, out));
        return out.str();
    }
    static std::string write(Node& root)
    {
        VRMLWriteAction writer;
        return write(writer, root);
    }
};

TEST_F(VRMLWriteTest, EmptySceneIsTheHeaderAndTwoLineFeeds)
{
    VRMLWriteAction    writer;
    std::ostringstream out;
    EXPECT_TRUE(writer.writeStream(std::vector<Node*>{}, out));
    EXPECT_EQ(out.str(), "#VRML V2.0 utf8\n\n\n\n");
}

TEST_F(VRMLWriteTest, SharedNodeIsDefinedOnceThenUsed)
{
    SmartPtr<Node> root = scope.make("Group", "Root"), inner = scope.make("Group"), shared = scope.make("Box", "B");
    add(*root, *shared);
    add(*root, *inner);
    add(*inner, *shared);
    // The root's scope ends inside its block: the export list's single indentation stays.
    EXPECT_EQ(write(*root), std::string(header) +
                                "DEF Root Group {\n"
                                "  children [\n"
                                "    DEF B Box {\n"
                                "    }\n"
                                "    Group {\n"
                                "      children [\n"
                                "        USE B\n"
                                "      ]\n"
                                "    }\n"
                                "  ]\n"
                                "  }\n"
                                "\n\n");
}

TEST_F(VRMLWriteTest, ForbidNodeUSENumbersTheCopies)
{
    SmartPtr<Node> root = scope.make("Group"), shared = scope.make("Box", "B");
    for (int i = 0; i < 3; ++i)
        static_cast<MFNode*>(root->findField("children"))->addChild(shared.get());
    set(*shared, "size", "1 2 3");
    VRMLWriteAction writer;
    writer.setForbidNodeUSE(true);
    EXPECT_EQ(write(writer, *root), std::string(header) +
                                        "Group {\n"
                                        "  children [\n"
                                        "    DEF B Box {\n"
                                        "      size 1 2 3\n"
                                        "    }\n"
                                        "    DEF B_2 Box {\n"
                                        "      size 1 2 3\n"
                                        "    }\n"
                                        "    DEF B_3 Box {\n"
                                        "      size 1 2 3\n"
                                        "    }\n"
                                        "  ]\n"
                                        "  }\n"
                                        "\n\n");
}

TEST_F(VRMLWriteTest, UnnamedSharedNodeGetsAGeneratedName)
{
    SmartPtr<Node> root = scope.make("Group"), shared = scope.make("Box");
    auto&          children = *static_cast<MFNode*>(root->findField("children"));
    children.addChild(shared.get());
    children.addChild(shared.get());
    std::string name = "AOPT_Box_" + std::to_string(shared->ID());
    EXPECT_EQ(write(*root), std::string(header) + "Group {\n  children [\n    DEF " + name + " Box {\n    }\n    USE " +
                                name + "\n  ]\n  }\n\n\n");
}

TEST_F(VRMLWriteTest, NodeFieldsEmptyNullAndFilled)
{
    SmartPtr<Node> emptyGroup = scope.make("Group");
    // An empty MFNode holds its default and is not written; an SFNode without node neither.
    EXPECT_EQ(write(*emptyGroup), std::string(header) + "Group {\n  }\n\n\n");

    SmartPtr<Node> holderNode = scope.make("Holder"), item = scope.make("Group");
    static_cast<SFNode*>(holderNode->findField("item"))->setNode(item.get());
    EXPECT_EQ(write(*holderNode), std::string(header) + "Holder {\n  item Group {\n  }\n  }\n\n\n");

    // The interface form shows both: "[]" on the name's line, and NULL.
    VRMLWriteAction    writer;
    std::ostringstream out;
    writer.begin(out, "");
    SmartPtr<Node> lone = scope.make("Group");
    SmartPtr<Node> lonely = scope.make("Holder");
    writer.writeContainerField(*lone->findField("children"), WriteAction::InterfaceStyle, true);
    writer.writeContainerField(*lonely->findField("item"), WriteAction::InterfaceStyle, true);
    writer.writeContainerField(*lonely->findField("item"), WriteAction::NormalStyle, true);
    writer.end();
    EXPECT_EQ(out.str(), std::string(header) +
                             "exposedField MFNode children []\n"
                             "exposedField SFNode item NULL\n"
                             "\n\n");
}

TEST_F(VRMLWriteTest, ValuesStringsAndBrackets)
{
    SmartPtr<Node> node = scope.make("Box", "V");
    const struct {
        const char* field;
        const char* text;
        const char* line;
    } cases[] = {
        {"label", "say \"hi\" \\o/", "  label \"say \\\"hi\\\" \\\\o/\"\n"},
        {"weights", "1.5", "  weights 1.500000\n"},
        {"weights", "1 2", "  weights [ 1.000000, 2.000000 ]\n"},
        {"names", "'one'", "  names \"one\"\n"},
        {"names", "'a\"b' 'c'", "  names [ \"a\\\"b\" \"c\" ]\n"},
    };
    for (const auto& c : cases) {
        set(*node, c.field, c.text);
        std::string text = write(*node);
        EXPECT_NE(text.find(c.line), std::string::npos) << c.field << " " << c.text << "\n" << text;
    }
}

TEST_F(VRMLWriteTest, EmptyMultipleValueInInterfaceFormAndDefaults)
{
    SmartPtr<Node>     node = scope.make("Box");
    VRMLWriteAction    writer;
    std::ostringstream out;
    writer.begin(out, "");
    writer.writeField(*node->findField("weights"), WriteAction::InterfaceStyle);
    writer.writeField(*node->findField("in"), WriteAction::InterfaceStyle);
    writer.writeField(*node->findField("size"), WriteAction::ExternInterfaceStyle);
    writer.end();
    EXPECT_EQ(out.str(), std::string(header) +
                             "exposedField MFFloat weights []\n"
                             "eventIn SFFloat in\n"
                             "exposedField SFVec3f size\n"
                             "\n\n");

    // writeDefaultValue brings back the fields at their default.
    writer.setWriteDefaultValue(true);
    EXPECT_NE(write(writer, *node).find("  size 2 2 2\n"), std::string::npos);
}

TEST_F(VRMLWriteTest, RoutesFollowTheNodesAndUnnamedEndsAreLeftOut)
{
    SmartPtr<Node> root = scope.make("Group", "Root"), a = scope.make("Box", "A"), b = scope.make("Box", "B"),
                   c = scope.make("Box");
    add(*root, *a);
    add(*root, *b);
    add(*root, *c);
    ASSERT_NE(scope.nodes().createRoute("A", "weights", "B", "weights"), nullptr);
    ASSERT_NE(Route::create(*a->findField("size"), *c->findField("size")), nullptr);
    EXPECT_EQ(write(*root), std::string(header) +
                                "DEF Root Group {\n"
                                "  children [\n"
                                "    DEF A Box {\n"
                                "    }\n"
                                "    DEF B Box {\n"
                                "    }\n"
                                "    Box {\n"
                                "    }\n"
                                "  ]\n"
                                "    ROUTE A.weights TO B.weights\n"
                                "}\n"
                                "\n\n");

    // A route that loses its end's name after it was handed over is dropped with a notice.
    LogCapture         log;
    VRMLWriteAction    writer;
    std::ostringstream out;
    writer.begin(out, "");
    writer.writeRoute(*a->findField("weights")->getOutSlot()->routeBag().front());
    scope.nodes().unregNode(*b);
    writer.flushRouteBag(true);
    writer.end();
    EXPECT_EQ(out.str(), std::string(header) + "\n\n");
    EXPECT_EQ(log.count("XXX Ignore Route with connects unnamed nodes\n", LOG_LOG), 1);
}

TEST_F(VRMLWriteTest, ExportAndImportLines)
{
    SmartPtr<Node> root = scope.make("Group", "Root"), a = scope.make("Box", "A"), b = scope.make("Box", "B");
    add(*root, *a);
    add(*root, *b);
    ASSERT_TRUE(scope.nodes().exportNode("A", "Out"));
    ASSERT_TRUE(scope.nodes().exportNode("B"));
    std::string text = write(*root);
    EXPECT_NE(text.find("  ]\n  EXPORT A AS Out\nEXPORT B\n}\n"), std::string::npos) << text;

    // IMPORT: a namespace below the scene exports a node; the scene imports it through the node
    // that roots that namespace.
    struct InlineProc : NodeProc {
        explicit InlineProc(Node& node, NodeNameSpace& inner) : NodeProc(node), _inner(&inner) {}
        NodeNameSpace* ownNameSpace() const override { return _inner; }
        NodeNameSpace* _inner;
    };
    SmartPtr<NodeNameSpace> inner(new NodeNameSpace("inner", &scope.nodes(), &scope.types()));
    SmartPtr<Node>          inside(NodeType::createNode(inner.get(), "Box", "Inside", RuntimeCreator));
    ASSERT_TRUE(inner->exportNode("Inside", "Pub"));
    SmartPtr<Node> host = scope.make("Group", "Host");
    host->setProc(new InlineProc(*host, *inner));
    add(*root, *host);
    ASSERT_TRUE(scope.nodes().importNode(*inner, "Pub", "Local"));
    text = write(*root);
    EXPECT_NE(text.find("    DEF Host Group {\n      EXPORT Inside AS Pub\n    }\n    IMPORT Host.Pub AS Local\n"),
              std::string::npos)
        << text;
}

TEST_F(VRMLWriteTest, ImportRoutesBridgeAnUnnamedNode)
{
    SmartPtr<NodeNameSpace> inner(new NodeNameSpace("inner", &scope.nodes(), &scope.types()));
    SmartPtr<Node> p(NodeType::createNode(inner.get(), "Box", "P", RuntimeCreator));
    SmartPtr<Node> q(NodeType::createNode(inner.get(), "Box", "Q", RuntimeCreator));
    ASSERT_TRUE(inner->exportNode("P"));
    ASSERT_TRUE(inner->exportNode("Q"));
    ASSERT_TRUE(scope.nodes().importNode(*inner, "P", "LP"));
    ASSERT_TRUE(scope.nodes().importNode(*inner, "Q", "LQ"));
    SmartPtr<Node> named = scope.make("Box", "N"), unnamed = scope.make("Box");
    ASSERT_NE(Route::create(*p->findField("weights"), *named->findField("weights")), nullptr);
    ASSERT_NE(Route::create(*p->findField("size"), *unnamed->findField("size")), nullptr);
    ASSERT_NE(Route::create(*unnamed->findField("size"), *q->findField("size")), nullptr);

    VRMLWriteAction    writer;
    std::ostringstream out;
    writer.begin(out, "");
    writer.writeImportRoutes(scope.nodes());
    writer.end();
    EXPECT_EQ(out.str(), std::string(header) +
                             "ROUTE LP.weights TO N.weights\n"
                             "ROUTE LP.size TO LQ.size\n"
                             "\n\n");
}

TEST_F(VRMLWriteTest, AbstractTypeProcInfoTabsAndSkips)
{
    TypeScope local("abstract");
    NodeType& light = local.declare("Light", "Node", {}, 2, {.abstract = true});
    local.declare("FastLight", "Light", {}, 2, {.defaultDescendantOf = "Light"});
    local.declare("Group", "Node", {{"children", ExposedFieldPartType, MFNodeType}});
    local.initAll();
    SmartPtr<Node> root = local.make("Group"), fast = local.make("FastLight");
    add(*root, *fast);

    std::string expected = std::string(header) + "Group {\n  children [\n    Light {\n    }\n  ]\n  }\n\n\n";
    EXPECT_EQ(write(*root), expected);
    VRMLWriteAction concrete;
    concrete.setWriteAbstract(false);
    EXPECT_NE(write(concrete, *root).find("    FastLight {\n"), std::string::npos);

    struct InfoProc : NodeProc {
        using NodeProc::NodeProc;
        std::string info() const override { return "busy"; }
    };
    fast->setProc(new InfoProc(*fast));
    VRMLWriteAction tabs;
    tabs.setUseTAB(true);
    tabs.setWriteProcInfo(true);
    EXPECT_EQ(write(tabs, *root),
              std::string(header) + "Group {\n\tchildren [\n\t\tLight {# Setup; busy\n\n\t\t}\n\t]\n\t}\n\n\n");

    // A skipped type leaves the list without nodes, which is then not written at all.
    VRMLWriteAction skipping;
    skipping.addSkipType(light);
    EXPECT_EQ(write(skipping, *root), std::string(header) + "Group {\n  }\n\n\n");
    root = nullptr;
    fast = nullptr;
}

TEST_F(VRMLWriteTest, FilesAndOptionsAfterReset)
{
    VRMLWriteAction writer;
    EXPECT_EQ(writer.paramMask(), 0x86u);
    EXPECT_TRUE(writer.writeAbstract());
    writer.setUseTAB(true);
    writer.reset();
    EXPECT_EQ(writer.paramMask(), 0x86u);

    LogCapture log;
    writer.beginFile("");
    EXPECT_TRUE(log.contains("Invalid empty >fileName< in WriteAction::begin()\n", LOG_FATAL));
    EXPECT_EQ(writer.stream(), nullptr);
    writer.beginFile("/nonexistent-dir/x.wrl");
    EXPECT_TRUE(log.contains("Cannot create ofstream for >/nonexistent-dir/x.wrl<\n", LOG_FATAL));
    writer.resetStream();

    SmartPtr<Node> root = scope.make("Group", "Root");
    std::string    path = ::testing::TempDir() + "vrml-write-test.wrl";
    ASSERT_TRUE(writer.writeFile(*root, path));
    std::ifstream      in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    EXPECT_EQ(text.str(), std::string(header) + "DEF Root Group {\n  }\n\n\n");
    std::remove(path.c_str());
}

TEST(WriteActionStatics, NormalizeMimetype)
{
    const struct {
        const char* in;
        const char* out;
    } cases[] = {{" Text/HTML ; charset=utf-8", "text/html"}, {";text/html", ""}, {" \t\r\n", ""},
                 {"MODEL/VRML", "model/vrml"},              {"", ""}};
    for (const auto& c : cases)
        EXPECT_EQ(WriteAction::normalizeMimetype(c.in), c.out) << c.in;
}

} // namespace
