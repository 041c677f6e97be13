#include "base/NumberText.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string_view>

namespace Orvane {
namespace {

std::string_view reference(char* buffer, float value)
{
    auto [end, ec] = std::to_chars(buffer, buffer + 400, static_cast<double>(value), std::chars_format::fixed, 6);
    return std::string_view(buffer, static_cast<std::size_t>(end - buffer));
}

std::string_view fast(char* buffer, float value)
{
    return std::string_view(buffer, static_cast<std::size_t>(NumberText::writeFixed6(buffer, value) - buffer));
}

// Counts the values whose fast text differs from the general formatter's, reporting the first.
template <class Values>
int mismatches(Values&& values)
{
    char a[400], b[400];
    int  bad = 0;
    values([&](float f) {
        if (fast(b, f) != reference(a, f) && bad++ == 0)
            ADD_FAILURE() << "value bits " << std::bit_cast<std::uint32_t>(f) << ": " << fast(b, f) << " vs "
                          << reference(a, f);
    });
    return bad;
}

TEST(FixedSix, EqualsGeneralFormatterOnRandomBitPatterns)
{
    // Every exponent is equally likely, so small, large and subnormal numbers all get their share.
    EXPECT_EQ(mismatches([](auto check) {
                  std::mt19937 random(20261125);
                  for (int i = 0; i < 3000000; ++i) {
                      float f = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
                      if (std::isfinite(f))
                          check(f);
                  }
              }),
              0);
}

TEST(FixedSix, EqualsGeneralFormatterOnSceneLikeNumbers)
{
    EXPECT_EQ(mismatches([](auto check) {
                  std::mt19937                          random(7);
                  std::uniform_real_distribution<float> coordinate(-1000.0f, 1000.0f);
                  for (int i = 0; i < 2000000; ++i)
                      check(coordinate(random));
              }),
              0);
}

TEST(FixedSix, EqualsGeneralFormatterOnEveryHalfwayCase)
{
    // f * 1e6 ends in exactly .5 only for f = odd / 128; every such float, both signs.
    EXPECT_EQ(mismatches([](auto check) {
                  for (std::uint32_t odd = 1; odd < (1u << 24); odd += 2) {
                      float f = static_cast<float>(odd) / 128.0f;
                      check(f);
                      check(-f);
                  }
              }),
              0);
}

TEST(FixedSix, EqualsGeneralFormatterAtTheEdges)
{
    const float edges[] = {0.0f, -0.0f, 1.0f, -1.0f, 0.5f, 1e-7f, -1e-7f, 4.9999997e-7f, 5e-7f, -5e-7f,
                           FLT_MIN, -FLT_MIN, std::numeric_limits<float>::denorm_min(), 9.2233715e12f,
                           9.223372e12f, 9.2233725e12f, 1e13f, FLT_MAX, -FLT_MAX,
                           std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(),
                           std::numeric_limits<float>::quiet_NaN()};
    EXPECT_EQ(mismatches([&](auto check) {
                  for (float f : edges) {
                      check(f);
                      check(std::nextafter(f, 0.0f));
                  }
              }),
              0);
    char buffer[400];
    EXPECT_EQ(fast(buffer, -1e-7f), "-0.000000");
    EXPECT_EQ(fast(buffer, 1.5f), "1.500000");
    EXPECT_EQ(fast(buffer, 0.0078125f), "0.007812");  // a tie goes to the even digit
}

// The shortest texts read back through the fields' own parser as the very same value.
TEST(ShortestText, ReadsBackExactly)
{
    std::mt19937 random(11);
    char         buffer[64];
    int          bad = 0;
    for (int i = 0; i < 1000000; ++i) {
        float f = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        double d = std::bit_cast<double>((static_cast<std::uint64_t>(random()) << 32) | random());
        if (std::isfinite(f)) {
            char*       end = NumberText::writeShortest(buffer, f);
            const char* stop = buffer;
            bad += NumberText::toFloat(NumberText::parseDouble(buffer, end, &stop)) != f;
        }
        if (std::isfinite(d)) {
            char*       end = NumberText::writeShortest(buffer, d);
            const char* stop = buffer;
            bad += NumberText::parseDouble(buffer, end, &stop) != d;
        }
    }
    EXPECT_EQ(bad, 0);
    EXPECT_EQ(std::string_view(buffer, NumberText::writeShortest(buffer, 0.1f)), "0.1");
    EXPECT_EQ(std::string_view(buffer, NumberText::writeShortest(buffer, 0.1)), "0.1");
}

} // namespace
} // namespace Orvane
