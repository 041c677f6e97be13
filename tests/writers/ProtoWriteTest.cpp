// PROTO and EXTERNPROTO declarations as the classic VRML writer writes them.
#include "base/VRMLWriteAction.h"
#include "tests/protos/ProtoKit.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct ProtoWriteTest : ProtoKit {
    std::string write(Node& root, bool resolve = false)
    {
        VRMLWriteAction writer;
        writer.setResolveProto(resolve);
        std::ostringstream out;
        EXPECT_TRUE(writer.writeStream(root, out));
        return out.str();
    }
};

TEST_F(ProtoWriteTest, DeclarationsWithInterfaceAndISLinksComeBeforeTheFirstNode)
{
    declareBox(*scene);
    {
        LogCapture quiet;
        ProtoDeclaration* far = ProtoDeclaration::declareExtern(*scene, "Far", {"lib/far.wrl#FarAway"});
        far->addField("inputOutput", "SFFloat", "speed");
        far->addField("inputOnly", "SFInt32", "kick");
    }
    SmartPtr<Node> root = make(*scene, "Group", "Root", false);
    SmartPtr<Node> box = make(*scene, "Box", "B1", false);
    ASSERT_NE(root->addChild(box.get()), nullptr);
    std::string text = write(*root);
    std::string expected = "#VRML V2.0 utf8\n\n"
                           "# 2 proto declaration\n"
                           "PROTO Box [\n"
                           "  eventIn SFFloat setIn\n"
                           "  eventOut SFFloat changed\n"
                           "  exposedField SFFloat both 1.5\n"
                           "  field SFInt32 size 7\n"
                           "  field SFNode extra DEF X Value {\n"
                           "    f 0\n"
                           "    init 0\n"
                           "    count 0\n"
                           "  }\n"
                           "] {\n"
                           "  DEF V Value {\n"
                           "    init 0\n"
                           "        f IS both\n"
                           "    in IS setIn\n"
                           "    out IS changed\n"
                           "    count IS size\n"
                           "    child IS extra\n"
                           "  }\n"
                           "  DEF G Group {\n"
                           "      }\n"
                           "}\n\n"
                           "EXTERNPROTO Far [\n"
                           "  exposedField SFFloat speed\n"
                           "  eventIn SFInt32 kick\n"
                           "] \"lib/far.wrl#FarAway\"\n\n"
                           "DEF Root Group {\n"
                           "  children [\n"
                           "    DEF B1 Box {\n"
                           "      extra DEF X Value {\n"
                           "        f 0\n"
                           "        init 0\n"
                           "        count 0\n"
                           "      }\n"
                           "    }\n"
                           "  ]\n"
                           "  }\n"
                           "\n\n";
    EXPECT_EQ(text, expected);

    // Resolved instances are written as what they stand for, and no declaration at all.
    EXPECT_EQ(write(*root, true).find("PROTO"), std::string::npos);
}

TEST_F(ProtoWriteTest, NestedPrototypesFirstAndBrokenISLinksReported)
{
    LogCapture        log;
    ProtoDeclaration* outer = ProtoDeclaration::declare(*scene, "Outer");
    ProtoDeclaration* inner = outer->declareNested("Inner");
    {
        LogCapture quiet;
        inner->createBodyNode("Value", "IV");
        outer->createBodyNode("Inner", "I");
        outer->addField("inputOutput", "SFFloat", "level", "2");
        outer->createBodyNode("Value", "OV");
        ASSERT_TRUE(outer->addIsLink("level", "OV", "f"));
    }
    // The body node goes away by name: the link is left out and reported.
    outer->body().unregNode(*outer->body().findNode("OV"));
    SmartPtr<Node> root = make(*scene, "Outer", nullptr, false);
    std::string text = write(*root);
    EXPECT_EQ(log.count("Invalid IS link in proto desc\n"), 1);
    EXPECT_NE(text.find("# 1 proto declaration\nPROTO Outer [\n  exposedField SFFloat level 2\n] {\n"
                        "  # 1 proto declaration\n  PROTO Inner [\n  ] {\n    DEF IV Value {\n"),
              std::string::npos)
        << text;
}

} // namespace
