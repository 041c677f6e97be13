// The value conversions between kinds: which pairs are refused, and what the others produce.
#include "base/BaseTypeAssign.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// The refused pairs as the format defines them, written out independently of the library's
// own table: target kind, then its refused source kinds.
const std::set<std::string> matrixRefuses = {"Bool",  "Color3f", "Color4f", "Double", "Float", "Image",
                                             "Int32", "Sound",   "String",  "Time",   "Vec2d", "Vec2f",
                                             "Vec3d", "Vec3f",   "Vec4d",   "Vec4f"};
const std::map<std::string, std::set<std::string>> refusedSources = {
    {"Bool", {"Color3f", "Color4f", "Matrix3d", "Matrix3f", "Matrix4d", "Matrix4f", "Rotation", "Sound", "String"}},
    {"Color3f", {"Bool", "Double", "Float", "Image", "Int32", "Matrix3d", "Matrix3f", "Matrix4d", "Matrix4f",
                 "Rotation", "Sound", "String", "Time", "Vec2d", "Vec2f"}},
    {"Color4f", {"Bool", "Double", "Float", "Image", "Int32", "Matrix3d", "Matrix3f", "Matrix4d", "Matrix4f",
                 "Rotation", "Sound", "String", "Time", "Vec2d", "Vec2f"}},
    {"Double", {"Color3f", "Color4f", "Matrix3d", "Matrix3f", "Matrix4d", "Matrix4f", "Rotation", "Sound", "String"}},
    {"Float", {"Color3f", "Color4f", "Matrix3d", "Matrix3f", "Matrix4d", "Matrix4f", "Rotation", "Sound", "String"}},
    {"Image", {"Bool", "Double", "Float", "Int32", "Matrix3d", "Matrix3f", "Matrix4d", "Matrix4f", "Rotation",
               "Sound", "String", "Time", "Vec2d", "Vec2f", "Vec3d", "Vec3f", "Vec4d", "Vec4f"}},
    {"Int32", {"Color3f", "Color4f", "Matrix3d", "Matrix3f", "Matrix4d", "Matrix4f", "Rotation", "Sound", "String"}},
    {"Matrix3d", matrixRefuses},
    {"Matrix3f", matrixRefuses},
    {"Matrix4d", matrixRefuses},
    {"Matrix4f", matrixRefuses},
    {"Rotation", {"Color3f", "Color4f", "Image", "Sound", "String", "Vec2d", "Vec2f"}},
    {"Sound", {"Bool", "Color3f", "Color4f", "Double", "Float", "Image", "Int32", "Matrix3d", "Matrix3f",
               "Matrix4d", "Matrix4f", "Rotation", "String", "Time", "Vec2d", "Vec2f", "Vec3d", "Vec3f", "Vec4d",
               "Vec4f"}},
    {"String", {"Image", "Sound"}},
    {"Time", {"Color3f", "Color4f", "Matrix3d", "Matrix3f", "Matrix4d", "Matrix4f", "Rotation", "Sound", "String"}},
    {"Vec2d", {"Bool", "Color3f", "Color4f", "Double", "Float", "Int32", "Matrix3d", "Matrix3f", "Matrix4d",
               "Matrix4f", "Rotation", "Sound", "String", "Time"}},
    {"Vec2f", {"Bool", "Color3f", "Color4f", "Double", "Float", "Int32", "Matrix3d", "Matrix3f", "Matrix4d",
               "Matrix4f", "Rotation", "Sound", "String", "Time"}},
    {"Vec3d", {"Bool", "Double", "Float", "Int32", "Matrix3d", "Matrix3f", "Matrix4d", "Matrix4f", "Sound",
               "String", "Time", "Vec4d", "Vec4f"}},
    {"Vec3f", {"Bool", "Double", "Float", "Int32", "Matrix3d", "Matrix3f", "Matrix4d", "Matrix4f", "Sound",
               "String", "Time", "Vec4d", "Vec4f"}},
    {"Vec4d", {"Bool", "Double", "Float", "Int32", "Matrix3d", "Matrix3f", "Matrix4d", "Matrix4f", "Sound",
               "String", "Time"}},
    {"Vec4f", {"Bool", "Double", "Float", "Int32", "Matrix3d", "Matrix3f", "Matrix4d", "Matrix4f", "Sound",
               "String", "Time"}},
};

bool isRefused(const std::string& target, const std::string& source)
{
    return refusedSources.at(target).count(source) > 0;
}

