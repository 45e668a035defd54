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

template <class T>
void expectLimits() {
    EXPECT_EQ(formatted(std::numeric_limits<T>::min()), streamed(std::numeric_limits<T>::min()));
    EXPECT_EQ(formatted(std::numeric_limits<T>::max()), streamed(std::numeric_limits<T>::max()));
    EXPECT_EQ(formatted(static_cast<T>(0)), "0");
}

// The value whose bytes are those of bits.
template <class To, class From>
To fromBits(From bits) {
    static_assert(sizeof(To) == sizeof(From), "same width");
    To v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

}  // namespace

TEST(NumberFormat, IntegersAtTheirLimits) {
    expectLimits<short>();
    expectLimits<unsigned short>();
    expectLimits<long>();
    expectLimits<unsigned long>();
    expectLimits<long long>();
    expectLimits<unsigned long long>();
    EXPECT_EQ(formatted(std::numeric_limits<long>::min()), "-9223372036854775808");
}

TEST(NumberFormat, SpecialDoublesAndTheSwitchToExponents) {
    double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(formatted(-nan), "-nan");
    EXPECT_EQ(formatted(-inf), "-inf");
    EXPECT_EQ(formatted(-0.0), "-0");
    for (double v : {nan, -nan, inf, -inf, -0.0, 0.0, 0.0001, 0.00001, 0.000099999949, 999999.0, 999999.5, 1000000.0,
                     123456.5, 1234567.0, 1e-300, 4.9e-324, 1.7976931348623157e308, 0.1, 1.0 / 3, 2.5, 3.5, 0.5, 1e15,
                     1e16, 123.456789})
        EXPECT_EQ(formatted(v), streamed(v)) << v;
    EXPECT_EQ(formatted(0.1f), "0.1");  // a float is widened
}

TEST(NumberFormat, RandomValuesAsTheStream) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
    std::uniform_int_distribution<int> exponent(-40, 40);
    for (int i = 0; i < 20000; ++i) {
        uint64_t bits = random();
        ASSERT_EQ(formatted(static_cast<long>(bits)), streamed(static_cast<long>(bits)));
        ASSERT_EQ(formatted(static_cast<unsigned long>(bits)), streamed(static_cast<unsigned long>(bits)));
        ASSERT_EQ(formatted(static_cast<short>(bits)), streamed(static_cast<short>(bits)));
        ASSERT_EQ(formatted(static_cast<unsigned short>(bits)), streamed(static_cast<unsigned short>(bits)));
        double v = mantissa(random) * std::pow(10.0, exponent(random));
        ASSERT_EQ(formatted(v), streamed(v)) << v;
        double any = fromBits<double>(static_cast<uint64_t>(random()));
        ASSERT_EQ(formatted(any), streamed(any));
        float f = fromBits<float>(static_cast<uint32_t>(random()));
        ASSERT_EQ(formatted(f), streamed(static_cast<double>(f)));
    }
}

TEST(NumberFormat, ValuesAtTheEdgesOfSixDigits) {
    // Values of few binary digits, the boundaries of the six digits and of the
    // switch to exponents, and near-ties of the rounding, in every decade the
    // fast formatting covers and beyond.
    std::mt19937_64 random(11);
    for (int e = -24; e <= 24; ++e) {
        double decade = std::pow(10.0, e);
        for (double v : {decade, std::nextafter(decade, 0.0), std::nextafter(decade, 1e300), 9.999995 * decade,
                         9.999994999 * decade, 1.000005 * decade, 1.0000049999 * decade, 1.234565 * decade,
                         2.5 * decade, 0.125 * decade}) {
            ASSERT_EQ(formatted(v), streamed(v)) << v;
            ASSERT_EQ(formatted(-v), streamed(-v)) << -v;
        }
    }
    for (int i = 0; i < 200000; ++i) {
        double k = static_cast<double>(random() % 20000001) - 10000000.0;
        for (double v : {k * 0.125, k / 1024.0, k * 1e-6, k * 0.5 + 0.5, k * 1e6, k / 7.0}) ASSERT_EQ(formatted(v), streamed(v)) << v;
    }
}
