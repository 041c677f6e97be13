// The value conversions between kinds: which pairs are refused, and what the others produce.
#include "base/BaseTypeAssign.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// The refused pairs as the format defines them, written out independently of the library's own
// table: one row per target kind, one column per source kind, both in this order; x = refused.
const std::vector<std::string> kinds = {"Bool",     "Color3f",  "Color4f", "Double", "Float", "Image", "Int32",
                                        "Matrix3d", "Matrix3f", "Matrix4d", "Matrix4f", "Rotation", "Sound",
                                        "String",   "Time",     "Vec2d",   "Vec2f",  "Vec3d", "Vec3f", "Vec4d",
                                        "Vec4f"};
const char* const refusedGrid[] = {
    ".xx....xxxxxxx.......", // Bool
    "x..xxxxxxxxxxxxxx....", // Color3f
    "x..xxxxxxxxxxxxxx....", // Color4f
    ".xx....xxxxxxx.......", // Double
    ".xx....xxxxxxx.......", // Float
    "x..xx.xxxxxxxxxxxxxxx", // Image
    ".xx....xxxxxxx.......", // Int32
    "xxxxxxx.....xxxxxxxxx", // Matrix3d
    "xxxxxxx.....xxxxxxxxx", // Matrix3f
    "xxxxxxx.....xxxxxxxxx", // Matrix4d
    "xxxxxxx.....xxxxxxxxx", // Matrix4f
    ".xx..x......xx.xx....", // Rotation
    "xxxxxxxxxxxx.xxxxxxxx", // Sound
    ".....x......x........", // String
    ".xx....xxxxxxx.......", // Time
    "xxxxx.xxxxxxxxx......", // Vec2d
    "xxxxx.xxxxxxxxx......", // Vec2f
    "x..xx.xxxxx.xxx....xx", // Vec3d
    "x..xx.xxxxx.xxx....xx", // Vec3f
    "x..xx.xxxxx.xxx......", // Vec4d
    "x..xx.xxxxx.xxx......", // Vec4f
};

bool isRefused(const std::string& target, const std::string& source)
{
    auto index = [](const std::string& k) { return std::find(kinds.begin(), kinds.end(), k) - kinds.begin(); };
    return refusedGrid[index(target)][index(source)] == 'x';
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
         bool converted = assign##TargetKind##From##SourceKind(to, sample<SourceType>(1));         \
         return std::make_pair(converted, to == before);                                           \
     }},

const std::vector<PairCase>& pairCases()
{
    static const std::vector<PairCase> cases = {ORV_ASSIGN_PAIRS(PAIR_CASE)};
    return cases;
}
#undef PAIR_CASE

// The target after converting `from` into `start`.
template <class T, class S>
T conv(bool (*assign)(T&, const S&), const std::type_identity_t<S>& from, std::type_identity_t<T> start = T{})
{
    assign(start, from);
    return start;
}

} // namespace

TEST(ConversionTable, EveryPairRefusesOrConvertsAsTabled)
{
    ASSERT_EQ(pairCases().size(), 21u * 21u);
    int refusedCount = 0;
    for (const PairCase& pair : pairCases()) {
        SCOPED_TRACE(pair.source + " to " + pair.target);
        LogCapture log;
        auto [converted, unchanged] = pair.run();
        if (isRefused(pair.target, pair.source)) {
            ++refusedCount;
            EXPECT_FALSE(converted);
            EXPECT_TRUE(unchanged);
            EXPECT_EQ(log.count(pair.source + " to " + pair.target + " conversion NI!\n", LOG_WARNING, "OpenSG"), 1);
            EXPECT_EQ(log.size(), 1u) << log.all();
        } else {
            EXPECT_TRUE(converted);
            EXPECT_EQ(log.size(), 0u) << log.all();
        }
    }
    EXPECT_EQ(refusedCount, 262);
    for (int t = 0; t < 21; ++t) {
        EXPECT_EQ(assignKindName(AssignKind(t)), kinds[t]);
        for (int s = 0; s < 21; ++s)
            EXPECT_EQ(assignRefused(AssignKind(t), AssignKind(s)), refusedGrid[t][s] == 'x') << t << " " << s;
    }

    AssignKind kind;
    ASSERT_TRUE(assignKindOf(BaseType::ColorRGBA, kind));
    EXPECT_EQ(kind, AssignKind::Color4f);
    for (BaseType outside : {BaseType::Any, BaseType::Node, BaseType::Plane, BaseType::Qubit})
        EXPECT_FALSE(assignKindOf(outside, kind));
}

