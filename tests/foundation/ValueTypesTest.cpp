#include "base/Color3f.h"
#include "base/Color4f.h"
#include "base/Image.h"
#include "base/MathTypes.h"
#include "base/PCMSound.h"
#include "base/Plane.h"
#include "base/Qubit.h"
#include "base/Rotation.h"
#include "platform/pordane/ibinstream.h"
#include "platform/pordane/obinstream.h"

#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace Orvane;
using Orvane::Test::LogCapture;

namespace {

constexpr float pi = std::numbers::pi_v<float>;

void expectAxisAngle(const Rotation& r, Vec3f axis, float angle)
{
    EXPECT_NEAR(r.axis().x, axis.x, 1e-6f);
    EXPECT_NEAR(r.axis().y, axis.y, 1e-6f);
    EXPECT_NEAR(r.axis().z, axis.z, 1e-6f);
    EXPECT_NEAR(r.angle(), angle, 1e-6f);
}

} // namespace

TEST(MathTypes, MatrixScalarsAreColumnByColumn)
{
    Matrix3f m(1.0f);
    m[1][0] = 5.0f;  // column 1, row 0
    const float* p = valuePtr(m);
    EXPECT_EQ(p[3], 5.0f);
    EXPECT_EQ(componentCount<Matrix4d>, 16);
    EXPECT_EQ(componentCount<Vec2f>, 2);
    EXPECT_EQ(componentCount<Color4f>, 4);
}

TEST(Color, ComponentsConversionsAndEquality)
{
    Color3f c(0.1f, 0.2f, 0.3f);
    EXPECT_EQ(c[2], 0.3f);
    c[1] = 0.5f;
    EXPECT_EQ(c.data()[1], 0.5f);
    EXPECT_EQ(Color3f::fromVec3f(c.toVec3f()), c);
    EXPECT_NE(c, Color3f());

    Color4f d(0.1f, 0.2f, 0.3f, 0.4f);
    d[3] = 0.9f;
    EXPECT_EQ(d.a, 0.9f);
    EXPECT_EQ(Color4f::fromVec4f(d.toVec4f()), d);
    EXPECT_NE(d, Color4f(0.1f, 0.2f, 0.3f, 0.4f));
    EXPECT_EQ(Color4f::fromColor3f(Color3f(1, 2, 3)).rgb(), Color3f(1, 2, 3));
}

TEST(Plane, ComponentsAndEquality)
{
    Plane p(1.0f, 2.0f, 3.0f, 4.0f);
    EXPECT_EQ(p, Plane(Vec3f(1, 2, 3), 4.0f));
    p[3] = 5.0f;
    p[0] = 7.0f;
    EXPECT_EQ(p.distance(), 5.0f);
    EXPECT_EQ(p.normal(), Vec3f(7, 2, 3));
    EXPECT_NE(p, Plane(Vec3f(7, 2, 3), 4.0f));
}

TEST(Rotation, DefaultIsZeroAboutZ)
{
    Rotation r;
    EXPECT_EQ(r.axis(), Vec3f(0, 0, 1));
    EXPECT_EQ(r.angle(), 0.0f);
    EXPECT_EQ(r.quaternion(), glm::quat(1, 0, 0, 0));
}

TEST(Rotation, QuaternionGivesBackAxisAndAngle)
{
    const Vec3f axes[] = {Vec3f(1, 0, 0), Vec3f(0, -1, 0), glm::normalize(Vec3f(1, 2, 3))};
    const float angles[] = {0.001f, 0.5f, pi / 2, 2.5f, 1.5f * pi};
    for (const Vec3f& axis : axes) {
        for (float angle : angles) {
            Rotation r(Rotation(axis, angle).quaternion());
            EXPECT_TRUE(r.isQuaternion());
            expectAxisAngle(r, axis, angle);
        }
    }
}

TEST(Rotation, HalfTurnKeepsAxis)
{
    Rotation r(glm::angleAxis(pi, Vec3f(0, 1, 0)));
    expectAxisAngle(r, Vec3f(0, 1, 0), pi);
    // Exact quaternion with w == 0.
    r.setQuaternion(glm::quat(0, 0, 0, 1));
    expectAxisAngle(r, Vec3f(0, 0, 1), pi);
}

TEST(Rotation, DegenerateQuaternionsGiveNoNaN)
{
    Rotation identity(glm::quat(1, 0, 0, 0));
    expectAxisAngle(identity, Vec3f(0, 0, 1), 0.0f);

    Rotation zero(glm::quat(0, 0, 0, 0));
    expectAxisAngle(zero, Vec3f(0, 0, 1), 0.0f);

    Rotation scaled(glm::quat(0, 3, 0, 0));  // not normalised
    expectAxisAngle(scaled, Vec3f(1, 0, 0), pi);

    // A zero axis has no quaternion direction: identity, not NaN.
    Rotation noAxis(0, 0, 0, 1.0f);
    glm::quat q = noAxis.quaternion();
    EXPECT_EQ(q, glm::quat(1, 0, 0, 0));
}

