// The component graph writer: exact bytes, and documents that a real XML parser accepts.
#include "base/GXDWriteAction.h"
#include "base/MFNode.h"
#include "base/Route.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct GXDWriteTest : ::testing::Test {
    TypeScope scope;
    NodeType& group = scope.declare("Group", "Node", {{"children", ExposedFieldPartType, MFNodeType}});
    NodeType& leaf = scope.declare("Leaf", "Node",
                                   {{"value", FieldPartType, SFFloatType},
                                    {"in", EventInPartType, SFInt32Type},
                                    {"out", EventOutPartType, SFTimeType}});

    void SetUp() override { scope.initAll(); }

    static std::string write(Node& root)
    {
        GXDWriteAction     writer;
        std::ostringstream out;
        EXPECT_TRUE(writer.writeStream(root, out));
        return out.str();
    }

    // xmllint's verdict on the document: 0 when it is well-formed.
    static int xmllint(const std::string& document)
    {
        std::string path = ::testing::TempDir() + "gxd-write-test.xml";
        std::ofstream(path, std::ios::binary) << document;
        int status = std::system(("xmllint --noout '" + path + "' 2>/dev/null").c_str());
        std::remove(path.c_str());
        return status;
    }
};

// The two fields of every node: logFeature (MFString) and metadata (SFNode), both inputOutput.
const char* const baseSlots =
    "          <Slot name=\"parent_NodeLink\" majorType=\"1\" isInSlot=\"true\"/>\n"
    "          <Slot name=\"set_logFeature\" majorType=\"2\" minorType=\"28\" isInSlot=\"true\"/>\n"
    "          <Slot name=\"logFeature_changed\" majorType=\"2\" minorType=\"28\" isOutSlot=\"true\"/>\n"
    "          <Slot name=\"set_metadata\" majorType=\"2\" minorType=\"23\" isInSlot=\"true\"/>\n"
    "          <Slot name=\"metadata_changed\" majorType=\"2\" minorType=\"23\" isOutSlot=\"true\"/>\n"
    "          <Slot name=\"metadata_NodeLink\" majorType=\"1\" isOutSlot=\"true\"/>\n";
const char* const groupSlots =
    "          <Slot name=\"set_children\" majorType=\"2\" minorType=\"24\" isInSlot=\"true\"/>\n"
    "          <Slot name=\"children_changed\" majorType=\"2\" minorType=\"24\" isOutSlot=\"true\"/>\n"
    "          <Slot name=\"children_NodeLink\" majorType=\"1\" isOutSlot=\"true\"/>\n";
const char* const leafSlots =
    "          <Slot name=\"in\" majorType=\"2\" minorType=\"13\" isInSlot=\"true\"/>\n"
    "          <Slot name=\"out\" majorType=\"2\" minorType=\"29\" isOutSlot=\"true\"/>\n";

TEST_F(GXDWriteTest, EmptyScene)
{
    GXDWriteAction     writer;
    std::ostringstream out;
    EXPECT_TRUE(writer.writeStream(std::vector<Node*>{}, out));
    EXPECT_EQ(out.str(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Graph>\n\n\n\n\n</Graph>\n");
    EXPECT_EQ(xmllint(out.str()), 0);
}

TEST_F(GXDWriteTest, SharedNodeIsOneComponentWithTwoLinkEdgesAndRoutesFollow)
{
    SmartPtr<Node> root = scope.make("Group", "Root"), inner = scope.make("Group", "Inner"),
                   shared = scope.make("Leaf", "L&<\"x");
    ASSERT_NE(root->addChild(shared.get()), nullptr);
    ASSERT_NE(root->addChild(inner.get()), nullptr);
    ASSERT_NE(inner->addChild(shared.get()), nullptr);
    ASSERT_NE(Route::create(*shared->findField("out"), *shared->findField("in"), Route::DEFAULT, true), nullptr);

    std::string text = write(*root);
    std::string expected = std::string("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Graph>\n") +
                           "<Component name=\"Root\" type=\"Group\" >\n" + baseSlots + groupSlots + "</Component>\n" +
                           "<Component name=\"L&amp;&lt;&quot;x\" type=\"Leaf\" >\n" + baseSlots + leafSlots +
                           "</Component>\n" + "<Component name=\"Inner\" type=\"Group\" >\n" + baseSlots + groupSlots +
                           "</Component>\n" + "\n\n" +
                           "<Edge outComponent=\"Root\" outSlot=\"children_NodeLink\"\n"
                           "       inComponent=\"L&amp;&lt;&quot;x\" inSlot=\"parent_NodeLink\"/>\n"
                           "<Edge outComponent=\"Inner\" outSlot=\"children_NodeLink\"\n"
                           "       inComponent=\"L&amp;&lt;&quot;x\" inSlot=\"parent_NodeLink\"/>\n"
                           "<Edge outComponent=\"Root\" outSlot=\"children_NodeLink\"\n"
                           "       inComponent=\"Inner\" inSlot=\"parent_NodeLink\"/>\n"
                           "\n"
                           "<Edge outComponent=\"L&amp;&lt;&quot;x\" outSlot=\"out\"\n"
                           "       inComponent=\"L&amp;&lt;&quot;x\" inSlot=\"in\"/>\n"
                           "\n</Graph>\n";
    EXPECT_EQ(text, expected);
    EXPECT_EQ(xmllint(text), 0);
}

TEST_F(GXDWriteTest, ParentOutsideTheSubgraphGivesNoEdge)
{
    SmartPtr<Node> root = scope.make("Group", "Root"), inner = scope.make("Group"), leafNode = scope.make("Leaf", "L");
    ASSERT_NE(root->addChild(inner.get()), nullptr);
    ASSERT_NE(inner->addChild(leafNode.get()), nullptr);
    std::string text = write(*inner);
    std::string id = inner->getIDStr();
    EXPECT_EQ(text.find("inComponent=\"" + id + "\""), std::string::npos) << text;
    EXPECT_NE(text.find("<Edge outComponent=\"" + id + "\" outSlot=\"children_NodeLink\"\n"
                        "       inComponent=\"L\" inSlot=\"parent_NodeLink\"/>\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(xmllint(text), 0);
}

} // namespace
