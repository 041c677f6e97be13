// Whole fields set from fields of other types: element walk, cardinality, refusals and the
// change processing that only a successful conversion triggers.
#include "base/ConvertParam.h"
#include "base/MFAny.h"
#include "base/MFColor.h"
#include "base/MFFloat.h"
#include "base/MFNode.h"
#include "base/MFPlane.h"
#include "base/MFString.h"
#include "base/MFVec2f.h"
#include "base/MFVec3d.h"
#include "base/MFVec3f.h"
#include "base/SFAny.h"
#include "base/SFDouble.h"
#include "base/SFFloat.h"
#include "base/SFInt32.h"
#include "base/SFNode.h"
#include "base/SFPlane.h"
#include "base/SFString.h"
#include "base/SFTime.h"
#include "base/SFVec3f.h"
#include "base/SFVec4f.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestNodes.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct CountChanges : Field::Listener {
    int  calls = 0;
    void fieldChanged(const double&, Field&) override { ++calls; }
};

struct FieldAssignTest : ::testing::Test {
    TestNodeType   type{"AssignNode",
                      {{"number", ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess},
                       {"count", ExposedFieldPartType, SFInt32Type}}};
    SmartPtr<Node> node = type.make();
};

} // namespace

TEST_F(FieldAssignTest, SingleValuesConvert)
{
    SFFloat from(*node, 2.75f);
    SFInt32 to(*node);
    EXPECT_TRUE(to.setValueByField(0.0, from));
    EXPECT_EQ(to.value(), 2);

    // Equal storage copies as it is.
    SFDouble d(*node, 1234567890.123456);
    SFTime t(*node);
    EXPECT_TRUE(t.setValueByField(0.0, d));
    EXPECT_EQ(t.value(), 1234567890.123456);

    SFString text(*node);
    EXPECT_TRUE(text.setValueByField(0.0, SFVec3f(*node, Vec3f(1, 2, 3))));
    EXPECT_EQ(text.value(), "1 2 3");
}

TEST_F(FieldAssignTest, ParametersReachTheElements)
{
    SFTime seconds(*node, 1.2345);
    SFInt32 millis(*node);
    ConvertParam toMillis(0, 1000.0, ConvertParam::Nearest);
    EXPECT_TRUE(millis.setValueByField(0.0, seconds, &toMillis));
    EXPECT_EQ(millis.value(), 1235);

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

    MFFloat none(*node);
    one.setValue(9);
    EXPECT_FALSE(one.setValueByField(0.0, none));
    EXPECT_EQ(one.value(), 9);

    MFVec3d single(*node);
    single.value() = {Vec3d(7), Vec3d(8)};
    EXPECT_TRUE(single.setValueByField(0.0, SFVec3f(*node, Vec3f(1, 2, 3))));
    ASSERT_EQ(single.size(), 1u);
    EXPECT_EQ(single.elem(0), Vec3d(1, 2, 3));

    MFVec3f points(*node);
    points.value() = {Vec3f(1, 2, 3), Vec3f(4, 5, 6)};
    MFVec2f flat(*node);
    flat.value().assign(5, Vec2f(9));
    EXPECT_TRUE(flat.setValueByField(0.0, points));
    EXPECT_EQ(flat.value(), (std::vector<Vec2f>{Vec2f(1, 2), Vec2f(4, 5)}));

    // List storage on the target side.
    MFString texts(*node);
    texts.value() = {"old"};
    EXPECT_TRUE(texts.setValueByField(0.0, points));
    EXPECT_EQ(texts.value(), (std::list<std::string>{"1 2 3", "4 5 6"}));
    SFString first(*node);
    EXPECT_TRUE(first.setValueByField(0.0, texts));
    EXPECT_EQ(first.value(), "1 2 3");

    // An empty source empties a multiple target.
    EXPECT_TRUE(flat.setValueByField(0.0, MFVec3f(*node)));
    EXPECT_TRUE(flat.empty());
}

TEST_F(FieldAssignTest, RefusedPairChangesNothing)
{
    node->setStateUnchecked(Live);
    auto& number = static_cast<SFFloat&>(*node->findField(0u));
    number.setValue(4.5f);
    CountChanges listener;
    number.addListener(&listener);
    const PartMask before = node->changedMask();

    LogCapture log;
    SFString text(*node, std::string("12"));
    EXPECT_FALSE(number.setValueByField(1.0, text));
    EXPECT_EQ(number.value(), 4.5f);
    EXPECT_EQ(log.count("String to Float conversion NI!\n", LOG_WARNING, "OpenSG"), 1);

    MFColor colours(*node);
    colours.value() = {Color3f(1, 0, 0)};
    EXPECT_FALSE(number.setValueByField(1.0, colours));
    EXPECT_EQ(log.count("Color3f to Float conversion NI!\n", LOG_WARNING, "OpenSG"), 1);
    EXPECT_EQ(number.value(), 4.5f);
    EXPECT_EQ(listener.calls, 0);
    EXPECT_TRUE(node->changedMask() == before);

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
    SFFloat number(*node, 1.0f);
    SFPlane plane(*node, Plane(0, 1, 0, 2));
    EXPECT_FALSE(number.setValueByField(0.0, plane));
    EXPECT_EQ(log.count("SFPlane to SFFloat not implementet\n"), 1);
    SFVec4f vector(*node);
    EXPECT_FALSE(vector.setValueByField(0.0, plane));
    EXPECT_EQ(log.count("SFPlane to SFVec4f not implementet\n"), 1);

    SFAny any(*node);
    MFAny anys(*node);
    EXPECT_FALSE(anys.setValueByField(0.0, any));
    EXPECT_EQ(log.count("SFAny to MFAny not implementet\n"), 1);

    // The same kind in another cardinality is still a copy.
    MFPlane planes(*node);
    EXPECT_TRUE(planes.setValueByField(0.0, plane));
    ASSERT_EQ(planes.size(), 1u);
    EXPECT_EQ(planes.elem(0), Plane(0, 1, 0, 2));
    EXPECT_EQ(number.value(), 1.0f);
}

TEST_F(FieldAssignTest, NodeFieldsShareChildren)
{
    TestNodeType childType{"AssignChild", {}};
    SmartPtr<Node> a = childType.make(), b = childType.make();
    MFNode children(*node);
    children.addChild(a.get());
    children.addChild(b.get());

    SFNode one(*node);
    Field& oneField = one;  // the node classes hide the timed setter
    EXPECT_TRUE(oneField.setValueByField(0.0, children));
    EXPECT_EQ(one.node(), a.get());

    MFNode copy(*node);
    copy.addChild(b.get());
    EXPECT_TRUE(static_cast<Field&>(copy).setValueByField(0.0, one));
    ASSERT_EQ(copy.size(), 1u);
    EXPECT_EQ(copy.childNode(0), a.get());

    MFNode empty(*node);
    EXPECT_FALSE(oneField.setValueByField(0.0, empty));
    EXPECT_EQ(one.node(), a.get());

    LogCapture log;
    SFFloat number(*node);
    EXPECT_FALSE(number.setValueByField(0.0, one));
    EXPECT_EQ(log.count("SFNode to SFFloat not implementet\n"), 1);
}
