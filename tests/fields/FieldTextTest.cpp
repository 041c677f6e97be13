// The text form of field values: what each type writes for what it reads, fragments of lists,
// validation, independence of the process locale, and the round trip of random values. Number
// reading against the C conversions is in FieldFuzzTextTest.
#include "tests/fields/FieldKit.h"

#include <clocale>
#include <cstdlib>
#include <memory>
#include <set>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

struct FieldTextTest : ::testing::Test {
    TestNodeType   type{"CaseNode", {{"names", FieldPartType, MFStringType}}};
    SmartPtr<Node> node = type.make();

    template <class F>
    F read(const char* text)
    {
        F f(*node);
        f.setValueByStr(0.0, text);
        return f;
    }
};

struct TextCase {
    const char* type;
    const char* in;
    const char* out;
};

} // namespace

TEST_F(FieldTextTest, WhatEachTypeWritesForWhatItReads)
{
    const TextCase cases[] = {
        // Lone numbers: "%g", doubles "%.16g".
        {"SFFloat", "1234567", "1.23457e+06"},
        {"SFFloat", "0.0001", "0.0001"},
        {"SFFloat", "  3.25abc", "3.25"},
        {"SFFloat", "-1e39", "-inf"},
        {"SFInt32", "-2147483648", "-2147483648"},
        {"SFDouble", "0.1", "0.1"},
        {"SFDouble", "0.33333333333333331", "0.3333333333333333"},
        {"SFDouble", "123456789012345678", "1.234567890123457e+17"},
        {"SFTime", "1e21", "1e+21"},
        // Vectors: six digits even for doubles; missing components are zero.
        {"SFVec2d", "0.33333333333333331 2", "0.333333 2"},
        {"SFVec3d", "1e7 0.25 -3", "1e+07 0.25 -3"},
        {"SFVec3f", "1, 2 ,3", "1 2 3"},
        {"SFVec3f", "1 2", "1 2 0"},
        {"SFColorRGBA", "1 .5 0 .25", "1 0.5 0 0.25"},
        {"SFRotation", "1 0 0 3.14159265", "1 0 0 3.14159"},
        {"SFBool", "yes", "TRUE"},
        // Lists: fixed notation, comma and blank between values; the semicolon does not split.
        {"MFFloat", "1.5 -0.25 1e-7", "1.500000, -0.250000, 0.000000"},
        {"MFFloat", "1;2 3", "1.000000, 3.000000"},
        {"MFDouble", "1e20", "100000000000000000000.000000"},
        {"MFDouble", " ,, ", ""},
        {"MFTime", "1234567890.123456, 0.1234567", "1234567890.123456, 0.123457"},
        {"MFInt32", "1,,2\t\r\n3 ,  4", "1, 2, 3, 4"},
        {"MFInt32", "1 x 2147483647", "1, 0, 2147483647"},
        {"MFBool", "TRUE false,1 0\tyes x", "TRUE, FALSE, TRUE, FALSE, TRUE, FALSE"},
        {"MFVec2f", "1 2 3 4", "1.000000 2.000000, 3.000000 4.000000"},
        {"MFPlane", "0 0 1 2, 1 0 0 -1", "0.000000 0.000000 1.000000 2.000000, 1.000000 0.000000 0.000000 -1.000000"},
        {"MFMatrix3f", "1 0 0 0 1 0 0 0 1",
         "1.000000 0.000000 0.000000 0.000000 1.000000 0.000000 0.000000 0.000000 1.000000"},
        // Strings: raw when single, quoted and escaped in lists; only the opening quote closes a
        // run, a backslash before an ordinary character stays, text outside quotes is skipped.
        {"SFString", "a \"b\" \\c 'd'", "a \"b\" \\c 'd'"},
        {"MFString", "\"x\\\\y\" \"say \\\"hi\\\"\" 'it\\'s' \"\"", "\"x\\\\y\" \"say \\\"hi\\\"\" \"it's\" \"\""},
        {"MFString", "\"x\\ny\"", "\"x\\\\ny\""},
        {"MFString", "'a\"b' \"c'd\"", "\"a\\\"b\" \"c'd\""},
        {"MFString", "  \"a\"junk, \"b\" ", "\"a\" \"b\""},
        {"MFString", "\"unterminated", "\"unterminated\""},
        {"MFString", "", ""},
        // Images, qubits and the type without a text form.
        {"SFImage", "2 1 3 0xFF0000 0x0", "2 1 3 0xFF0000 0x0"},
        {"MFImage", "1 1 1 0x5, 2 1 3 0xFF0000 0x0", "1 1 1 0x5, 2 1 3 0xFF0000 0x0"},
        {"MFQubit", "UNSET, 0.5 0 0 -1", "UNSET, 0.5 0 0 -1"},
        {"XFAny", "1 2 3", ""},
    };
    for (const TextCase& c : cases) {
        std::unique_ptr<Field> f(FieldType::create(FieldType::dataType(c.type), *node));
        ASSERT_NE(f, nullptr) << c.type;
        f->setValueByStr(0.0, c.in);
        EXPECT_EQ(f->strValue(), c.out) << c.type << " >" << c.in << "<";
    }

    // Matrices column by column; a quaternion turn as axis and angle.
    Matrix3f m(1.0f);
    m[1][0] = 5.0f;
    EXPECT_EQ(read<SFMatrix3f>("1 0 0 5 1 0 0 0 1").value(), m);
    SFRotation r(*node);
    r.value().setQuaternion(glm::angleAxis(1.5707964f, glm::vec3(0.0f, 1.0f, 0.0f)));
    EXPECT_EQ(r.strValue(), "0 1 0 1.5708");
    MFRotation mr(*node);
    mr.addValue(r.value());
    EXPECT_EQ(mr.strValue(), "0.000000 1.000000 0.000000 1.570796");
}

