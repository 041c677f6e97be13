// Whole fields set from fields of other types: element walk, cardinality, refusals and the
// change processing that only a successful conversion triggers.
#include "tests/fields/FieldKit.h"

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct CountChanges : Field::Listener {
    int  calls = 0;
    void fieldChanged(const double&, Field&) override { ++calls; }
};

struct FieldAssignTest : ::testing::Test {
    TestNodeType   type{"AssignNode", {{"number", ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess}}};
    SmartPtr<Node> node = type.make();
};

} // namespace

TEST_F(FieldAssignTest, SingleValuesAndParameters)
{
    SFInt32 to(*node);
    EXPECT_TRUE(to.setValueByField(0.0, SFFloat(*node, 2.75f)));
    EXPECT_EQ(to.value(), 2);
    // Equal storage copies as it is.
    SFTime t(*node);
    EXPECT_TRUE(t.setValueByField(0.0, SFDouble(*node, 1234567890.123456)));
    EXPECT_EQ(t.value(), 1234567890.123456);

    ConvertParam toMillis(0, 1000.0, ConvertParam::Nearest);
    EXPECT_TRUE(to.setValueByField(0.0, SFTime(*node, 1.2345), &toMillis));
    EXPECT_EQ(to.value(), 1235);
    SFString text(*node);
    ConvertParam short3(3);
    EXPECT_TRUE(text.setValueByField(0.0, SFDouble(*node, 3.14159), &short3));
    EXPECT_EQ(text.value(), "3.14");
    EXPECT_TRUE(text.setValueByField(0.0, SFDouble(*node, 3.14159)));
    EXPECT_EQ(text.value(), "3.14159");
    EXPECT_EQ(ConvertParam(-4).precision(), 0);
    EXPECT_EQ(ConvertParam(99).precision(), ConvertParam::maxPrecision);
}

TEST_F(FieldAssignTest, Cardinality)
{
    MFFloat many(*node);
    many.value() = {1.5f, 2.0f, 3.0f};
    SFInt32 one(*node);
    EXPECT_TRUE(one.setValueByField(0.0, many));
    EXPECT_EQ(one.value(), 1);
    EXPECT_FALSE(one.setValueByField(0.0, MFFloat(*node)));
    EXPECT_EQ(one.value(), 1);

    MFVec3d single(*node);
    single.value() = {Vec3d(7), Vec3d(8)};
    EXPECT_TRUE(single.setValueByField(0.0, SFVec3f(*node, Vec3f(1, 2, 3))));
    EXPECT_EQ(single.value(), std::vector<Vec3d>{Vec3d(1, 2, 3)});

    MFVec3f points(*node);
    points.value() = {Vec3f(1, 2, 3), Vec3f(4, 5, 6)};
    MFVec2f flat(*node);
    flat.value().assign(5, Vec2f(9));
    EXPECT_TRUE(flat.setValueByField(0.0, points));
    EXPECT_EQ(flat.value(), (std::vector<Vec2f>{Vec2f(1, 2), Vec2f(4, 5)}));
    // An empty source empties a multiple target.
    EXPECT_TRUE(flat.setValueByField(0.0, MFVec3f(*node)));
    EXPECT_TRUE(flat.empty());

    // List storage on the target side.
    MFString texts(*node);
    texts.value() = {"old"};
    EXPECT_TRUE(texts.setValueByField(0.0, points));
    EXPECT_EQ(texts.value(), (std::list<std::string>{"1 2 3", "4 5 6"}));
    SFString first(*node);
    EXPECT_TRUE(first.setValueByField(0.0, texts));
    EXPECT_EQ(first.value(), "1 2 3");
}

TEST_F(FieldAssignTest, RefusedPairChangesNothing)
{
    node->setStateUnchecked(Live);
    auto& number = static_cast<SFFloat&>(*node->findField(0u));
    number.setValue(4.5f);
    CountChanges listener;
    number.addListener(&listener);
    LogCapture log;

    EXPECT_FALSE(number.setValueByField(1.0, SFString(*node, std::string("12"))));
    MFColor colours(*node);
    colours.value() = {Color3f(1, 0, 0)};
    EXPECT_FALSE(number.setValueByField(1.0, colours));
    EXPECT_EQ(log.count("String to Float conversion NI!\n", LOG_WARNING, "OpenSG"), 1);
    EXPECT_EQ(log.count("Color3f to Float conversion NI!\n", LOG_WARNING, "OpenSG"), 1);
    EXPECT_EQ(number.value(), 4.5f);
    EXPECT_EQ(listener.calls, 0);
    EXPECT_TRUE(node->changedMask().empty());

    // A pair that converts does run the change processing.
    EXPECT_TRUE(number.setValueByField(1.0, SFInt32(*node, 3)));
    EXPECT_EQ(number.value(), 3.0f);
    EXPECT_EQ(listener.calls, 1);
    EXPECT_TRUE(number.changed());
    number.removeListener(&listener);
    node->setStateUnchecked(Creation);
}

TEST_F(FieldAssignTest, KindsOutsideTheConversions)
{
    LogCapture log;
    SFFloat    number(*node, 1.0f);
    SFPlane    plane(*node, Plane(0, 1, 0, 2));
    SFVec4f    vector(*node);
    MFAny      anys(*node);
    EXPECT_FALSE(number.setValueByField(0.0, plane));
    EXPECT_FALSE(vector.setValueByField(0.0, plane));
    EXPECT_FALSE(anys.setValueByField(0.0, SFAny(*node)));
    for (const char* text : {"SFPlane to SFFloat", "SFPlane to SFVec4f", "SFAny to MFAny"})
        EXPECT_EQ(log.count(std::string(text) + " not implementet\n"), 1) << text;
    EXPECT_EQ(number.value(), 1.0f);

    // The same kind in another cardinality is still a copy.
    MFPlane planes(*node);
    EXPECT_TRUE(planes.setValueByField(0.0, plane));
    EXPECT_EQ(planes.value(), std::vector<Plane>{Plane(0, 1, 0, 2)});
}

TEST_F(FieldAssignTest, NodeFieldsShareChildren)
{
    TestNodeType   childType{"AssignChild", {}};
    SmartPtr<Node> a = childType.make(), b = childType.make();
    MFNode         children(*node), copy(*node);
    children.addChild(a.get());
    children.addChild(b.get());

    SFNode one(*node);
    Field& oneField = one;  // the node classes hide the timed setter
    EXPECT_TRUE(oneField.setValueByField(0.0, children));
    EXPECT_EQ(one.node(), a.get());
    copy.addChild(b.get());
    EXPECT_TRUE(static_cast<Field&>(copy).setValueByField(0.0, one));
    ASSERT_EQ(copy.size(), 1u);
    EXPECT_EQ(copy.childNode(0), a.get());
    EXPECT_FALSE(oneField.setValueByField(0.0, MFNode(*node)));
    EXPECT_EQ(one.node(), a.get());

    LogCapture log;
    SFFloat    number(*node);
    EXPECT_FALSE(number.setValueByField(0.0, one));
    EXPECT_EQ(log.count("SFNode to SFFloat not implementet\n"), 1);
}
