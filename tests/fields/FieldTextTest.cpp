#include "base/MFFloat.h"
#include "base/MFInt32.h"
#include "base/MFString.h"
#include "base/MFVec3f.h"
#include "base/SFBool.h"
#include "base/SFFloat.h"
#include "base/SFTime.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestNodes.h"

#include <gtest/gtest.h>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct FieldTextTest : ::testing::Test {
    TestNodeType   type{"TextNode", {}};
    SmartPtr<Node> node = type.make();
};

template <class F>
std::string roundText(Node& node, const char* text)
{
    F field(node);
    field.setValueByStr(0.0, text);
    return field.strValue();
}

} // namespace

TEST_F(FieldTextTest, NumbersFollowTheCConversions)
{
    SFFloat f(*node);
    f.setValueByStr(0.0, "  3.25abc");
    EXPECT_EQ(f.value(), 3.25f);
    EXPECT_EQ(f.strValue(), "3.25");
    f.setValueByStr(0.0, "abc");
    EXPECT_EQ(f.value(), 0.0f);

    EXPECT_EQ(roundText<SFTime>(*node, "1234567890.123456"), "1234567890.123456");
    EXPECT_EQ(roundText<MFFloat>(*node, "1, 2, 3 4"), "1.000000, 2.000000, 3.000000, 4.000000");
    EXPECT_EQ(roundText<MFInt32>(*node, ""), "");
    EXPECT_EQ(roundText<MFVec3f>(*node, "1 2 3, 4 5 6"), "1.000000 2.000000 3.000000, 4.000000 5.000000 6.000000");
}

TEST_F(FieldTextTest, BooleansByFirstCharacter)
{
    for (auto [text, expected] : std::vector<std::pair<const char*, bool>>{
             {"yes", true}, {"no", false}, {"-0.0", false}, {"0.5", true}, {"TRUE", true}, {"x", false},
             {"", false}, {"nan", false}, {"1", true}}) {
        SFBool b(*node);
        b.setValueByStr(0.0, text);
        EXPECT_EQ(b.value(), expected) << text;
    }
}

TEST_F(FieldTextTest, QuotedStrings)
{
    MFString s(*node);
    s.setValueByStr(0.0, "\"a\\\"b\" 'c'");
    ASSERT_EQ(s.size(), 2u);
    EXPECT_EQ(s.elem(0), "a\"b");
    EXPECT_EQ(s.elem(1), "c");
    EXPECT_EQ(s.strValue(), "\"a\\\"b\" \"c\"");
    s.setValueByStr(0.0, "hello world");
    ASSERT_EQ(s.size(), 1u);
    EXPECT_EQ(s.elem(0), "hello world");
}