TEST_F(FieldTextTest, EmptyAndNullTextsReset)
{
    SFVec3f v(*node, Vec3f(7, 7, 7));
    SFBool  b(*node, true);
    SFFloat f(*node, 9.0f);
    MFFloat mf(*node);
    mf.addValue(9.0f);
    v.setValueByStr(0.0, "");
    for (Field* field : {(Field*)&b, (Field*)&f, (Field*)&mf})
        field->setValueByStr(0.0, nullptr);
    EXPECT_EQ(v.value(), Vec3f(0, 0, 0));
    EXPECT_FALSE(b.value());
    EXPECT_EQ(f.value(), 0.0f);
    EXPECT_TRUE(mf.empty());
    EXPECT_EQ(read<SFString>(nullptr).value(), "");
    EXPECT_TRUE(read<MFString>(nullptr).empty());
}

TEST_F(FieldTextTest, SingleAndMultiAddValueByStr)
{
    MFFloat f(*node);
    EXPECT_EQ(f.addValueByStr("1 2;3\t4,5", Field::Multi), nullptr);
    EXPECT_EQ(items(f), (std::vector<float>{1, 2, 3, 4, 5}));
    f.clear();
    EXPECT_STREQ(f.addValueByStr("1, 2 3", Field::Single), "2 3");
    EXPECT_EQ(f.addValueByStr("7  ", Field::Single), nullptr);
    EXPECT_EQ(items(f), (std::vector<float>{1, 7}));

    MFVec3f v(*node);
    EXPECT_STREQ(v.addValueByStr("1 2 3 4 5 6", Field::Single), "4 5 6");
    EXPECT_EQ(items(v), std::vector<Vec3f>{Vec3f(1, 2, 3)});

    MFString s(*node);
    EXPECT_STREQ(s.addValueByStr(" \"a\" \"b\"", Field::Single), " \"b\"");
    EXPECT_EQ(s.addValueByStr("plain text", Field::Single), nullptr);
    EXPECT_EQ(items(s), (std::vector<std::string>{"a", "plain text"}));

    SFFloat sf(*node, 9.0f);
    EXPECT_EQ(sf.addValueByStr("2.5 7", Field::Multi), nullptr);
    EXPECT_EQ(sf.value(), 2.5f);
    EXPECT_EQ(sf.addValueByStr("3.5", Field::Single), nullptr);
    EXPECT_EQ(sf.value(), 3.5f);

    XFAny any(*node);
    EXPECT_EQ(any.addValueByStr("x", Field::Multi), nullptr);
}

