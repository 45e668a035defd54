// The fast number formatting of leaves writes exactly what the standard
// stream writes with its default format.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <sstream>

#include "struct/StructNum.h"

namespace {

template <class T>
std::string streamed(T v) {
    std::stringstream s;
    s << v;
    return s.str();
}

template <class T>
std::string formatted(T v) {
    char buffer[32];
    int n = vexa::formatNumber(buffer, v);
    EXPECT_EQ(static_cast<size_t>(n), std::strlen(buffer));
    return buffer;
}

double fromBits(uint64_t bits) {
    double d;
    std::memcpy(&d, &bits, sizeof d);
    return d;
}

float fromBits32(uint32_t bits) {
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
}

}  // namespace

TEST(NumberFormat, IntegersAtTheirLimits) {
    EXPECT_EQ(formatted(std::numeric_limits<short>::min()), streamed(std::numeric_limits<short>::min()));
    EXPECT_EQ(formatted(std::numeric_limits<unsigned short>::max()),
              streamed(std::numeric_limits<unsigned short>::max()));
    EXPECT_EQ(formatted(std::numeric_limits<long>::min()), "-9223372036854775808");
    EXPECT_EQ(formatted(std::numeric_limits<unsigned long>::max()), "18446744073709551615");
    EXPECT_EQ(formatted(std::numeric_limits<long long>::min()), streamed(std::numeric_limits<long long>::min()));
    EXPECT_EQ(formatted(std::numeric_limits<unsigned long long>::max()),
              streamed(std::numeric_limits<unsigned long long>::max()));
    EXPECT_EQ(formatted(static_cast<short>(0)), "0");
}

TEST(NumberFormat, RandomIntegersAsTheStream) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        uint64_t bits = random();
        ASSERT_EQ(formatted(static_cast<long>(bits)), streamed(static_cast<long>(bits)));
        ASSERT_EQ(formatted(static_cast<unsigned long>(bits)), streamed(static_cast<unsigned long>(bits)));
        ASSERT_EQ(formatted(static_cast<short>(bits)), streamed(static_cast<short>(bits)));
        ASSERT_EQ(formatted(static_cast<unsigned short>(bits)), streamed(static_cast<unsigned short>(bits)));
    }
}

TEST(NumberFormat, SpecialDoubles) {
    double nan = std::numeric_limits<double>::quiet_NaN();
    double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(formatted(nan), "nan");
    EXPECT_EQ(formatted(-nan), "-nan");
    EXPECT_EQ(formatted(inf), "inf");
    EXPECT_EQ(formatted(-inf), "-inf");
    EXPECT_EQ(formatted(-0.0), "-0");
    for (double v : {nan, -nan, inf, -inf, -0.0, 0.0}) EXPECT_EQ(formatted(v), streamed(v));
}

TEST(NumberFormat, DoublesAtTheSwitchToExponents) {
    for (double v : {0.0001, 0.00001, 0.000099999949, 999999.0, 999999.5, 1000000.0, 123456.5, 1234567.0, 1e-300,
                     4.9e-324, 1.7976931348623157e308, 0.1, 1.0 / 3, 2.5, 3.5, 0.5, 1e15, 1e16, 123.456789})
        EXPECT_EQ(formatted(v), streamed(v)) << v;
}

TEST(NumberFormat, RandomDoublesAsTheStream) {
    std::mt19937_64 random(11);
    std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
    std::uniform_int_distribution<int> exponent(-40, 40);
    for (int i = 0; i < 20000; ++i) {
        double v = mantissa(random) * std::pow(10.0, exponent(random));
        ASSERT_EQ(formatted(v), streamed(v)) << v;
        double bits = fromBits(random());
        ASSERT_EQ(formatted(bits), streamed(bits));
    }
}

TEST(NumberFormat, FloatsAreWidened) {
    std::mt19937 random(3);
    for (int i = 0; i < 20000; ++i) {
        float f = fromBits32(random());
        ASSERT_EQ(formatted(f), streamed(static_cast<double>(f)));
    }
    EXPECT_EQ(formatted(0.1f), "0.1");
}