// A value of each kind that is not its default; `seed` makes a second, different one.
template <class T>
T sample(int seed)
{
    if constexpr (std::is_same_v<T, bool>)
        return seed % 2 == 1;
    else if constexpr (std::is_same_v<T, int> || std::is_same_v<T, float> || std::is_same_v<T, double>)
        return T(seed * 3 + 1);
    else if constexpr (std::is_same_v<T, std::string>)
        return "sample " + std::to_string(seed);
    else if constexpr (std::is_same_v<T, Image>)
        return Image(seed, 1, 3, std::vector<uint32_t>(std::size_t(seed), 0xFF0000u));
    else if constexpr (std::is_same_v<T, PCMSound>)
        return PCMSound({int16_t(seed), 2, 3}, 1, 8000 * seed);
    else if constexpr (std::is_same_v<T, Rotation>)
        return Rotation(0.0f, 1.0f, 0.0f, 0.25f * float(seed));
    else if constexpr (std::is_same_v<T, Color3f>)
        return Color3f(0.1f * float(seed), 0.2f, 0.3f);
    else if constexpr (std::is_same_v<T, Color4f>)
        return Color4f(0.1f * float(seed), 0.2f, 0.3f, 0.4f);
    else {
        T value(static_cast<typename T::value_type>(seed));  // vectors and matrices
        valuePtr(value)[1] = static_cast<typename T::value_type>(seed + 5);
        return value;
    }
}

struct PairCase {
    std::string target;
    std::string source;
    // Calls the pair's function; answers its result and whether the target kept its value.
    std::function<std::pair<bool, bool>()> run;
};

#define PAIR_CASE(SourceKind, SourceType, TargetKind, TargetType)                                  \
    {#TargetKind, #SourceKind, [] {                                                                \
         TargetType       to = sample<TargetType>(2);                                              \
         const TargetType before = to;                                                             \
         const SourceType from = sample<SourceType>(1);                                            \
         bool converted = assign##TargetKind##From##SourceKind(to, from);                          \
         return std::make_pair(converted, to == before);                                           \
     }},

const std::vector<PairCase>& pairCases()
{
    static const std::vector<PairCase> cases = {ORV_ASSIGN_PAIRS(PAIR_CASE)};
    return cases;
}
#undef PAIR_CASE

} // namespace

TEST(ConversionTable, EveryPairRefusesOrConvertsAsTabled)
{
    ASSERT_EQ(pairCases().size(), 21u * 21u);
    int refusedCount = 0;
    for (const PairCase& pair : pairCases()) {
        SCOPED_TRACE(pair.source + " to " + pair.target);
        LogCapture log;
        auto [converted, unchanged] = pair.run();
        const std::string text = pair.source + " to " + pair.target + " conversion NI!\n";
        if (isRefused(pair.target, pair.source)) {
            ++refusedCount;
            EXPECT_FALSE(converted);
            EXPECT_TRUE(unchanged);
            EXPECT_EQ(log.count(text, LOG_WARNING, "OpenSG"), 1);
            EXPECT_EQ(log.size(), 1u) << log.all();
        } else {
            EXPECT_TRUE(converted);
            EXPECT_EQ(log.size(), 0u) << log.all();
        }
    }
    EXPECT_EQ(refusedCount, 262);
}

TEST(ConversionTable, KindsAndNames)
{
    EXPECT_STREQ(assignKindName(AssignKind::Color3f), "Color3f");
    EXPECT_STREQ(assignKindName(AssignKind::Sound), "Sound");
    AssignKind kind;
    ASSERT_TRUE(assignKindOf(BaseType::ColorRGBA, kind));
    EXPECT_EQ(kind, AssignKind::Color4f);
    ASSERT_TRUE(assignKindOf(BaseType::Time, kind));
    EXPECT_EQ(kind, AssignKind::Time);
    for (BaseType outside : {BaseType::Any, BaseType::Node, BaseType::Plane, BaseType::Qubit})
        EXPECT_FALSE(assignKindOf(outside, kind));
    EXPECT_TRUE(assignRefused(AssignKind::Vec3f, AssignKind::Vec4d));
    EXPECT_FALSE(assignRefused(AssignKind::Vec4f, AssignKind::Vec3d));
}