TEST_F(FieldTextTest, SoundListsAndImageListsHaveNoElementParser)
{
    LogCapture log;
    MFSound    s(*node);
    s.addValue(PCMSound({1, 2}, 1, 8000));
    std::string out = "stale";
    EXPECT_EQ(s.getStrValue(out), "");
    EXPECT_EQ(out, "");
    s.setValueByStr(0.0, "1 8000 2 1 2");
    EXPECT_EQ(log.count("In MFSound::setValueByStr(): not impl. \n"), 1) << log.all();
    EXPECT_EQ(s.addValueByStr("1 8000 0", Field::Single), nullptr);
    EXPECT_EQ(s.size(), 1u);
    MFImage i(*node);
    EXPECT_EQ(i.addValueByStr("1 1 1 0x5", Field::Single), nullptr);
    EXPECT_TRUE(i.empty());
    EXPECT_EQ(log.count("Not impl. \n"), 3) << log.all();
}

TEST_F(FieldTextTest, FragmentsAreRefusedByStringBoolPlaneAndQubitLists)
{
    LogCapture log;
    MFString&  named = *static_cast<MFString*>(node->findField(0));
    named.addValue("keep");
    EXPECT_EQ(named.addValueByStr("\"a\" \"b", Field::Multi), nullptr);
    MFString loose(*node);
    loose.addValueByStr("x", Field::Multi);
    EXPECT_EQ(log.count("CaseNode.names MFString::addValueByStr() for partial data not impl. \n >\"a\" \"b<\n",
                        LOG_FATAL),
              1)
        << log.all();
    EXPECT_EQ(log.count("CaseNode.NoName MFString::addValueByStr() for partial data not impl. \n >x<\n", LOG_FATAL),
              1);
    EXPECT_EQ(items(named), std::vector<std::string>{"keep"});
    EXPECT_TRUE(loose.empty());

    MFBool  b(*node);
    MFPlane p(*node);
    MFQubit q(*node);
    b.addValueByStr("TRUE", Field::Multi);
    p.addValueByStr("0 1 0 0", Field::Multi);
    q.addValueByStr("UNSET", Field::Multi);
    for (const char* type : {"MFBool", "MFPlane", "MFQubit"})
        EXPECT_EQ(log.count(std::string(type) + "::addValueByStr() for partial data not impl.\n", LOG_FATAL), 1)
            << type << log.all();
    EXPECT_TRUE(b.empty() && p.empty() && q.empty());

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

TEST_F(FieldTextTest, FloatValidationTakesOnlyOneFiniteNumber)
{
    SFFloat    f(*node, 9.0f);
    LogCapture log;
    for (const char* good : {"2.5", " 3 ", "-1e3\n", ".5", "0x10"}) {
        EXPECT_TRUE(f.setAndValidateValueByStr(0.0, good, true)) << good;
        EXPECT_EQ(f.value(), read<SFFloat>(good).value()) << good;
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

TEST_F(FieldTextTest, NumberTextIgnoresTheProcessLocale)
{
    auto trySwitch = [] {
        bool comma = false;
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "fr_FR.utf8"})
            if (!comma && std::setlocale(LC_ALL, name))
                comma = std::strtod("1,5", nullptr) == 1.5;
        return comma;
    };
    bool comma = trySwitch();
    if (!comma) {
        // No such locale installed: build one from the locale sources, where the machine has them.
        const std::string dir = ::testing::TempDir() + "orvane-locales";
        const std::string build = "mkdir -p " + dir + " && localedef -i de_DE -f UTF-8 " + dir +
                                  "/de_DE.UTF-8 >/dev/null 2>&1";
        if (std::system(build.c_str()) == 0) {
            setenv("LOCPATH", dir.c_str(), 1);
            comma = trySwitch();
        }
    }
    if (!comma) {
        std::setlocale(LC_ALL, "C");
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    EXPECT_EQ(read<SFFloat>("0x1.8p0").value(), 1.5f);
    EXPECT_EQ(read<SFFloat>("1,5").value(), 1.0f);
    EXPECT_TRUE(read<SFBool>("0.5").value());
    for (const char* type : {"SFFloat", "SFDouble", "SFTime", "MFFloat", "MFVec3f", "SFVec2f", "SFQubit", "MFQubit"}) {
        std::unique_ptr<Field> f(FieldType::create(FieldType::dataType(type), *node));
        f->setValueByStr(0.0, "0.5 1.5 2.25 0");
        const std::string expected = type[0] == 'M' && type[2] != 'Q' ? "0.500000" : "0.5";
        EXPECT_EQ(f->strValue().substr(0, expected.size()), expected) << type << " " << f->strValue();
    }
    std::setlocale(LC_ALL, "C");
}

// getStrValue -> setValueByStr -> equalValue for every type with a text form, on random values.
namespace {

template <class... F>
void roundTripAll(Node& node, RandomValues& random, std::set<int>& covered)
{
    auto one = [&]<class T>(T*) {
        for (int round = 0; round < 40; ++round) {
            T original(node);
            // An empty MFString writes the empty text, which reads as one empty element.
            random.fill(original, std::is_same_v<T, MFString> ? 1 : 0);
            const std::string text = original.strValue();
            std::unique_ptr<Field> copy(FieldType::create(T::DataType, node));
            ASSERT_NE(copy, nullptr);
            copy->setValueByStr(0.0, text.c_str());
            ASSERT_TRUE(copy->equalValue(original)) << original.dataTypeName() << " from >" << text << "<";
            EXPECT_EQ(copy->strValue(), text) << original.dataTypeName();
            EXPECT_EQ(copy->size(), original.size()) << original.dataTypeName();
        }
        covered.insert(T::DataType);
    };
    (one(static_cast<F*>(nullptr)), ...);
}

} // namespace

// Node fields (their text names the child), the Any types (no text form) and MFSound (no text
// form as a list) are left out.
TEST(FieldRoundTripTest, EveryTypeWithATextFormReadsBackWhatItWrites)
{
    TestNodeType   type{"RoundNode", {}};
    SmartPtr<Node> node = type.make();
    RandomValues   random(20240611u, true);
    std::set<int>  covered;
    LogCapture     log;

    roundTripAll<SFBool, SFColor, SFColorRGBA, SFDouble, SFFloat, SFImage, SFInt32, SFMatrix3d, SFMatrix3f,
                 SFMatrix4d, SFMatrix4f, SFPlane, SFQubit, SFRotation, SFSound, SFString, SFTime, SFVec2d,
                 SFVec2f, SFVec3d, SFVec3f, SFVec4d, SFVec4f>(*node, random, covered);
    roundTripAll<MFBool, MFColor, MFColorRGBA, MFDouble, MFFloat, MFImage, MFInt32, MFMatrix3d, MFMatrix3f,
                 MFMatrix4d, MFMatrix4f, MFPlane, MFQubit, MFRotation, MFString, MFTime, MFVec2d, MFVec2f,
                 MFVec3d, MFVec3f, MFVec4d, MFVec4f>(*node, random, covered);

    const std::set<int> without{SFNodeType, MFNodeType, MFSoundType, XFAnyType, SFAnyType, MFAnyType};
    for (int dt = 1; dt <= 51; ++dt)
        EXPECT_NE(covered.count(dt) + without.count(dt), 0u) << FieldType::dataTypeName(NodePartDataType(dt));
    EXPECT_EQ(covered.size(), 45u);
    EXPECT_EQ(log.size(), 0u) << log.all();
}
