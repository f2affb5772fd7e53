// Powers in double-double arithmetic: a value is the unevaluated sum of two doubles, some 105
// bits. Neither fused multiply-add nor a function of the runtime takes part.
#include "icc/power.h"

#include <array>
#include <bit>
#include <cstdint>
#include <limits>

namespace ko::icc {
namespace {

struct Pair {
    double high, low;
};

constexpr Pair twoSum(double a, double b) noexcept {  // exact
    const double sum = a + b;
    const double b1 = sum - a;
    return {sum, (a - (sum - b1)) + (b - b1)};
}
constexpr Pair fastTwoSum(double a, double b) noexcept {  // exact for |a| >= |b| and for a == 0
    const double sum = a + b;
    return {sum, b - (sum - a)};
}
constexpr Pair split(double a) noexcept {  // into two halves of 26 bits
    const double scaled = 134217729.0 * a;  // 2^27 + 1
    const double high = scaled - (scaled - a);
    return {high, a - high};
}
constexpr Pair twoProduct(double a, double b) noexcept {  // exact
    const double product = a * b;
    const Pair x = split(a), y = split(b);
    return {product,
            ((x.high * y.high - product) + x.high * y.low + x.low * y.high) + x.low * y.low};
}
constexpr Pair operator+(Pair a, Pair b) noexcept {
    Pair high = twoSum(a.high, b.high);
    const Pair low = twoSum(a.low, b.low);
    high = fastTwoSum(high.high, high.low + low.high);
    return fastTwoSum(high.high, high.low + low.low);
}
constexpr Pair operator*(Pair a, Pair b) noexcept {
    const Pair product = twoProduct(a.high, b.high);
    return fastTwoSum(product.high, product.low + (a.high * b.low + a.low * b.high));
}
constexpr Pair operator*(Pair a, double b) noexcept {
    const Pair product = twoProduct(a.high, b);
    return fastTwoSum(product.high, product.low + a.low * b);
}
constexpr Pair operator/(Pair a, Pair b) noexcept {
    const double first = a.high / b.high;
    const Pair rest = a + b * -first;
    const double second = rest.high / b.high;
    const Pair rest2 = rest + b * -second;
    const Pair quotient = fastTwoSum(first, second);
    return quotient + Pair{rest2.high / b.high, 0};
}

constexpr Pair kLn2 = {0x1.62e42fefa39efp-1, 0x1.abc9e3b39803fp-56};
// ln 2 / 64 in three parts; the first has trailing zeros, so that small multiples are exact.
constexpr double kLn2By64 = 0x1.62e42fee00000p-7;
constexpr Pair kLn2By64Rest = {0x1.a39ef35793c76p-39, 0x1.cc01f97b57a08p-93};
constexpr double k64ByLn2 = 0x1.71547652b82fep+6;
constexpr double kNearThird = 0.3333333333333333;
static_assert(kNearThird == 0x1.5555555555555p-2);  // (1 - 2^-54) / 3

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Tables, made by the compiler.

// A reciprocal of few bits for each of the 128 parts of [1, 2), and minus its logarithm. From
// sqrt(2) on the reciprocal is halved and the logarithm is that of half the number, so that
// logarithms of numbers near 1 come from a factor of exactly 1 or 1/2 and lose nothing.
struct LogEntry {
    double reciprocal;
    Pair log;
    bool halved;
};

constexpr Pair logSeries(double value) noexcept {  // 0.7 < value < 1.5
    const Pair s = twoSum(value, -1) / twoSum(value, 1);
    const Pair square = s * s;
    Pair sum = {0, 0};
    for (int n = 45; n >= 1; n -= 2) sum = sum * square + Pair{1, 0} / Pair{double(n), 0};
    return s * sum * 2.0;
}

constexpr auto kLogTable = [] {
    std::array<LogEntry, 128> table{};
    for (int at = 0; at < 128; ++at) {
        LogEntry& entry = table[at];
        entry.halved = at >= 53;
        const double exact = 1 / (1 + (at + 0.5) / 128) * 512;
        double factor = double(int(exact + 0.5)) / 512;
        if (at == 0) factor = 1;
        if (at == 127) factor = 0.5;
        entry.reciprocal = factor;
        const Pair log = logSeries(entry.halved ? factor * 2 : factor);
        entry.log = {-log.high, -log.low};
    }
    return table;
}();
static_assert(kLogTable[0].log.high == 0 && kLogTable[127].log.high == 0);

constexpr auto kExpTable = [] {  // 2^(at / 64)
    std::array<Pair, 64> table{};
    for (int at = 0; at < 64; ++at) {
        const Pair x = Pair{kLn2By64, 0} * double(at) + kLn2By64Rest * double(at);
        Pair sum = {1, 0};
        for (int n = 30; n >= 1; --n) sum = sum * (x / Pair{double(n), 0}) + Pair{1, 0};
        table[at] = sum;
    }
    return table;
}();

constexpr auto kReciprocals = [] {  // 1 / n
    std::array<Pair, 16> table{};
    for (int n = 1; n < 16; ++n) table[n] = Pair{1, 0} / Pair{double(n), 0};
    return table;
}();

constexpr auto kFactorials = [] {  // 1 / n!
    std::array<Pair, 14> table{};
    table[0] = {1, 0};
    for (int n = 1; n < 14; ++n) table[n] = table[n - 1] / Pair{double(n), 0};
    return table;
}();

// Parts of doubles

constexpr uint64_t kMantissa = (uint64_t{1} << 52) - 1;

constexpr double powerOfTwo(int exponent) noexcept {  // -1022..1023
    return std::bit_cast<double>(static_cast<uint64_t>(exponent + 1023) << 52);
}

struct Parts {
    double mantissa;  // [1, 2)
    int exponent;
};

constexpr Parts partsOf(double value) noexcept {  // of a positive, normal number
    const auto bits = std::bit_cast<uint64_t>(value);
    return {std::bit_cast<double>((bits & kMantissa) | uint64_t{1023} << 52),
            static_cast<int>(bits >> 52) - 1023};
}

constexpr int tableIndexOf(double mantissa) noexcept {
    return static_cast<int>(std::bit_cast<uint64_t>(mantissa) >> 45 & 127);
}

// ln(1 + z) for |z| <= 2^-7. The first eight terms are pairs, the rest doubles.
Pair log1p(Pair z) noexcept {
    double tail = 0;
    for (int n = 15; n >= 9; --n)
        tail = tail * z.high + (n % 2 ? kReciprocals[n].high : -kReciprocals[n].high);
    Pair sum = {tail, 0};
    for (int n = 8; n >= 1; --n) {
        const Pair term = kReciprocals[n];
        sum = sum * z + (n % 2 ? term : Pair{-term.high, -term.low});
    }
    return sum * z;
}

Pair log(double value) noexcept {  // of a positive, normal number
    const Parts parts = partsOf(value);
    const LogEntry& entry = kLogTable[tableIndexOf(parts.mantissa)];
    const Pair product = twoProduct(parts.mantissa, entry.reciprocal);
    const Pair z = twoSum(product.high - 1, product.low);  // the difference is exact
    return kLn2 * double(parts.exponent + entry.halved) + (entry.log + log1p(z));
}

// The nearest double to value * 2^exponent. tiesPossible says that value may be the middle of
// two doubles, which its own error hides.
double rounded(Pair value, int exponent, bool tiesPossible) noexcept {
    const Pair sum = fastTwoSum(value.high, value.low);
    double result = sum.high;
    const double base = exponent <= -1022 ? powerOfTwo(-1022 - exponent) : 0;
    if (sum.high < base) {
        // A subnormal result is rounded where those end: by adding a number with that last place.
        const Pair raised = twoSum(base, sum.high);
        result = (raised.high + (raised.low + sum.low)) - base;
    } else if (tiesPossible) {
        const double place = powerOfTwo(partsOf(sum.high).exponent - 52);
        const double low = sum.low < 0 ? -sum.low : sum.low;
        const double offMiddle = low - place / 2;
        if (offMiddle < place * 0x1p-32 && offMiddle > -place * 0x1p-32) {
            const bool odd = std::bit_cast<uint64_t>(sum.high) & 1;
            if (odd) result += sum.low < 0 ? -place : place;
        }
    }
    // In steps, each of them exact unless the result is out of range.
    for (; exponent > 1000; exponent -= 1000) result *= powerOfTwo(1000);
    for (; exponent < -500; exponent += 500) result *= powerOfTwo(-500);
    return result * powerOfTwo(exponent);
}

// e^x for results from the smallest subnormal to infinity.
double exp(Pair x, bool tiesPossible) noexcept {
    if (x.high > 710) return kInfinity;
    if (x.high < -746) return 0;
    const double scaled = x.high * k64ByLn2;
    const int steps = static_cast<int>(scaled + (scaled < 0 ? -0.5 : 0.5));
    // |rest| <= ln 2 / 128
    const Pair rest = (Pair{x.high - steps * kLn2By64, x.low}) + kLn2By64Rest * double(-steps);
    double tail = 0;
    for (int n = 12; n >= 7; --n) tail = tail * rest.high + kFactorials[n].high;
    Pair sum = {tail, 0};
    for (int n = 6; n >= 0; --n) sum = sum * rest + kFactorials[n];
    const int part = steps & 63;
    return rounded(kExpTable[part] * sum, (steps - part) / 64, tiesPossible);
}

bool isInteger(double value) noexcept {
    if (value > 0x1p62 || value < -0x1p62) return true;
    return double(static_cast<int64_t>(value)) == value;
}

bool isOddInteger(double value) noexcept {
    if (value > 0x1p53 || value < -0x1p53) return false;
    const auto integer = static_cast<int64_t>(value);
    return double(integer) == value && (integer & 1);
}

// A power that lies in the middle of two doubles has 54 bits, so the exponent is positive, at
// most 54, and a multiple of 1/32: a number of 53 bits is a perfect 32nd power at most.
bool canTie(double exponent) noexcept {
    return exponent > 0 && exponent <= 54 && isInteger(exponent * 32);
}

double powerOfPositive(double base, double exponent) noexcept {  // finite, neither is 0 nor 1
    const double size = exponent < 0 ? -exponent : exponent;
    if (size > 0x1p64) return (base > 1) == (exponent > 0) ? kInfinity : 0;
    if (size < 0x1p-64) return 1;  // the result differs from 1 by less than 2^-54
    Pair natural;
    if (base < std::numeric_limits<double>::min()) {
        natural = log(base * 0x1p54) + kLn2 * -54.0;
    } else {
        natural = log(base);
    }
    return exp(natural * exponent, canTie(exponent));
}

}  // namespace

double power(double base, double exponent) noexcept {
    if (exponent == 0 || base == 1) return 1;
    if (base != base || exponent != exponent) return base + exponent;
    const bool negative = std::bit_cast<uint64_t>(base) >> 63;
    const double size = negative ? -base : base;
    const double sign = negative && isOddInteger(exponent) ? -1 : 1;
    if (exponent == kInfinity || exponent == -kInfinity) {
        if (size == 1) return 1;
        return (size > 1) == (exponent > 0) ? kInfinity : 0;
    }
    if (size == 0) return exponent > 0 ? sign * 0.0 : sign * kInfinity;
    if (size == kInfinity) return exponent > 0 ? sign * kInfinity : sign * 0.0;
    if (negative && !isInteger(exponent)) return std::numeric_limits<double>::quiet_NaN();
    return size == 1 ? sign : sign * powerOfPositive(size, exponent);
}

// The exponent is (1 - 2^-54) / 3, so the power is the cube root times 1 - ln(t) 2^-54 / 3. The
// root is a double and a correction of relative accuracy 2^-50, and the final sum is the one
// rounding.
double powerOfThird(double t) noexcept {
    if (!(t >= std::numeric_limits<double>::min() && t < kInfinity)) return power(t, kNearThird);
    const Parts parts = partsOf(t);
    const int third = (parts.exponent + 1026) / 3 - 342;  // rounded down
    const int rest = parts.exponent - 3 * third;          // 0..2
    const double value = parts.mantissa * static_cast<double>(1 << rest);  // [1, 8)

    // value^(-1/3): a polynomial to 14 bits, then a step that needs no division.
    constexpr double kRoots[] = {1.0, 0.7937005259840998, 0.6299605249474366};
    const double u = parts.mantissa * 2 - 3;
    double w = 0.0017767324837319742 * u - 0.006211260011444078;
    w = w * u + 0.021482982656088542;
    w = w * u - 0.09690464311488742;
    w = w * u + 0.8735853831770146;
    w *= kRoots[rest];
    const double error = 1 - value * w * w * w;
    w += w * error * (1.0 / 3 + error * (2.0 / 9 + error * (14.0 / 81)));

    const double root = value * w * w;
    const Pair square = twoProduct(root, root);
    const Pair cubed = twoProduct(square.high, root);
    const double residual = ((value - cubed.high) - cubed.low) - square.low * root;
    const double correction = residual * (w * w) * (1.0 / 3);

    const LogEntry& entry = kLogTable[tableIndexOf(parts.mantissa)];
    const double z = parts.mantissa * entry.reciprocal - 1;
    const double log1pOfZ =
        z * (1 + z * (-1.0 / 2 + z * (1.0 / 3 + z * (-1.0 / 4 + z * (1.0 / 5 - z * (1.0 / 6))))));
    const double natural =
        (parts.exponent + entry.halved) * kLn2.high + (entry.log.high + log1pOfZ);
    return (root + (correction - root * natural * (0x1p-54 / 3))) * powerOfTwo(third);
}

// The exact cube is the sum of four doubles; rounding to odd keeps what the last of them decide.
double cube(double f) noexcept {
    const double size = f < 0 ? -f : f;
    if (!(size > 0x1p-300 && size < 0x1p300)) return power(f, 3.0);
    const Pair square = twoProduct(f, f);
    const Pair high = twoProduct(square.high, f);
    const Pair low = twoProduct(square.low, f);
    const Pair middle = twoSum(high.low, low.high);
    const Pair sum = twoSum(high.high, middle.high);
    const Pair rest = twoSum(sum.low, middle.low + low.low);
    double last = rest.high;
    if (rest.low != 0) {
        auto bits = std::bit_cast<uint64_t>(last);
        if (!(bits & 1)) bits += (rest.low > 0) == (last > 0) ? 1 : -1;
        last = std::bit_cast<double>(bits);
    }
    return sum.high + last;
}

}  // namespace ko::icc
