// The binary streams: byte layout, round trips and reads past the end of the data.
#include "platform/pordane/ibinstream.h"
#include "platform/pordane/obinstream.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

using Pordane::ibinstream;
using Pordane::obinstream;

namespace {

std::string bytes(std::initializer_list<int> values)
{
    std::string text;
    for (int v : values)
        text += static_cast<char>(v);
    return text;
}

template <class T>
std::string encode(const T& value)
{
    obinstream out;
    out << value;
    return out.str();
}

// Writing a pointer other than a C string, or a plain char, must not compile.
template <class T>
concept Writable = requires(const obinstream& out, T value) { out << value; };
static_assert(!Writable<int*>);
static_assert(!Writable<char>);
static_assert(Writable<const char*>);

} // namespace

TEST(BinStream, ByteLayoutIsLittleEndianWithLengthPrefixedStrings)
{
    EXPECT_EQ(encode(true), bytes({1}));
    EXPECT_EQ(encode(false), bytes({0}));
    EXPECT_EQ(encode(static_cast<unsigned char>(0xAB)), bytes({0xAB}));
    EXPECT_EQ(encode(static_cast<unsigned short>(0x1234)), bytes({0x34, 0x12}));
    EXPECT_EQ(encode(1), bytes({1, 0, 0, 0}));
    EXPECT_EQ(encode(-2), bytes({0xFE, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(encode(0x0102030405060708L), bytes({8, 7, 6, 5, 4, 3, 2, 1}));
    EXPECT_EQ(encode(-1L), std::string(8, '\xFF'));
    EXPECT_EQ(encode(1.0f), bytes({0, 0, 0x80, 0x3F}));
    EXPECT_EQ(encode(-2.0), bytes({0, 0, 0, 0, 0, 0, 0, 0xC0}));
    EXPECT_EQ(encode(std::string("ab")), bytes({2, 0, 0, 0, 'a', 'b'}));
    EXPECT_EQ(encode("ab"), bytes({2, 0, 0, 0, 'a', 'b'}));  // a literal is a string, not a bool
    EXPECT_EQ(encode(std::string()), bytes({0, 0, 0, 0}));

    // Any byte but zero reads as true.
    ibinstream in(bytes({2, 0x80}));
    bool       a = false, b = false;
    in >> a >> b;
    EXPECT_TRUE(a && b);
}

TEST(BinStream, EveryTypeRoundTrips)
{
    const std::string withNul("a\0b\0\0c", 6);
    const std::string big(70000, 'x');  // longer than a 16-bit length could say
    obinstream out;
    out << true << false << static_cast<unsigned char>(255) << static_cast<unsigned short>(65535) << INT_MIN
        << INT_MAX << LONG_MIN << LONG_MAX << -0.0f << std::numeric_limits<float>::denorm_min()
        << std::numeric_limits<double>::infinity() << 3.141592653589793 << withNul << std::string() << big;

    ibinstream     in(out.str());
    bool           b1 = false, b2 = true;
    unsigned char  uc = 0;
    unsigned short us = 0;
    int            i1 = 0, i2 = 0;
    long           l1 = 0, l2 = 0;
    float          f1 = 1, f2 = 0;
    double         d1 = 0, d2 = 0;
    std::string    s1, s2 = "junk", s3;
    in >> b1 >> b2 >> uc >> us >> i1 >> i2 >> l1 >> l2 >> f1 >> f2 >> d1 >> d2 >> s1 >> s2 >> s3;
    ASSERT_TRUE(in.good());
    EXPECT_TRUE(in.atEnd());
    EXPECT_TRUE(b1 && !b2 && uc == 255 && us == 65535);
    EXPECT_TRUE(i1 == INT_MIN && i2 == INT_MAX && l1 == LONG_MIN && l2 == LONG_MAX);
    EXPECT_TRUE(f1 == 0.0f && std::signbit(f1));
    EXPECT_EQ(f2, std::numeric_limits<float>::denorm_min());
    EXPECT_EQ(d1, std::numeric_limits<double>::infinity());
    EXPECT_EQ(d2, 3.141592653589793);
    EXPECT_EQ(s1, withNul);
    EXPECT_EQ(s2, "");
    EXPECT_EQ(s3, big);
}

TEST(BinStream, ShortReadFailsZeroesTargetAndStaysInsideTheData)
{
    // Three bytes cannot make an int; the bytes that are there must not be consumed either.
    const std::string data = bytes({1, 2, 3});
    ibinstream in(data.data(), data.size());
    int value = 42;
    in >> value;
    EXPECT_TRUE(in.fail());
    EXPECT_FALSE(static_cast<bool>(in));
    EXPECT_EQ(value, 0);
    EXPECT_EQ(in.position(), 0u);
    EXPECT_EQ(in.remaining(), 3u);

    // Failure is sticky, even for a value that would fit.
    unsigned char byte = 9;
    in >> byte;
    EXPECT_EQ(byte, 0);

    for (std::size_t size = 0; size < 8; ++size) {
        std::string seven(size, '\x7F');
        ibinstream shortDouble(seven);
        double d = 1.5;
        long l = 7;
        shortDouble >> d;
        EXPECT_TRUE(shortDouble.fail());
        EXPECT_EQ(d, 0.0);
        shortDouble >> l;
        EXPECT_EQ(l, 0);
    }

    ibinstream empty{std::string_view()};
    bool flag = true;
    empty >> flag;
    EXPECT_FALSE(flag);
    EXPECT_TRUE(empty.fail());
}

TEST(BinStream, TruncatedOrCorruptStringLengthIsRefused)
{
    std::string text = "keep";
    ibinstream truncated(bytes({5, 0, 0, 0, 'a', 'b', 'c'}));
    truncated >> text;
    EXPECT_TRUE(truncated.fail());
    EXPECT_EQ(text, "");
    EXPECT_EQ(truncated.position(), 0u);

    // A length of 4 GiB must be refused before anything is allocated for it.
    text = "keep";
    ibinstream corrupt(bytes({0xFF, 0xFF, 0xFF, 0xFF, 'x', 'y'}));
    corrupt >> text;
    EXPECT_TRUE(corrupt.fail());
    EXPECT_TRUE(text.empty());

    ibinstream halfLength(bytes({1, 0}));
    EXPECT_TRUE((halfLength >> text).fail());
}

TEST(BinStream, OutputKeepsGrowingAndTakeHandsItsBytesToAReader)
{
    obinstream out(16);  // far less than what follows
    out << 1 << 2;
    EXPECT_EQ(out.size(), 8u);
    EXPECT_EQ(out.str().size(), 8u);
    out << 3.0f;  // writing after str() must append, not overwrite or leave gaps
    EXPECT_EQ(out.str(), encode(1) + encode(2) + encode(3.0f));
    const int count = 100000;
    for (int i = 0; i < count; ++i)
        out << static_cast<float>(i) * 0.5f;
    ASSERT_EQ(out.size(), 12u + 4u * count);

    ibinstream in(out.take());  // the stream owns the bytes now
    EXPECT_EQ(out.size(), 0u);
    int   one = 0, two = 0;
    float three = 0;
    std::vector<float> values(static_cast<std::size_t>(count));
    in >> one >> two >> three;
    for (float& v : values)
        in >> v;
    EXPECT_TRUE(in.good());
    EXPECT_TRUE(in.atEnd());
    EXPECT_TRUE(one == 1 && two == 2 && three == 3.0f);
    EXPECT_EQ(values[0], 0.0f);
    EXPECT_EQ(values[99999], 49999.5f);

    out << static_cast<unsigned char>(7);
    EXPECT_EQ(out.str(), bytes({7}));
    out.clear();
    EXPECT_EQ(out.str(), "");
}
