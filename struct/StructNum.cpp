#include "struct/StructNum.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "input/InputStream.h"

using zun::String;

namespace vexa {

namespace {

template <class T>
int formatInteger(char* buffer, T v) {
    std::to_chars_result r = std::to_chars(buffer, buffer + 31, v);
    *r.ptr = 0;
    return static_cast<int>(r.ptr - buffer);
}

}  // namespace

int formatNumber(char* buffer, short v) { return formatInteger(buffer, v); }
int formatNumber(char* buffer, unsigned short v) { return formatInteger(buffer, v); }
int formatNumber(char* buffer, long v) { return formatInteger(buffer, v); }
int formatNumber(char* buffer, unsigned long v) { return formatInteger(buffer, v); }
int formatNumber(char* buffer, long long v) { return formatInteger(buffer, v); }
int formatNumber(char* buffer, unsigned long long v) { return formatInteger(buffer, v); }

namespace {

using u128 = unsigned __int128;

constexpr int maxScale = 25;  // 5^25 < 2^59: M * 5^p fits 128 bits
struct Powers {
    uint64_t five[maxScale + 1];
    uint64_t ten[maxScale + 1];
    constexpr Powers() : five(), ten() {
        uint64_t f = 1, t = 1;
        for (int i = 0; i <= maxScale; ++i, f *= 5, t = i <= 19 ? t * 10 : t) {
            five[i] = f;
            ten[i] = t;
        }
    }
};
constexpr Powers powers;

// The six leading decimal digits of a = M * 2^E scaled by 10^p (p = 5 - e10),
// rounded half to even as an exact conversion rounds; -1 when the scaling
// can't be done exactly here, -2 when the scaled value has seven digits
// before rounding (e10 was one too low).
inline long sixDigits(uint64_t m, int e, int p) {
    u128 whole;
    int cmp;  // the part behind the digits against one half: -1 below, 0 equal, 1 above
    if (p >= 0 && p <= 17 && m < (uint64_t(1) << 24) && e + p < 0 && e + p > -64) {
        // Few significant bits (a float's 24): the scaling fits 64 bits.
        uint64_t prod = m * powers.five[p];
        int k = -(e + p);
        uint64_t w = prod >> k;
        uint64_t rem = prod & ((uint64_t(1) << k) - 1);
        uint64_t half = uint64_t(1) << (k - 1);
        if (w >= 10000000) return -1;
        if (w >= 1000000) return -2;
        if (rem > half || (rem == half && (w & 1))) ++w;
        return static_cast<long>(w);
    }
    if (p >= 0) {
        if (p > maxScale) return -1;
        u128 prod = static_cast<u128>(m) * powers.five[p];
        int shift = e + p;
        if (shift >= 0) {
            if (shift > 40) return -1;
            whole = prod << shift;
            cmp = -1;
        } else {
            int k = -shift;
            if (k > 120) return -1;
            whole = prod >> k;
            u128 rem = prod & ((static_cast<u128>(1) << k) - 1);
            u128 half = static_cast<u128>(1) << (k - 1);
            cmp = rem < half ? -1 : rem == half ? 0 : 1;
        }
    } else {
        int q = -p;
        if (q > 19 || e > 60 || e < -60) return -1;
        u128 num = static_cast<u128>(m);
        u128 den = powers.ten[q];
        if (e >= 0) num <<= e;
        else den <<= -e;
        whole = num / den;
        u128 rem2 = (num % den) * 2;
        cmp = rem2 < den ? -1 : rem2 == den ? 0 : 1;
    }
    if (whole >= 10000000) return -1;
    if (whole >= 1000000) return -2;
    long w = static_cast<long>(whole);
    if (cmp > 0 || (cmp == 0 && (w & 1))) ++w;
    return w;
}

// "%g" with six significant digits for finite values of magnitude 1e-20 to
// 1e20, the range of almost every value a file holds, computed exactly in
// integers; 0 outside that range, where the general conversion takes over.
int formatSixDigits(char* out, double v) {
    double a = std::fabs(v);
    if (!(a >= 1e-20 && a < 1e20)) return 0;
    uint64_t bits;
    __builtin_memcpy(&bits, &a, sizeof bits);
    int biased = static_cast<int>(bits >> 52);
    uint64_t mant = (bits & ((uint64_t(1) << 52) - 1)) | (uint64_t(1) << 52);
    int e = biased - 1075;  // a = mant * 2^e
    int zeroBits = __builtin_ctzll(mant);
    mant >>= zeroBits;
    e += zeroBits;
    // floor(log10(a)), or one less: a lies in [2^(biased-1023), 2^(biased-1022)),
    // and 78913 / 2^18 is log10(2) to the precision that this range needs.
    int e10 = ((biased - 1023) * 78913) >> 18;
    long m = sixDigits(mant, e, 5 - e10);
    if (m == -2) {
        // The estimate was one too low.
        ++e10;
        m = sixDigits(mant, e, 5 - e10);
    }
    if (m < 0) return 0;
    if (m >= 1000000) {
        m /= 10;  // rounded up to the next power of ten
        ++e10;
    }
    if (m < 100000) return 0;
    static const char pairs[] =
        "0001020304050607080910111213141516171819202122232425262728293031323334353637383940414243444546474849"
        "5051525354555657585960616263646566676869707172737475767778798081828384858687888990919293949596979899";
    // The six digits as the bytes of one word, the first digit lowest.
    uint64_t digits = 0;
    unsigned hi = static_cast<unsigned>(m / 10000), mid = static_cast<unsigned>(m / 100 % 100),
             lo = static_cast<unsigned>(m % 100);
    uint16_t pair;
    __builtin_memcpy(&pair, pairs + 2 * hi, 2);
    digits |= pair;
    __builtin_memcpy(&pair, pairs + 2 * mid, 2);
    digits |= static_cast<uint64_t>(pair) << 16;
    __builtin_memcpy(&pair, pairs + 2 * lo, 2);
    digits |= static_cast<uint64_t>(pair) << 32;
    // The number of significant digits: trailing "0" bytes are dropped.
    uint64_t zeros = digits ^ 0x303030303030ULL;  // a digit 0 becomes a zero byte
    int significant = 6 - (zeros == 0 ? 5 : __builtin_clzll(zeros) / 8 - 2);
    char* o = out;
    if (v < 0) *o++ = '-';
    if (e10 < -4 || e10 >= 6) {
        *o++ = static_cast<char>(digits);
        if (significant > 1) {
            uint64_t rest = (digits >> 8) << 8 | '.';
            __builtin_memcpy(o, &rest, 8);
            o += significant;
        }
        *o++ = 'e';
        int x = e10;
        *o++ = x < 0 ? '-' : '+';
        if (x < 0) x = -x;
        *o++ = static_cast<char>('0' + x / 10);
        *o++ = static_cast<char>('0' + x % 10);
    } else if (e10 >= 0) {
        // The digits before the point, the point, the digits behind it.
        int whole = e10 + 1;
        int shift = 8 * whole;
        uint64_t word = whole >= 6 ? digits
                                   : (digits & ((uint64_t(1) << shift) - 1)) | (uint64_t('.') << shift) |
                                         ((digits >> shift) << (shift + 8));
        __builtin_memcpy(o, &word, 8);
        o += significant > whole ? significant + 1 : whole;
    } else {
        // "0." and the zeros before the first digit, then the digits.
        __builtin_memcpy(o, "0.000000", 8);
        o += 1 - e10;
        __builtin_memcpy(o, &digits, 8);
        o += significant;
    }
    *o = 0;
    return static_cast<int>(o - out);
}

}  // namespace

int formatNumber(char* buffer, double v) {
    // "%g" with six significant digits, as the default stream format writes it.
    if (int n = formatSixDigits(buffer, v)) return n;
    std::to_chars_result r = std::to_chars(buffer, buffer + 31, v, std::chars_format::general, 6);
    *r.ptr = 0;
    return static_cast<int>(r.ptr - buffer);
}

template <class T>
void StructNum<T>::setSize() {
    if constexpr (std::is_same<T, short>::value || std::is_same<T, unsigned short>::value) this->size = 2;
    else if constexpr (std::is_same<T, float>::value) this->size = 4;
    else this->size = 8;
}

template <class T>
T& StructNum<T>::read(T& v) {
    unsigned short fieldSize = static_cast<unsigned short>(this->getSize());
    zun::InputStream* in = this->initRead();
    v = 0;
    unsigned long got = in->read_swap(reinterpret_cast<char*>(&v), sizeof(T), fieldSize, std::is_signed<T>::value);
    unsigned long wanted = fieldSize < sizeof(T) ? fieldSize : sizeof(T);
    this->checkRead(*in, got, wanted);
    return v;
}

template <class T>
std::stringstream& StructNum<T>::readStr(std::stringstream& out, int append) {
    T v;
    read(v);
    if (!append) out.flush();
    if constexpr (std::is_same<T, float>::value) out << static_cast<double>(v);
    else out << v;
    return out;
}

template <class T>
String& StructNum<T>::readString(String& target, int append) {
    T v;
    read(v);
    char text[32];
    int n = formatNumber(text, v);
    if (!append) target = String(text, n);
    else target += text;
    return target;
}

template <class T>
void StructNum<T>::writeText(TextSink& sink, TextForm form, bool compress) {
    if (form != FormAll) {
        StructElem::writeText(sink, form, compress);
        return;
    }
    T v;
    read(v);
    char text[32];
    int n = formatNumber(text, v);
    sink.write(text, static_cast<size_t>(n));
}

template <class T>
bool StructNum<T>::writeRunTexts(TextFolder& folder, long n) {
    zun::InputStream& in = *this->getBase()->input;
    long size = this->getSize();
    const long block = 4096;
    T values[block];
    char text[32];
    for (long done = 0; done < n; done += block) {
        long k = n - done < block ? n - done : block;
        if (!readFieldRun(in, values, k, size) || in.fail()) this->readFailed(in);
        for (long i = 0; i < k; ++i) {
            uint64_t key = 0;
            __builtin_memcpy(&key, &values[i], sizeof(T));
            if (folder.repeats(key)) continue;
            int len = formatNumber(text, values[i]);
            folder.add(key, text, static_cast<size_t>(len));
        }
    }
    return true;
}

#define VEXA_INSTANCE_STRUCTNUM(T) template class StructNum<T>;
VEXA_EACH_NUMBER_TYPE(VEXA_INSTANCE_STRUCTNUM)
#undef VEXA_INSTANCE_STRUCTNUM

short& StructNumSChar::read(short& v) {
    v = static_cast<signed char>(readChar());
    return v;
}

unsigned short& StructNumUChar::read(unsigned short& v) {
    v = static_cast<unsigned char>(readChar());
    return v;
}

}  // namespace vexa
