#include "base/MFBool.h"
#include "base/MFColor.h"
#include "base/MFDouble.h"
#include "base/MFFloat.h"
#include "base/MFImage.h"
#include "base/MFInt32.h"
#include "base/MFMatrix3f.h"
#include "base/MFPlane.h"
#include "base/MFQubit.h"
#include "base/MFRotation.h"
#include "base/MFSound.h"
#include "base/MFString.h"
#include "base/MFTime.h"
#include "base/MFVec2f.h"
#include "base/MFVec3f.h"
#include "base/SFBool.h"
#include "base/SFColor.h"
#include "base/SFColorRGBA.h"
#include "base/SFDouble.h"
#include "base/SFFloat.h"
#include "base/SFImage.h"
#include "base/SFInt32.h"
#include "base/SFMatrix3f.h"
#include "base/SFPlane.h"
#include "base/SFQubit.h"
#include "base/SFRotation.h"
#include "base/SFString.h"
#include "base/SFTime.h"
#include "base/SFVec2d.h"
#include "base/SFVec2f.h"
#include "base/SFVec3d.h"
#include "base/SFVec3f.h"
#include "base/SFVec4f.h"
#include "base/XFAny.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TestNodes.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct FieldTextCasesTest : ::testing::Test {
    TestNodeType   type{"CaseNode", {{"names", FieldPartType, MFStringType}}};
    SmartPtr<Node> node = type.make();
};

template <class F>
std::vector<typename F::Element> items(const F& f)
{
    return {f.begin(), f.end()};
}

template <class F, class V>
std::string sfText(Node& node, const V& value)
{
    F f(node, value);
    return f.strValue();
}

template <class F>
F read(Node& node, const char* text)
{
    F f(node);
    f.setValueByStr(0.0, text);
    return f;
}

} // namespace

