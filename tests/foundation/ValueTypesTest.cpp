// The value types behind the fields: rotations, images, sounds and qubits. The component order of
// colours, planes and matrices is pinned by the field text and binary tests.
#include "base/Image.h"
#include "base/MathTypes.h"
#include "base/PCMSound.h"
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

TEST(Rotation, QuaternionGivesBackAxisAndAngle)
{
    for (const Vec3f& axis : {Vec3f(1, 0, 0), Vec3f(0, -1, 0), glm::normalize(Vec3f(1, 2, 3))}) {
        for (float angle : {0.001f, 0.5f, pi / 2, 2.5f, pi, 1.5f * pi}) {
            Rotation r(Rotation(axis, angle).quaternion());
            EXPECT_TRUE(r.isQuaternion());
            expectAxisAngle(r, axis, angle);
        }
    }
    EXPECT_EQ(Rotation().quaternion(), glm::quat(1, 0, 0, 0));
    // Exact half turn, identity, zero and unnormalised quaternions; a zero axis: no NaN.
    expectAxisAngle(Rotation(glm::quat(0, 0, 0, 1)), Vec3f(0, 0, 1), pi);
    expectAxisAngle(Rotation(glm::quat(1, 0, 0, 0)), Vec3f(0, 0, 1), 0.0f);
    expectAxisAngle(Rotation(glm::quat(0, 0, 0, 0)), Vec3f(0, 0, 1), 0.0f);
    expectAxisAngle(Rotation(glm::quat(0, 3, 0, 0)), Vec3f(1, 0, 0), pi);
    EXPECT_EQ(Rotation(0, 0, 0, 1.0f).quaternion(), glm::quat(1, 0, 0, 0));
}

TEST(Rotation, QuaternionIsKeptUntilAxisAngleIsSet)
{
    glm::quat q = glm::angleAxis(0.7f, Vec3f(1, 0, 0));
    Rotation  r(q);
    EXPECT_FLOAT_EQ(r[3], 0.7f);   // reading updates lazily...
    EXPECT_EQ(r.quaternion(), q);  // ...but keeps the quaternion as given
    r.setComponent(3, 0.2f);       // writing a component switches form
    EXPECT_FALSE(r.isQuaternion());
    expectAxisAngle(r, Vec3f(1, 0, 0), 0.2f);
    EXPECT_NEAR(glm::angle(r.quaternion()), 0.2f, 1e-6f);
    r.setQuaternion(q);
    r.setAngle(1.0f);  // keeps the axis derived from the quaternion
    expectAxisAngle(r, Vec3f(1, 0, 0), 1.0f);

    // Equality compares axis and angle: the same turn written differently is another value; a
    // stale quaternion form is brought up to date first.
    EXPECT_NE(Rotation(1, 0, 0, 0.5f), Rotation(-1, 0, 0, -0.5f));
    EXPECT_EQ(Rotation(glm::quat(0, 0, 0, 1)), Rotation(0, 0, 1, float(2.0 * std::atan2(1.0, 0.0))));
}

TEST(Image, Text)
{
    Image img(2, 2, 4, {0xFF0000FFu, 0x0u, 0xABCDEF01u, 0x80u});
    EXPECT_EQ(img.toText(), "2 2 4 0xFF0000FF 0x0 0xABCDEF01 0x80");
    Image back;
    ASSERT_TRUE(back.fromText(img.toText().c_str()));
    EXPECT_EQ(back, img);
    EXPECT_EQ(Image().toText(), "0 0 0");
    ASSERT_TRUE(back.fromText("  "));
    EXPECT_EQ(back, Image());

    // Decimal and hex, commas and line breaks; a leading zero is not octal; negative wraps.
    ASSERT_TRUE(img.fromText(" 3,1\n1\t0xff, 010 -1 "));
    EXPECT_EQ(img.pixels(), (std::vector<uint32_t>{0xFF, 10, 0xFFFFFFFFu}));
    // Two images one after the other.
    const char* end = nullptr;
    ASSERT_TRUE(img.fromText("1 1 1 0x7F 1 2 3 0xFF0000 0x00FF00", &end));
    EXPECT_EQ(img, Image(1, 1, 1, {0x7F}));
    ASSERT_TRUE(img.fromText(end, &end));
    EXPECT_EQ(img, Image(1, 2, 3, {0xFF0000, 0x00FF00}));
    EXPECT_EQ(*end, '\0');

    // Missing pixels become zero; garbage ends the pixels as well, and is where reading stopped.
    LogCapture log;
    ASSERT_TRUE(img.fromText("2 2 1 5 6"));
    EXPECT_EQ(img.pixels(), (std::vector<uint32_t>{5, 6, 0, 0}));
    EXPECT_EQ(log.count("Image: 2 of 4 pixels missing, set to 0\n", LOG_WARNING), 1) << log.all();
    ASSERT_TRUE(img.fromText("2 1 1 7 zz", &end));
    EXPECT_EQ(img.pixels(), (std::vector<uint32_t>{7, 0}));
    EXPECT_STREQ(end, " zz");
}