// The directions that differ from their reverse.
TEST(ConversionRules, AsymmetricDirections)
{
    LogCapture log;
    std::string text;
    float number = 1.0f;
    EXPECT_TRUE(assignStringFromFloat(text, 2.5f));
    EXPECT_EQ(text, "2.5");
    EXPECT_FALSE(assignFloatFromString(number, "3"));
    EXPECT_EQ(number, 1.0f);

    Vec4d wide(9.0);
    EXPECT_TRUE(assignVec4dFromVec3f(wide, Vec3f(1, 2, 3)));
    EXPECT_EQ(wide, Vec4d(1, 2, 3, 0));
    Vec3f narrow(9.0f);
    EXPECT_FALSE(assignVec3fFromVec4d(narrow, Vec4d(1, 2, 3, 4)));
    EXPECT_EQ(narrow, Vec3f(9.0f));

    Rotation r;
    EXPECT_TRUE(assignRotationFromVec4f(r, Vec4f(0, 1, 0, 1.5f)));
    EXPECT_EQ(r, Rotation(0, 1, 0, 1.5f));
    EXPECT_FALSE(assignRotationFromVec2f(r, Vec2f(1, 2)));
    EXPECT_FALSE(assignRotationFromColor3f(r, Color3f(1, 0, 0)));
    EXPECT_EQ(r, Rotation(0, 1, 0, 1.5f));
    EXPECT_EQ(log.count("Vec4d to Vec3f conversion NI!\n", LOG_WARNING, "OpenSG"), 1);
    EXPECT_EQ(log.count("String to Float conversion NI!\n", LOG_WARNING, "OpenSG"), 1);
}

TEST(ConversionRules, Numbers)
{
    int i = 0;
    EXPECT_TRUE(assignInt32FromFloat(i, 2.9f));
    EXPECT_EQ(i, 2);
    assignInt32FromDouble(i, -2.9);
    EXPECT_EQ(i, -2);
    assignInt32FromDouble(i, 1e20);
    EXPECT_EQ(i, INT_MAX);
    assignInt32FromFloat(i, -1e20f);
    EXPECT_EQ(i, INT_MIN);
    assignInt32FromDouble(i, std::nan(""));
    EXPECT_EQ(i, 0);
    assignInt32FromBool(i, true);
    EXPECT_EQ(i, 1);

    bool b = true;
    assignBoolFromInt32(b, 0);
    EXPECT_FALSE(b);
    assignBoolFromFloat(b, std::nanf(""));
    EXPECT_TRUE(b);
    assignBoolFromDouble(b, -0.0);
    EXPECT_FALSE(b);

    float f = 0;
    assignFloatFromDouble(f, 1e300);
    EXPECT_TRUE(std::isinf(f));
    double d = 0;
    assignTimeFromDouble(d, 1234567890.123456);
    EXPECT_EQ(d, 1234567890.123456);
    assignDoubleFromInt32(d, -7);
    EXPECT_EQ(d, -7.0);
}

TEST(ConversionRules, VectorsAndColours)
{
    Vec2d v2;
    assignVec2dFromVec4f(v2, Vec4f(1, 2, 3, 4));
    EXPECT_EQ(v2, Vec2d(1, 2));
    Vec3f v3(7.0f);
    assignVec3fFromVec2d(v3, Vec2d(1, 2));
    EXPECT_EQ(v3, Vec3f(1, 2, 0));
    assignVec3fFromColor4f(v3, Color4f(0.5f, 0.25f, 1, 0.1f));
    EXPECT_EQ(v3, Vec3f(0.5f, 0.25f, 1));

    Color4f c4;
    assignColor4fFromColor3f(c4, Color3f(0.1f, 0.2f, 0.3f));
    EXPECT_EQ(c4, Color4f(0.1f, 0.2f, 0.3f, 1));
    assignColor4fFromVec3d(c4, Vec3d(1, 0, 0));
    EXPECT_EQ(c4, Color4f(1, 0, 0, 1));
    Color3f c3;
    assignColor3fFromColor4f(c3, Color4f(0.1f, 0.2f, 0.3f, 0.4f));
    EXPECT_EQ(c3, Color3f(0.1f, 0.2f, 0.3f));
    Vec4f v4(9.0f);
    assignVec4fFromColor3f(v4, Color3f(0.1f, 0.2f, 0.3f));
    EXPECT_EQ(v4, Vec4f(0.1f, 0.2f, 0.3f, 0));

    float f = 0;
    assignFloatFromVec3d(f, Vec3d(4, 5, 6));
    EXPECT_EQ(f, 4.0f);
    bool b = true;
    assignBoolFromVec2f(b, Vec2f(0, 0));
    EXPECT_FALSE(b);
    assignBoolFromVec4d(b, Vec4d(0, 0, 0, 1));
    EXPECT_TRUE(b);
}

