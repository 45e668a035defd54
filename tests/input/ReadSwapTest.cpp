#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include "input/InputBStream.h"

using zun::InputBStream;
using zun::InputStream;

namespace {

// A stream over bytes in memory in the given order.
struct Bytes {
    InputBStream stream;
    Bytes(std::initializer_list<int> values, int order) : stream("bytes", order) {
        std::string b;
        for (int v : values) b += static_cast<char>(v);
        stream.initBuf(b.data(), b.size());
    }
};

template <class T>
T readField(InputStream& s, unsigned short fieldSize, bool signExtend) {
    T v;
    std::memset(&v, 0, sizeof v);
    s.read_swap(reinterpret_cast<char*>(&v), sizeof v, fieldSize, signExtend);
    return v;
}

}  // namespace

TEST(ByteOrder, MachineOrder) {
    EXPECT_EQ(InputStream::hw_byte_order(), InputStream::HW_BYTE_ORDER);
    InputBStream s("x", InputStream::HwOrder);
    EXPECT_EQ(s.byteOrder, InputStream::HW_BYTE_ORDER);
    s.setByteOrder(InputStream::NoOrder);
    EXPECT_EQ(s.byteOrder, InputStream::BigEndian);
    s.setByteOrder(InputStream::LittleEndian);
    EXPECT_EQ(s.byteOrder, 1);
}

TEST(ReadSwap, EqualWidthsBothOrders) {
    Bytes big({0x12, 0x34, 0x56, 0x78}, InputStream::BigEndian);
    EXPECT_EQ(readField<uint32_t>(big.stream, 4, false), 0x12345678u);
    Bytes little({0x12, 0x34, 0x56, 0x78}, InputStream::LittleEndian);
    EXPECT_EQ(readField<uint32_t>(little.stream, 4, false), 0x78563412u);
    Bytes shortBig({0xff, 0xfe}, InputStream::BigEndian);
    EXPECT_EQ(readField<int16_t>(shortBig.stream, 2, true), -2);
}

TEST(ReadSwap, NarrowSignedField) {
    Bytes big({0xff, 0xff, 0xfe}, InputStream::BigEndian);
    EXPECT_EQ(readField<int32_t>(big.stream, 3, true), -2);
    Bytes little({0xfe, 0xff, 0xff}, InputStream::LittleEndian);
    EXPECT_EQ(readField<int32_t>(little.stream, 3, true), -2);
    Bytes positive({0x01, 0x02, 0x03}, InputStream::BigEndian);
    EXPECT_EQ(readField<int32_t>(positive.stream, 3, true), 0x010203);
    Bytes wide({0x80, 0x00, 0x00}, InputStream::BigEndian);
    EXPECT_EQ(readField<int64_t>(wide.stream, 3, true), -0x800000LL);
}

TEST(ReadSwap, NarrowUnsignedFieldIsNotExtended) {
    Bytes big({0xff, 0xff, 0xfe}, InputStream::BigEndian);
    EXPECT_EQ(readField<uint32_t>(big.stream, 3, false), 0xfffffeu);
    Bytes little({0xfe, 0xff, 0xff}, InputStream::LittleEndian);
    EXPECT_EQ(readField<uint32_t>(little.stream, 3, false), 0xfffffeu);
}

TEST(ReadSwap, WideFieldGivesLowOrderBytes) {
    Bytes big({0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99}, InputStream::BigEndian);
    EXPECT_EQ(readField<uint32_t>(big.stream, 8, false), 0x55667788u);
    EXPECT_EQ(big.stream.offset(), 8);
    Bytes little({0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11}, InputStream::LittleEndian);
    EXPECT_EQ(readField<uint32_t>(little.stream, 8, false), 0x55667788u);
    EXPECT_EQ(little.stream.offset(), 4);  // the caller positions the next field
}

TEST(ReadSwap, ShortReadReportsTheCount) {
    Bytes big({0x01, 0x02}, InputStream::BigEndian);
    uint32_t v = 0;
    EXPECT_EQ(big.stream.read_swap(reinterpret_cast<char*>(&v), 4, 4, false), 2u);
    EXPECT_TRUE(big.stream.eof());
}

TEST(TypeReadBuffer, SwapsEachValue) {
    Bytes big({0x00, 0x01, 0xff, 0xfe, 0x12, 0x34}, InputStream::BigEndian);
    short values[3];
    EXPECT_EQ(big.stream.typeReadBuffer(values, 3), 3u);
    EXPECT_EQ(values[0], 1);
    EXPECT_EQ(values[1], -2);
    EXPECT_EQ(values[2], 0x1234);
}

TEST(TypeReadBuffer, DoublesInTheOtherOrder) {
    double in[2] = {1.5, -2.25};
    std::string bytes(reinterpret_cast<const char*>(in), sizeof in);
    for (size_t i = 0; i < 2; ++i) std::reverse(bytes.begin() + i * 8, bytes.begin() + i * 8 + 8);
    int other = InputStream::HW_BYTE_ORDER == InputStream::LittleEndian ? 0 : 1;
    InputBStream s("d", other);
    s.initBuf(bytes.data(), bytes.size());
    double out[3] = {0, 0, 0};
    EXPECT_EQ(s.typeReadBuffer(out, 3), 2u);  // only two whole values
    EXPECT_EQ(out[0], 1.5);
    EXPECT_EQ(out[1], -2.25);
}

TEST(TypeReadBuffer, MachineOrderIsCopiedAsIs) {
    unsigned long long in[2] = {0x0102030405060708ULL, 42};
    InputBStream s("u", InputStream::HwOrder);
    s.initBuf(reinterpret_cast<const char*>(in), sizeof in);
    unsigned long long out[2];
    EXPECT_EQ(s.typeReadBuffer(out, 2), 2u);
    EXPECT_EQ(out[0], in[0]);
    EXPECT_EQ(out[1], 42u);
}