TEST(Image, BadHeadersLeaveTheImageUnchanged)
{
    LogCapture  log;
    const Image before(1, 1, 3, {0x123456});
    Image       img = before;
    EXPECT_FALSE(img.fromText("2 2 5 1 2 3 4"));
    EXPECT_EQ(log.count("Image: invalid number of components (5), image not read\n", LOG_WARNING), 1) << log.all();
    for (const char* bad : {"1 1 -1 0", "-2 2 3", "2 x", "abc",
                            // sizes that would need unbounded memory, refused before allocating
                            "100000 100000 3 0xFF", "99999999999999999999999 1 3", "2147483647 2147483647 1"})
        EXPECT_FALSE(img.fromText(bad)) << bad;
    EXPECT_EQ(log.count("Image: incomplete image header, image not read\n"), 2);
    EXPECT_FALSE(img.set(2, 2, 7));
    EXPECT_EQ(img, before);

    // set fits the pixels to the size.
    ASSERT_TRUE(img.set(2, 1, 3, {1, 2, 3}));
    EXPECT_EQ(img.pixels(), (std::vector<uint32_t>{1, 2}));
    ASSERT_TRUE(img.set(1, 2, 3));
    EXPECT_EQ(img.pixels(), (std::vector<uint32_t>{0, 0}));
    EXPECT_NE(img, Image(2, 1, 3, {0, 0}));  // same pixels, other shape
}

TEST(Image, Binary)
{
    const Image         img(3, 1, 4, {0xFFFFFFFFu, 0x0u, 0x80000001u});
    Pordane::obinstream out;
    img.write(out);
    const std::string bytes = out.take();
    EXPECT_EQ(bytes.size(), 6u * 4u);
    Image               back;
    Pordane::ibinstream in(bytes);
    EXPECT_EQ(back.read(in), Image::BinStatus::Ok);
    EXPECT_EQ(back, img);
    EXPECT_TRUE(in.atEnd());

    const Image before(1, 1, 1, {42});
    auto        encode = [](int w, int h, int c, int pixels) {
        Pordane::obinstream out;
        out << w << h << c;
        for (int i = 0; i < pixels; ++i)
            out << i;
        return out.take();
    };
    auto readInto = [&](const std::string& bytes, int* components = nullptr) {
        Image               img = before;
        Pordane::ibinstream in(bytes);
        Image::BinStatus    status = img.read(in, components);
        EXPECT_EQ(img, before);
        return status;
    };
    const std::string whole = encode(2, 2, 3, 4);
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
    other.setSampleRate(22050);
    EXPECT_NE(other, s);
}

TEST(Qubit, TextAndEquality)
{
    Qubit q({1, 0}, {0, 0});
    EXPECT_EQ(Qubit().toText(), "UNSET");
    EXPECT_NE(Qubit({0, 0}, {0, 0}), Qubit());  // a state of zeros is still a state
    ASSERT_TRUE(q.fromText("0.5 -0.25 1e-07 2"));
    EXPECT_EQ(q, Qubit({0.5, -0.25}, {1e-7, 2}));
    EXPECT_EQ(q.toText(), "0.5 -0.25 1e-07 2");
    ASSERT_TRUE(q.fromText("0.6, 0.8"));  // missing numbers are 0
    EXPECT_EQ(q, Qubit({0.6, 0.8}, {0, 0}));
    EXPECT_FALSE(q.fromText("UNSETX"));
    EXPECT_FALSE(q.fromText("maybe"));
    EXPECT_EQ(q, Qubit({0.6, 0.8}, {0, 0}));

    const char* end = nullptr;
    ASSERT_TRUE(q.fromText(" UNSET, 1 2 3 4", &end));
    EXPECT_FALSE(q.isSet());
    ASSERT_TRUE(q.fromText(end, &end));
    EXPECT_EQ(q, Qubit({1, 2}, {3, 4}));
    EXPECT_EQ(*end, '\0');
    ASSERT_TRUE(q.fromText(nullptr));
    EXPECT_FALSE(q.isSet());
}