TEST(ConversionRules, Images)
{
    const Image image(2, 3, 4);
    int count = 0;
    assignInt32FromImage(count, image);
    EXPECT_EQ(count, 6);
    Vec3f size;
    assignVec3fFromImage(size, image);
    EXPECT_EQ(size, Vec3f(2, 3, 4));
    Vec2d flat;
    assignVec2dFromImage(flat, image);
    EXPECT_EQ(flat, Vec2d(2, 3));
    bool b = true;
    assignBoolFromImage(b, Image());
    EXPECT_FALSE(b);

    Image pixel;
    assignImageFromColor3f(pixel, Color3f(1, 0.5f, 0));
    EXPECT_EQ(pixel, Image(1, 1, 3, {0xFF8000}));
    assignImageFromColor4f(pixel, Color4f(0, 0, 1, 1));
    EXPECT_EQ(pixel, Image(1, 1, 4, {0x0000FFFF}));
    assignImageFromColor3f(pixel, Color3f(2, -1, std::nanf("")));
    EXPECT_EQ(pixel, Image(1, 1, 3, {0xFF0000}));
}

TEST(ConversionRules, Rotations)
{
    Rotation r;
    assignRotationFromVec3d(r, Vec3d(0, 0, 2));
    EXPECT_EQ(r, Rotation(0, 0, 1, 2));
    assignRotationFromVec3f(r, Vec3f(0, 0, 0));
    EXPECT_EQ(r, Rotation());
    assignRotationFromFloat(r, 0.5f);
    EXPECT_EQ(r, Rotation(0, 0, 1, 0.5f));

    Vec3f vector;
    assignVec3fFromRotation(vector, Rotation(0, 2, 0, 1.5f));
    EXPECT_EQ(vector, Vec3f(0, 1.5f, 0));
    Vec4d raw;
    assignVec4dFromRotation(raw, Rotation(0, 2, 0, 1.5f));
    EXPECT_EQ(raw, Vec4d(0, 2, 0, 1.5));

    // Through a matrix and back: the same turn.
    const Rotation turn(Vec3f(1, 2, 3) / std::sqrt(14.0f), 0.75f);
    Matrix3f m3;
    assignMatrix3fFromRotation(m3, turn);
    Rotation back;
    assignRotationFromMatrix3f(back, m3);
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(back[i], turn[i], 1e-5) << i;

    // A 4 x 4 matrix with scale and translation gives its rotation part.
    Matrix4d m4;
    assignMatrix4dFromRotation(m4, Rotation(0, 0, 1, 0.5f));
    EXPECT_EQ(m4[3], glm::dvec4(0, 0, 0, 1));
    m4[0] *= 3.0;
    m4[1] *= 0.5;
    m4[3] = glm::dvec4(10, 20, 30, 1);
    assignRotationFromMatrix4d(back, m4);
    EXPECT_NEAR(back.angle(), 0.5f, 1e-6);
    EXPECT_NEAR(back.axis().z, 1.0f, 1e-6);

    Matrix4f zero(0.0f);
    assignRotationFromMatrix4f(back, zero);
    EXPECT_EQ(back, Rotation());
}

TEST(ConversionRules, Matrices)
{
    Matrix3f m3;
    for (int i = 0; i < 9; ++i)
        valuePtr(m3)[i] = float(i + 1);
    Matrix4d m4(5.0);
    assignMatrix4dFromMatrix3f(m4, m3);
    EXPECT_EQ(m4[0], glm::dvec4(1, 2, 3, 0));
    EXPECT_EQ(m4[2], glm::dvec4(7, 8, 9, 0));
    EXPECT_EQ(m4[3], glm::dvec4(0, 0, 0, 1));
    Matrix3d back;
    assignMatrix3dFromMatrix4d(back, m4);
    EXPECT_EQ(back, Matrix3d(m3));
    Matrix3f narrowed;
    Matrix3d huge(1e300);
    assignMatrix3fFromMatrix3d(narrowed, huge);
    EXPECT_TRUE(std::isinf(narrowed[0][0]));
}

TEST(ConversionRules, Text)
{
    std::string text;
    assignStringFromBool(text, true);
    EXPECT_EQ(text, "TRUE");
    assignStringFromInt32(text, -5);
    EXPECT_EQ(text, "-5");
    assignStringFromFloat(text, 0.1f);
    EXPECT_EQ(text, "0.1");
    assignStringFromTime(text, 1234567890.123456);
    EXPECT_EQ(text, "1234567890.123456");
    assignStringFromVec3f(text, Vec3f(1, 2.5f, -3));
    EXPECT_EQ(text, "1 2.5 -3");
    assignStringFromRotation(text, Rotation(0, 1, 0, 1.5f));
    EXPECT_EQ(text, "0 1 0 1.5");
    assignStringFromColor4f(text, Color4f(1, 0, 0.5f, 1));
    EXPECT_EQ(text, "1 0 0.5 1");
    assignStringFromMatrix3f(text, Matrix3f(1.0f));
    EXPECT_EQ(text, "1 0 0 0 1 0 0 0 1");
    assignStringFromString(text, "as is \"quoted\"");
    EXPECT_EQ(text, "as is \"quoted\"");
}