// The values the conversions produce, at their edges.
TEST(ConversionRules, Values)
{
    EXPECT_EQ(conv(assignInt32FromFloat, 2.9f), 2);
    EXPECT_EQ(conv(assignInt32FromDouble, -2.9), -2);
    EXPECT_EQ(conv(assignInt32FromDouble, 1e20), INT_MAX);
    EXPECT_EQ(conv(assignInt32FromFloat, -1e20f), INT_MIN);
    EXPECT_EQ(conv(assignInt32FromDouble, std::nan(""), 5), 0);
    EXPECT_TRUE(conv(assignBoolFromFloat, std::nanf("")));
    EXPECT_FALSE(conv(assignBoolFromDouble, -0.0, true));
    EXPECT_TRUE(std::isinf(conv(assignFloatFromDouble, 1e300)));
    EXPECT_EQ(conv(assignFloatFromVec3d, Vec3d(4, 5, 6)), 4.0f);
    EXPECT_TRUE(conv(assignBoolFromVec4d, Vec4d(0, 0, 0, 1)));

    // Widening fills with zeros, colours get an opaque alpha.
    EXPECT_EQ(conv(assignVec4dFromVec3f, Vec3f(1, 2, 3), Vec4d(9)), Vec4d(1, 2, 3, 0));
    EXPECT_EQ(conv(assignVec2dFromVec4f, Vec4f(1, 2, 3, 4)), Vec2d(1, 2));
    EXPECT_EQ(conv(assignColor4fFromVec3d, Vec3d(1, 0, 0)), Color4f(1, 0, 0, 1));
    EXPECT_EQ(conv(assignVec4fFromColor3f, Color3f(0.1f, 0.2f, 0.3f), Vec4f(9)), Vec4f(0.1f, 0.2f, 0.3f, 0));

    const Image image(2, 3, 4);
    EXPECT_EQ(conv(assignInt32FromImage, image), 6);
    EXPECT_EQ(conv(assignVec3fFromImage, image), Vec3f(2, 3, 4));
    EXPECT_FALSE(conv(assignBoolFromImage, Image(), true));
    EXPECT_EQ(conv(assignImageFromColor4f, Color4f(0, 0, 1, 1)), Image(1, 1, 4, {0x0000FFFF}));
    EXPECT_EQ(conv(assignImageFromColor3f, Color3f(2, -1, std::nanf(""))), Image(1, 1, 3, {0xFF0000}));

    EXPECT_EQ(conv(assignStringFromFloat, 0.1f), "0.1");
    EXPECT_EQ(conv(assignStringFromTime, 1234567890.123456), "1234567890.123456");
    EXPECT_EQ(conv(assignStringFromRotation, Rotation(0, 1, 0, 1.5f)), "0 1 0 1.5");
    EXPECT_EQ(conv(assignStringFromMatrix3f, Matrix3f(1.0f)), "1 0 0 0 1 0 0 0 1");
}

TEST(ConversionRules, RotationsAndMatrices)
{
    EXPECT_EQ(conv(assignRotationFromVec4f, Vec4f(0, 1, 0, 1.5f)), Rotation(0, 1, 0, 1.5f));
    EXPECT_EQ(conv(assignRotationFromVec3d, Vec3d(0, 0, 2)), Rotation(0, 0, 1, 2));
    EXPECT_EQ(conv(assignRotationFromVec3f, Vec3f(0, 0, 0), Rotation(1, 0, 0, 1)), Rotation());
    EXPECT_EQ(conv(assignRotationFromFloat, 0.5f), Rotation(0, 0, 1, 0.5f));
    EXPECT_EQ(conv(assignVec3fFromRotation, Rotation(0, 2, 0, 1.5f)), Vec3f(0, 1.5f, 0));
    EXPECT_EQ(conv(assignRotationFromMatrix4f, Matrix4f(0.0f), Rotation(1, 0, 0, 1)), Rotation());

    // Through a matrix and back: the same turn.
    const Rotation turn(Vec3f(1, 2, 3) / std::sqrt(14.0f), 0.75f);
    Rotation back = conv(assignRotationFromMatrix3f, conv(assignMatrix3fFromRotation, turn));
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(back[i], turn[i], 1e-5) << i;
    // A 4 x 4 matrix with scale and translation gives its rotation part.
    Matrix4d m4 = conv(assignMatrix4dFromRotation, Rotation(0, 0, 1, 0.5f));
    m4[0] *= 3.0;
    m4[1] *= 0.5;
    m4[3] = glm::dvec4(10, 20, 30, 1);
    back = conv(assignRotationFromMatrix4d, m4);
    EXPECT_NEAR(back.angle(), 0.5f, 1e-6);
    EXPECT_NEAR(back.axis().z, 1.0f, 1e-6);

    Matrix3f m3;
    for (int i = 0; i < 9; ++i)
        valuePtr(m3)[i] = float(i + 1);
    const Matrix4d wide = conv(assignMatrix4dFromMatrix3f, m3, Matrix4d(5.0));
    EXPECT_EQ(wide[2], glm::dvec4(7, 8, 9, 0));
    EXPECT_EQ(wide[3], glm::dvec4(0, 0, 0, 1));
    EXPECT_EQ(conv(assignMatrix3dFromMatrix4d, wide), Matrix3d(m3));
    EXPECT_TRUE(std::isinf(conv(assignMatrix3fFromMatrix3d, Matrix3d(1e300))[0][0]));
}