TEST(Rotation, QuaternionIsKeptUntilAxisAngleIsSet)
{
    glm::quat q = glm::angleAxis(0.7f, Vec3f(1, 0, 0));
    Rotation r(q);
    EXPECT_FLOAT_EQ(r[3], 0.7f);          // reading updates lazily...
    EXPECT_EQ(r.quaternion(), q);         // ...but keeps the quaternion as given
    r.setComponent(3, 0.2f);              // writing a component switches form
    EXPECT_FALSE(r.isQuaternion());
    expectAxisAngle(r, Vec3f(1, 0, 0), 0.2f);
    EXPECT_NEAR(glm::angle(r.quaternion()), 0.2f, 1e-6f);

    r.setQuaternion(q);
    r.setAngle(1.0f);  // keeps the axis derived from the quaternion
    expectAxisAngle(r, Vec3f(1, 0, 0), 1.0f);
}

TEST(Rotation, EqualityComparesAxisAndAngle)
{
    EXPECT_EQ(Rotation(1, 0, 0, 0.5f), Rotation(1, 0, 0, 0.5f));
    // The same turn written differently is a different value.
    EXPECT_NE(Rotation(1, 0, 0, 0.5f), Rotation(-1, 0, 0, -0.5f));
    // A stale quaternion form is brought up to date before comparing.
    Rotation fromQ(glm::quat(0, 0, 0, 1));
    EXPECT_EQ(fromQ, Rotation(0, 0, 1, float(2.0 * std::atan2(1.0, 0.0))));
    Rotation copy = fromQ;
    EXPECT_EQ(copy, fromQ);
}

TEST(Image, TextRoundTrip)
{
    Image img(2, 2, 4, {0xFF0000FFu, 0x0u, 0xABCDEF01u, 0x80u});
    EXPECT_EQ(img.toText(), "2 2 4 0xFF0000FF 0x0 0xABCDEF01 0x80");
    Image back;
    ASSERT_TRUE(back.fromText(img.toText().c_str()));
    EXPECT_EQ(back, img);

    EXPECT_EQ(Image().toText(), "0 0 0");
    ASSERT_TRUE(back.fromText("  "));
    EXPECT_EQ(back, Image());
}

TEST(Image, ReadsX3DInput)
{
    Image img;
    // Decimal and hex, commas and line breaks; a leading zero is not octal; negative wraps.
    ASSERT_TRUE(img.fromText(" 3,1\n1\t0xff, 010 -1 "));
    EXPECT_EQ(img.pixels(), (std::vector<uint32_t>{0xFF, 10, 0xFFFFFFFFu}));
    EXPECT_EQ(img.pixel(2, 0), 0xFFFFFFFFu);

    // Two images one after the other.
    const char* text = "1 1 1 0x7F 1 2 3 0xFF0000 0x00FF00";
    const char* end = nullptr;
    ASSERT_TRUE(img.fromText(text, &end));
    EXPECT_EQ(img, Image(1, 1, 1, {0x7F}));
    ASSERT_TRUE(img.fromText(end, &end));
    EXPECT_EQ(img, Image(1, 2, 3, {0xFF0000, 0x00FF00}));
    EXPECT_EQ(*end, '\0');
}

TEST(Image, MissingPixelsBecomeZero)
{
    LogCapture log;
    Image img;
    ASSERT_TRUE(img.fromText("2 2 1 5 6"));
    EXPECT_EQ(img.pixels(), (std::vector<uint32_t>{5, 6, 0, 0}));
    EXPECT_EQ(log.count("Image: 2 of 4 pixels missing, set to 0\n", LOG_WARNING), 1) << log.all();

    // Garbage ends the pixels as well, and is where reading stopped.
    const char* end = nullptr;
    ASSERT_TRUE(img.fromText("2 1 1 7 zz", &end));
    EXPECT_EQ(img.pixels(), (std::vector<uint32_t>{7, 0}));
    EXPECT_STREQ(end, " zz");
}

TEST(Image, BadHeadersLeaveTheImageUnchanged)
{
    LogCapture log;
    const Image before(1, 1, 3, {0x123456});
    Image img = before;

    EXPECT_FALSE(img.fromText("2 2 5 1 2 3 4"));
    EXPECT_EQ(log.count("Image: invalid number of components (5), image not read\n", LOG_WARNING), 1)
        << log.all();
    EXPECT_FALSE(img.fromText("1 1 -1 0"));
    EXPECT_FALSE(img.fromText("-2 2 3"));
    EXPECT_FALSE(img.fromText("2 x"));
    EXPECT_FALSE(img.fromText("abc"));
    EXPECT_EQ(log.count("Image: incomplete image header, image not read\n"), 2);
    // Sizes that would need unbounded memory are refused before anything is allocated.
    EXPECT_FALSE(img.fromText("100000 100000 3 0xFF"));
    EXPECT_FALSE(img.fromText("99999999999999999999999 1 3"));
    EXPECT_FALSE(img.fromText("2147483647 2147483647 1"));
    EXPECT_EQ(img, before);

    EXPECT_FALSE(img.set(2, 2, 7));
    EXPECT_EQ(img, before);
}

