#include "Support/NumberText.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace {

constexpr std::array<double, 11> PowersOfTen{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};

/// Six digits of a magnitude in [1e-4, 1e5), without the library's exact conversion. Scaling by a power of ten costs a
/// relative error of 2^-53, far below `Doubtful`; a value that lies closer to a rounding tie than that is left alone.
/// @return the end of the text, or null when the exact conversion must decide
char* ShortText(char* to, double magnitude) {
    constexpr double Doubtful = 1e-6;
    int decimals = 1;  // digits behind the point that make six in all
    while (decimals < 10 && magnitude * PowersOfTen[decimals] < 1e5)
        ++decimals;
    const double scaled = magnitude * PowersOfTen[decimals];
    auto digits = static_cast<std::uint32_t>(scaled);
    const double rest = scaled - digits;
    if (std::abs(rest - 0.5) < Doubtful || scaled < 1e5 + 1.0 || scaled > 1e6 - 1.0) return nullptr;
    if (rest > 0.5) ++digits;
    while (decimals > 0 && digits % 10 == 0) {
        digits /= 10;
        --decimals;
    }
    std::array<char, 12> text{};
    std::size_t at = text.size();
    int written = 0;
    while (digits != 0 || written <= decimals) {
        if (written == decimals && decimals > 0) text[--at] = '.';
        text[--at] = static_cast<char>('0' + digits % 10);
        digits /= 10;
        ++written;
    }
    while (at < text.size())
        *to++ = text[at++];
    return to;
}

/// Characters of the longest number in either form: a sign, 309 digits, the point and six more.
constexpr std::size_t LongestNumber = 317;

char* WriteStream(char* to, double value) {
    const double magnitude = std::abs(value);
    if (magnitude >= 1e-4 && magnitude < 1e5) {
        *to = '-';
        if (char* end = ShortText(value < 0 ? to + 1 : to, magnitude)) return end;
    }
    return std::to_chars(to, to + LongestNumber, value, std::chars_format::general, 6).ptr;
}

/// `mantissa` times 10^6 / 2^`shift`, rounded to the nearest whole number, ties to even.
/// @param mantissa  below 2^53
/// @param shift     12 or more
std::uint64_t Millionths(std::uint64_t mantissa, unsigned shift) {
    // 10^6 is 15625 * 2^6, so that the product has 67 bits. All of its low four lie below the half: one stands for
    // them.
    const std::uint64_t low = (mantissa & 0xFFFFFFFF) * 15625;
    const std::uint64_t high = (mantissa >> 32) * 15625 + (low >> 32);
    const std::uint64_t product = high << 28 | (low & 0xFFFFFFFF) >> 4 | ((low & 15) != 0 ? 1 : 0);
    const unsigned behind = shift - 10;
    if (behind >= 64) return 0;  // the product has 63 bits: less than half
    const std::uint64_t whole = product >> behind;
    const std::uint64_t rest = product - (whole << behind);
    const std::uint64_t half = std::uint64_t{1} << (behind - 1);
    return whole + (rest > half || (rest == half && whole % 2 != 0) ? 1 : 0);
}

char* WriteFixed(char* to, double value) {
    constexpr unsigned MantissaBits = 52, Bias = 1023;
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const auto exponent = static_cast<unsigned>(bits >> MantissaBits & 0x7FF);
    if (exponent > Bias + 40)  // large, infinite or no number
        return std::to_chars(to, to + LongestNumber, value, std::chars_format::fixed, 6).ptr;
    const std::uint64_t fraction = bits & ((std::uint64_t{1} << MantissaBits) - 1);
    const std::uint64_t mantissa = exponent == 0 ? fraction : fraction | std::uint64_t{1} << MantissaBits;
    const unsigned shift = Bias + MantissaBits - std::max(exponent, 1u);  // the value is mantissa / 2^shift
    if (bits >> 63 != 0) *to++ = '-';
    if (shift <= MantissaBits && (mantissa & ((std::uint64_t{1} << shift) - 1)) == 0) {
        to = std::to_chars(to, to + LongestNumber, mantissa >> shift).ptr;
        constexpr std::string_view NoFraction = ".000000";
        return std::copy(NoFraction.begin(), NoFraction.end(), to);
    }
    const std::uint64_t millionths = Millionths(mantissa, shift);
    to = std::to_chars(to, to + LongestNumber, millionths / 1000000).ptr;
    auto decimals = static_cast<std::uint32_t>(millionths % 1000000);
    *to = '.';
    for (char* digit = to + 6; digit != to; decimals /= 10)
        *digit-- = static_cast<char>('0' + decimals % 10);
    return to + 7;
}

/// Numbers go through a buffer, so that the text grows in few steps and isn't zeroed before it is written.
template <typename Write>
void AppendList(std::string& out, std::span<const double> values, std::string_view separator, Write write) {
    constexpr std::size_t Room = 4096, UsualNumber = 10;
    out.reserve(out.size() + values.size() * (UsualNumber + separator.size()));
    std::array<char, Room> buffer;
    char* to = buffer.data();
    const char* const full = buffer.data() + Room - LongestNumber - separator.size();
    for (std::size_t k = 0; k < values.size(); ++k) {
        if (k != 0) to = std::copy(separator.begin(), separator.end(), to);
        to = write(to, values[k]);
        if (to > full) {
            out.append(buffer.data(), to);
            to = buffer.data();
        }
    }
    out.append(buffer.data(), to);
}

}  // namespace

void AppendStreamText(std::string& out, double value) {
    AppendStreamList(out, {&value, 1}, {});
}

void AppendFixedText(std::string& out, double value) {
    AppendFixedList(out, {&value, 1}, {});
}

void AppendStreamList(std::string& out, std::span<const double> values, std::string_view separator) {
    AppendList(out, values, separator, WriteStream);
}

void AppendFixedList(std::string& out, std::span<const double> values, std::string_view separator) {
    AppendList(out, values, separator, WriteFixed);
}