TEST_F(FieldTextCasesTest, SingleValueNumberFormats)
{
    EXPECT_EQ(sfText<SFFloat>(*node, 1234567.0f), "1.23457e+06");
    EXPECT_EQ(sfText<SFFloat>(*node, 1e-5f), "1e-05");
    EXPECT_EQ(sfText<SFFloat>(*node, 0.0001f), "0.0001");
    EXPECT_EQ(sfText<SFFloat>(*node, -0.5f), "-0.5");
    EXPECT_EQ(sfText<SFFloat>(*node, 100000.0f), "100000");
    EXPECT_EQ(sfText<SFFloat>(*node, 0.0f), "0");
    EXPECT_EQ(sfText<SFFloat>(*node, -INFINITY), "-inf");
    EXPECT_EQ(sfText<SFInt32>(*node, -2147483647 - 1), "-2147483648");
    EXPECT_EQ(sfText<SFDouble>(*node, 0.1), "0.1");
    EXPECT_EQ(sfText<SFDouble>(*node, 1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(sfText<SFDouble>(*node, 123456789012345678.0), "1.234567890123457e+17");
    EXPECT_EQ(sfText<SFTime>(*node, 1e21), "1e+21");
    EXPECT_EQ(sfText<SFTime>(*node, 0.5), "0.5");
}

TEST_F(FieldTextCasesTest, SingleValueVectorsUseSixDigitsEvenForDoubles)
{
    EXPECT_EQ(sfText<SFVec2f>(*node, Vec2f(0.5f, -2.0f)), "0.5 -2");
    EXPECT_EQ(sfText<SFVec2d>(*node, Vec2d(1.0 / 3.0, 2.0)), "0.333333 2");
    EXPECT_EQ(sfText<SFVec3d>(*node, Vec3d(1e7, 0.25, -3.0)), "1e+07 0.25 -3");
    EXPECT_EQ(sfText<SFVec4f>(*node, Vec4f(1, 2, 3, 4)), "1 2 3 4");
    EXPECT_EQ(sfText<SFColor>(*node, Color3f(0.2f, 0.4f, 0.6f)), "0.2 0.4 0.6");
    EXPECT_EQ(sfText<SFColorRGBA>(*node, Color4f(1, 0.5f, 0, 0.25f)), "1 0.5 0 0.25");
    EXPECT_EQ(sfText<SFPlane>(*node, Plane(0, 1, 0, -2.5f)), "0 1 0 -2.5");
    EXPECT_EQ(sfText<SFRotation>(*node, Rotation()), "0 0 1 0");
    EXPECT_EQ(sfText<SFRotation>(*node, Rotation(1, 0, 0, 3.14159265f)), "1 0 0 3.14159");

    // Column by column.
    Matrix3f m(1.0f);
    m[1][0] = 5.0f;
    EXPECT_EQ(sfText<SFMatrix3f>(*node, m), "1 0 0 5 1 0 0 0 1");
    SFMatrix3f mf = read<SFMatrix3f>(*node, "1 0 0 5 1 0 0 0 1");
    EXPECT_EQ(mf.value(), m);
}

TEST_F(FieldTextCasesTest, RotationSetAsQuaternionWritesAxisAndAngle)
{
    SFRotation r(*node);
    r.value().setQuaternion(glm::angleAxis(1.5707964f, glm::vec3(0.0f, 1.0f, 0.0f)));
    EXPECT_EQ(r.strValue(), "0 1 0 1.5708");
    MFRotation mr(*node);
    mr.addValue(r.value());
    EXPECT_EQ(mr.strValue(), "0.000000 1.000000 0.000000 1.570796");
}

TEST_F(FieldTextCasesTest, MultiValueNumbersAreFixedWithCommaBlank)
{
    MFFloat f(*node);
    EXPECT_EQ(f.strValue(), "");
    f.addValue(1.5f);
    EXPECT_EQ(f.strValue(), "1.500000");
    f.addValue(-0.25f);
    f.addValue(1e-7f);
    EXPECT_EQ(f.strValue(), "1.500000, -0.250000, 0.000000");

    MFDouble d(*node);
    d.addValue(1e20);
    EXPECT_EQ(d.strValue(), "100000000000000000000.000000");
    MFTime t(*node);
    t.addValue(1234567890.123456);
    EXPECT_EQ(t.strValue(), "1234567890.123456");
    t.addValue(0.1234567);
    EXPECT_EQ(t.strValue(), "1234567890.123456, 0.123457");

    MFInt32 i(*node);
    for (int x : {1, -2, 2147483647})
        i.addValue(x);
    EXPECT_EQ(i.strValue(), "1, -2, 2147483647");

    MFVec2f v(*node);
    v.addValue(Vec2f(1, 2));
    v.addValue(Vec2f(3, 4));
    EXPECT_EQ(v.strValue(), "1.000000 2.000000, 3.000000 4.000000");
    MFColor c(*node);
    c.addValue(Color3f(1, 0, 0.5f));
    EXPECT_EQ(c.strValue(), "1.000000 0.000000 0.500000");
    MFRotation r(*node);
    r.addValue(Rotation());
    EXPECT_EQ(r.strValue(), "0.000000 0.000000 1.000000 0.000000");
    MFPlane p(*node);
    p.addValue(Plane(0, 0, 1, 2));
    p.addValue(Plane(1, 0, 0, -1));
    EXPECT_EQ(p.strValue(), "0.000000 0.000000 1.000000 2.000000, 1.000000 0.000000 0.000000 -1.000000");
    MFMatrix3f m(*node);
    m.addValue(Matrix3f(1.0f));
    EXPECT_EQ(m.strValue(),
              "1.000000 0.000000 0.000000 0.000000 1.000000 0.000000 0.000000 0.000000 1.000000");
}

TEST_F(FieldTextCasesTest, ReadingNumbersLikeTheCConversions)
{
    EXPECT_EQ(read<SFFloat>(*node, "1e3").value(), 1000.0f);
    EXPECT_EQ(read<SFFloat>(*node, "-.5").value(), -0.5f);
    EXPECT_EQ(read<SFFloat>(*node, "0x10").value(), 16.0f);
    EXPECT_EQ(read<SFFloat>(*node, "1,5").value(), 1.0f);
    EXPECT_EQ(read<SFFloat>(*node, " \t\n 2").value(), 2.0f);
    EXPECT_EQ(read<SFFloat>(*node, "+").value(), 0.0f);
    EXPECT_EQ(read<SFFloat>(*node, nullptr).value(), 0.0f);
    EXPECT_EQ(read<SFFloat>(*node, "1e39").value(), INFINITY);
    EXPECT_EQ(read<SFFloat>(*node, "-1e39").value(), -INFINITY);
    EXPECT_EQ(read<SFFloat>(*node, "3.4028235e38").value(), FLT_MAX);
    EXPECT_TRUE(std::isnan(read<SFFloat>(*node, "nan").value()));
    EXPECT_EQ(read<SFInt32>(*node, "  -12xyz").value(), -12);
    EXPECT_EQ(read<SFInt32>(*node, "3.9").value(), 3);
    EXPECT_EQ(read<SFInt32>(*node, "0x10").value(), 0);
    EXPECT_EQ(read<SFInt32>(*node, "+7").value(), 7);
    EXPECT_EQ(read<SFDouble>(*node, "1e400").value(), INFINITY);
    EXPECT_EQ(read<SFDouble>(*node, "4.9e-324").value(), 4.9e-324);
    EXPECT_EQ(read<SFTime>(*node, "1234567890.123456").value(), 1234567890.123456);

    EXPECT_EQ(read<SFVec3f>(*node, "1, 2 ,3").value(), Vec3f(1, 2, 3));
    EXPECT_EQ(read<SFVec3f>(*node, "1 2").value(), Vec3f(1, 2, 0));
    SFVec3f v(*node, Vec3f(7, 7, 7));
    v.setValueByStr(0.0, "");
    EXPECT_EQ(v.value(), Vec3f(0, 0, 0));
}

TEST_F(FieldTextCasesTest, MultiValueReadingSplitsAtBlanksAndCommas)
{
    // The semicolon is not a separator of whole values: "1;2" is one token.
    EXPECT_EQ(items(read<MFFloat>(*node, "1;2 3")), (std::vector<float>{1, 3}));
    EXPECT_EQ(items(read<MFInt32>(*node, "1,,2\t\r\n3 ,  4")), (std::vector<int>{1, 2, 3, 4}));
    EXPECT_EQ(items(read<MFInt32>(*node, "1 x 2")), (std::vector<int>{1, 0, 2}));
    EXPECT_EQ(items(read<MFDouble>(*node, " ,, ")), std::vector<double>{});
    EXPECT_EQ(items(read<MFTime>(*node, "0.5,1e3")), (std::vector<double>{0.5, 1000}));
    EXPECT_EQ(items(read<MFVec3f>(*node, "1 2 3, 4 5 6")), (std::vector<Vec3f>{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(items(read<MFBool>(*node, "TRUE false,1 0\tyes x")),
              (std::vector<bool>{true, false, true, false, true, false}));

    MFFloat f(*node);
    f.addValue(9.0f);
    f.setValueByStr(0.0, nullptr);
    EXPECT_TRUE(f.empty());
}

TEST_F(FieldTextCasesTest, BooleanWordsAndNumbers)
{
    EXPECT_EQ(sfText<SFBool>(*node, true), "TRUE");
    EXPECT_EQ(sfText<SFBool>(*node, false), "FALSE");
    for (auto [text, expected] : std::vector<std::pair<const char*, bool>>{
             {"true", true}, {"Yes", true}, {"y", true}, {"FALSE", false}, {"N", false}, {"0", false},
             {"0.0", false}, {".5", true}, {"-1", true}, {"-nan", true}, {"0x1", true}, {"+1", false},
             {" 1", false}, {"1abc", true}, {"-", false}, {".", false}}) {
        SFBool b(*node, !expected);
        b.setValueByStr(0.0, text);
        EXPECT_EQ(b.value(), expected) << text;
    }
    SFBool b(*node, true);
    b.setValueByStr(0.0, nullptr);
    EXPECT_FALSE(b.value());

    MFBool m(*node);
    m.addValue(true);
    m.addValue(false);
    EXPECT_EQ(m.strValue(), "TRUE, FALSE");
}

TEST_F(FieldTextCasesTest, StringsRawAsSingleQuotedAsMulti)
{
    const std::string raw = "a \"b\" \\c 'd'";
    EXPECT_EQ(sfText<SFString>(*node, raw), raw);
    EXPECT_EQ(read<SFString>(*node, raw.c_str()).value(), raw);
    EXPECT_EQ(read<SFString>(*node, nullptr).value(), "");

    MFString m(*node);
    m.addValue("a");
    m.addValue("b c");
    EXPECT_EQ(m.strValue(), "\"a\" \"b c\"");
    m.clear();
    m.addValue("x\\y");
    m.addValue("say \"hi\"");
    m.addValue("it's");
    m.addValue("");
    EXPECT_EQ(m.strValue(), "\"x\\\\y\" \"say \\\"hi\\\"\" \"it's\" \"\"");
}

TEST_F(FieldTextCasesTest, ReadingQuotedStrings)
{
    using V = std::vector<std::string>;
    EXPECT_EQ(items(read<MFString>(*node, "\"x\\\\y\" \"say \\\"hi\\\"\"")), (V{"x\\y", "say \"hi\""}));
    // A backslash before an ordinary character stays.
    EXPECT_EQ(items(read<MFString>(*node, "\"x\\ny\"")), V{"x\\ny"});
    // Only the opening quote closes the run.
    EXPECT_EQ(items(read<MFString>(*node, "'a\"b' \"c'd\"")), (V{"a\"b", "c'd"}));
    EXPECT_EQ(items(read<MFString>(*node, "'it\\'s'")), V{"it's"});
    // Characters outside quotes are skipped.
    EXPECT_EQ(items(read<MFString>(*node, "  \"a\"junk, \"b\" ")), (V{"a", "b"}));
    EXPECT_EQ(items(read<MFString>(*node, "\"unterminated")), V{"unterminated"});
    EXPECT_EQ(items(read<MFString>(*node, "\"\" \"\"")), (V{"", ""}));
    EXPECT_EQ(items(read<MFString>(*node, "hello world")), V{"hello world"});
    EXPECT_TRUE(read<MFString>(*node, nullptr).empty());
    // An empty text is an empty list, so an empty list reads back as it was written.
    EXPECT_TRUE(read<MFString>(*node, "").empty());
}

TEST_F(FieldTextCasesTest, ImagesQubitsAndValuelessFields)
{
    SFImage img(*node, Image(2, 1, 3, {0xFF0000u, 0u}));
    EXPECT_EQ(img.strValue(), "2 1 3 0xFF0000 0x0");
    SFImage back = read<SFImage>(*node, "2 1 3 0xFF0000 0x0");
    EXPECT_TRUE(back.equalValue(img));

    EXPECT_EQ(sfText<SFQubit>(*node, Qubit()), "UNSET");
    EXPECT_EQ(sfText<SFQubit>(*node, Qubit({0.5, 0.0}, {0.0, -1.0})), "0.5 0 0 -1");
    MFQubit mq(*node);
    mq.addValue(Qubit());
    mq.addValue(Qubit({0.5, 0.0}, {0.0, -1.0}));
    EXPECT_EQ(mq.strValue(), "UNSET, 0.5 0 0 -1");
    EXPECT_TRUE(read<MFQubit>(*node, "UNSET, 0.5 0 0 -1").equalValue(mq));

    XFAny any(*node);
    any.setValueByStr(0.0, "1 2 3");
    EXPECT_EQ(any.strValue(), "");
    EXPECT_EQ(any.addValueByStr("x", Field::Multi), nullptr);
}

TEST_F(FieldTextCasesTest, SoundListsAndImageListsHaveNoElementParser)
{
    LogCapture log;
    MFSound s(*node);
    s.addValue(PCMSound({1, 2}, 1, 8000));
    std::string out = "stale";
    EXPECT_EQ(s.getStrValue(out), "");
    EXPECT_EQ(out, "");
    EXPECT_EQ(log.count("Not impl. \n"), 1) << log.all();
    s.setValueByStr(0.0, "1 8000 2 1 2");
    EXPECT_EQ(log.count("In MFSound::setValueByStr(): not impl. \n"), 1) << log.all();
    EXPECT_EQ(s.size(), 1u);
    EXPECT_EQ(s.addValueByStr("1 8000 0", Field::Single), nullptr);
    EXPECT_EQ(log.count("Not impl. \n"), 2);
    EXPECT_EQ(s.size(), 1u);

    MFImage i(*node);
    EXPECT_EQ(i.addValueByStr("1 1 1 0x5", Field::Single), nullptr);
    EXPECT_EQ(log.count("Not impl. \n"), 3);
    EXPECT_TRUE(i.empty());
    // Whole values still read.
    i.setValueByStr(0.0, "1 1 1 0x5, 2 1 3 0xFF0000 0x0");
    ASSERT_EQ(i.size(), 2u);
    EXPECT_EQ(i.elem(1), Image(2, 1, 3, {0xFF0000u, 0u}));
    EXPECT_EQ(i.strValue(), "1 1 1 0x5, 2 1 3 0xFF0000 0x0");
}

TEST_F(FieldTextCasesTest, FragmentsAreRefusedByStringBoolPlaneAndQubitLists)
{
    LogCapture log;
    MFString& named = *static_cast<MFString*>(node->findField(0));
    named.addValue("keep");
    EXPECT_EQ(named.addValueByStr("\"a\" \"b", Field::Multi), nullptr);
    EXPECT_EQ(log.count("CaseNode.names MFString::addValueByStr() for partial data not impl. \n >\"a\" \"b<\n",
                        LOG_FATAL),
              1)
        << log.all();
    EXPECT_EQ(items(named), std::vector<std::string>{"keep"});

    MFString loose(*node);
    loose.addValueByStr("x", Field::Multi);
    EXPECT_EQ(log.count("CaseNode.NoName MFString::addValueByStr() for partial data not impl. \n >x<\n",
                        LOG_FATAL),
              1)
        << log.all();
    EXPECT_TRUE(loose.empty());

    MFBool b(*node);
    MFPlane p(*node);
    MFQubit q(*node);
    b.addValueByStr("TRUE", Field::Multi);
    p.addValueByStr("0 1 0 0", Field::Multi);
    q.addValueByStr("UNSET", Field::Multi);
    EXPECT_EQ(log.count("MFBool::addValueByStr() for partial data not impl.\n", LOG_FATAL), 1) << log.all();
    EXPECT_EQ(log.count("MFPlane::addValueByStr() for partial data not impl.\n", LOG_FATAL), 1);
    EXPECT_EQ(log.count("MFQubit::addValueByStr() for partial data not impl.\n", LOG_FATAL), 1);
    EXPECT_TRUE(b.empty());
    EXPECT_TRUE(p.empty());
    EXPECT_TRUE(q.empty());

    // Complete runs are fine.
    log.clear();
    b.addValueByStr("TRUE", Field::Single);
    p.addValueByStr("0 1 0 5", Field::Single);
    q.addValueByStr("UNSET", Field::Single);
    EXPECT_EQ(items(b), std::vector<bool>{true});
    EXPECT_EQ(items(p), std::vector<Plane>{Plane(0, 1, 0, 5)});
    EXPECT_EQ(q.size(), 1u);
    EXPECT_EQ(log.size(), 0u) << log.all();
}

TEST_F(FieldTextCasesTest, SingleAndMultiAddValueByStr)
{
    MFFloat f(*node);
    EXPECT_EQ(f.addValueByStr("1 2;3\t4,5", Field::Multi), nullptr);
    EXPECT_EQ(items(f), (std::vector<float>{1, 2, 3, 4, 5}));

    f.clear();
    const char* text = "1, 2 3";
    const char* rest = f.addValueByStr(text, Field::Single);
    EXPECT_EQ(items(f), std::vector<float>{1});
    ASSERT_NE(rest, nullptr);
    EXPECT_STREQ(rest, "2 3");
    EXPECT_EQ(f.addValueByStr("7  ", Field::Single), nullptr);

    MFVec3f v(*node);
    rest = v.addValueByStr("1 2 3 4 5 6", Field::Single);
    EXPECT_EQ(items(v), std::vector<Vec3f>{Vec3f(1, 2, 3)});
    EXPECT_STREQ(rest, "4 5 6");

    MFString s(*node);
    rest = s.addValueByStr(" \"a\" \"b\"", Field::Single);
    EXPECT_EQ(items(s), std::vector<std::string>{"a"});
    EXPECT_STREQ(rest, " \"b\"");
    EXPECT_EQ(s.addValueByStr("plain text", Field::Single), nullptr);
    EXPECT_EQ(s.back(), "plain text");

    SFFloat sf(*node, 9.0f);
    EXPECT_EQ(sf.addValueByStr("2.5 7", Field::Multi), nullptr);
    EXPECT_EQ(sf.value(), 2.5f);
    EXPECT_EQ(sf.addValueByStr("3.5", Field::Single), nullptr);
    EXPECT_EQ(sf.value(), 3.5f);
}

TEST_F(FieldTextCasesTest, FloatValidationTakesOnlyOneFiniteNumber)
{
    SFFloat f(*node, 9.0f);
    LogCapture log;
    for (const char* good : {"2.5", " 3 ", "-1e3\n", ".5", "0x10"}) {
        EXPECT_TRUE(f.setAndValidateValueByStr(0.0, good, true)) << good;
        EXPECT_EQ(f.value(), read<SFFloat>(*node, good).value()) << good;
    }
    EXPECT_EQ(log.size(), 0u) << log.all();
    f.setValue(9.0f);
    for (const char* bad : {"", "abc", "1.5x", "1 2", "1,5", "1e39", "nan", "-inf"}) {
        EXPECT_FALSE(f.setAndValidateValueByStr(0.0, bad, true)) << bad;
        EXPECT_EQ(f.value(), 9.0f) << bad;
    }
    EXPECT_EQ(log.count("CaseNode.NoName: invalid float value >1.5x<\n", LOG_WARNING), 1) << log.all();
    EXPECT_EQ(log.size(), 8u);
    // Without the flag, like setValueByStr.
    EXPECT_TRUE(f.setAndValidateValueByStr(0.0, "1.5x", false));
    EXPECT_EQ(f.value(), 1.5f);
    EXPECT_TRUE(f.setAndValidateValueByStr(0.0, nullptr, false));
    EXPECT_EQ(f.value(), 0.0f);
}

namespace {

// Switches the whole process to a locale with a decimal comma for one test.
class CommaLocale {
public:
    CommaLocale()
    {
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "fr_FR.utf8"})
            if (std::setlocale(LC_ALL, name)) {
                _active = true;
                break;
            }
    }
    ~CommaLocale() { std::setlocale(LC_ALL, "C"); }
    bool active() const { return _active; }

private:
    bool _active = false;
};

} // namespace

TEST_F(FieldTextCasesTest, NumberTextIgnoresTheProcessLocale)
{
    CommaLocale locale;
    if (!locale.active())
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    ASSERT_EQ(std::strtod("1,5", nullptr), 1.5) << "the locale should use a decimal comma";

    SFFloat f = read<SFFloat>(*node, "1.5");
    EXPECT_EQ(f.value(), 1.5f);
    EXPECT_EQ(f.strValue(), "1.5");
    EXPECT_EQ(read<SFFloat>(*node, "0x1.8p0").value(), 1.5f);
    EXPECT_EQ(read<SFFloat>(*node, "1,5").value(), 1.0f);
    EXPECT_EQ(read<SFDouble>(*node, "  2.25").strValue(), "2.25");
    EXPECT_EQ(read<SFTime>(*node, "1234567890.123456").strValue(), "1234567890.123456");
    EXPECT_EQ(read<MFFloat>(*node, "1.5, 2.5").strValue(), "1.500000, 2.500000");
    EXPECT_EQ(read<MFVec3f>(*node, "0.5 1.5 2.5").strValue(), "0.500000 1.500000 2.500000");
    EXPECT_EQ(read<SFVec2f>(*node, "0.5 .25").strValue(), "0.5 0.25");
    EXPECT_TRUE(read<SFBool>(*node, "0.5").value());
    EXPECT_EQ(read<SFQubit>(*node, "0.5 0 0.25 0").strValue(), "0.5 0 0.25 0");
    EXPECT_EQ(read<MFQubit>(*node, "0.5 0 0.25 0").strValue(), "0.5 0 0.25 0");
    EXPECT_EQ(read<SFRotation>(*node, "0 1 0 1.5").strValue(), "0 1 0 1.5");
}