TEST(Image, SetFitsPixelsToSize)
{
    Image img;
    ASSERT_TRUE(img.set(2, 1, 3, {1, 2, 3}));
    EXPECT_EQ(img.pixels(), (std::vector<uint32_t>{1, 2}));
    ASSERT_TRUE(img.set(1, 2, 3));
    EXPECT_EQ(img.pixels(), (std::vector<uint32_t>{0, 0}));
    EXPECT_NE(img, Image(2, 1, 3, {0, 0}));  // same pixels, other shape
}

TEST(Image, BinaryRoundTrip)
{
    const Image img(3, 1, 4, {0xFFFFFFFFu, 0x0u, 0x80000001u});
    Pordane::obinstream out;
    img.write(out);
    std::string bytes = out.take();
    EXPECT_EQ(bytes.size(), 6u * 4u);

    Image back;
    Pordane::ibinstream in(bytes);
    EXPECT_EQ(back.read(in), Image::BinStatus::Ok);
    EXPECT_EQ(back, img);
    EXPECT_TRUE(in.atEnd());
}

TEST(Image, BinaryRefusesCorruptInput)
{
    const Image before(1, 1, 1, {42});
    auto encode = [](int w, int h, int c, int pixels) {
        Pordane::obinstream out;
        out << w << h << c;
        for (int i = 0; i < pixels; ++i)
            out << i;
        return out.take();
    };
    auto readInto = [&](const std::string& bytes, int* components = nullptr) {
        Image img = before;
        Pordane::ibinstream in(bytes);
        Image::BinStatus status = img.read(in, components);
        EXPECT_EQ(img, before);
        return status;
    };

    std::string whole = encode(2, 2, 3, 4);
    EXPECT_EQ(readInto(whole.substr(0, whole.size() - 1)), Image::BinStatus::Truncated);
    EXPECT_EQ(readInto(whole.substr(0, 8)), Image::BinStatus::Truncated);
    // A huge but allowed size over a short input fails before allocating.
    EXPECT_EQ(readInto(encode(4096, 4096, 3, 1)), Image::BinStatus::Truncated);
    EXPECT_EQ(readInto(encode(1 << 30, 1 << 30, 3, 0)), Image::BinStatus::InvalidSize);
    EXPECT_EQ(readInto(encode(-1, 1, 3, 0)), Image::BinStatus::InvalidSize);
    int components = 0;
    EXPECT_EQ(readInto(encode(1, 1, 9, 1), &components), Image::BinStatus::InvalidComponents);
    EXPECT_EQ(components, 9);
}

TEST(PCMSound, DurationAndEquality)
{
    PCMSound s(std::vector<int16_t>(44100 * 2 + 1, 3), 2, 44100);
    EXPECT_EQ(s.frameCount(), 44100u);
    EXPECT_DOUBLE_EQ(s.duration(), 1.0);
    EXPECT_EQ(PCMSound(std::vector<int16_t>(5), 0, 44100).duration(), 0.0);
    EXPECT_EQ(PCMSound(std::vector<int16_t>(5), 1, 0).duration(), 0.0);
    PCMSound other = s;
    EXPECT_EQ(other, s);
    other.setSampleRate(22050);
    EXPECT_NE(other, s);
}

TEST(Qubit, UnsetRoundTripAndEquality)
{
    Qubit q;
    EXPECT_FALSE(q.isSet());
    EXPECT_EQ(q.toText(), "UNSET");
    EXPECT_EQ(q, Qubit());

    Qubit zero({0, 0}, {0, 0});
    EXPECT_NE(zero, Qubit());  // a state of zeros is still a state

    Qubit r;
    ASSERT_TRUE(r.fromText("0.5 -0.25 1e-07 2"));
    EXPECT_EQ(r.toText(), "0.5 -0.25 1e-07 2");
    EXPECT_EQ(r, Qubit({0.5, -0.25}, {1e-7, 2}));
    ASSERT_TRUE(r.fromText(" UNSET"));
    EXPECT_EQ(r, Qubit());
}

TEST(Qubit, ReaderEdgeCases)
{
    Qubit q({1, 0}, {0, 0});
    EXPECT_FALSE(q.fromText("UNSETX"));
    EXPECT_FALSE(q.fromText("maybe"));
    EXPECT_EQ(q, Qubit({1, 0}, {0, 0}));

    ASSERT_TRUE(q.fromText("0.6, 0.8"));  // missing numbers are 0
    EXPECT_EQ(q, Qubit({0.6, 0.8}, {0, 0}));

    const char* end = nullptr;
    ASSERT_TRUE(q.fromText("UNSET, 1 2 3 4", &end));
    EXPECT_FALSE(q.isSet());
    ASSERT_TRUE(q.fromText(end, &end));
    EXPECT_EQ(q, Qubit({1, 2}, {3, 4}));
    EXPECT_EQ(*end, '\0');

    ASSERT_TRUE(q.fromText(nullptr));
    EXPECT_FALSE(q.isSet());
}
