#include "Adapter/CountryCode.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quayCommand {
namespace {

/// The second letters of each first letter, A to Z.
constexpr std::array<std::string_view, 26> SecondLetters{
    "DEFGILMOQRSTUWXZ",         // A
    "ABDEFGHIJLMNOQRSTVWYZ",    // B
    "ACDFGHIKLMNORUVWXYZ",      // C
    "EJKMOZ",                   // D
    "CEGHRST",                  // E
    "IJKMOR",                   // F
    "ABDEFGHILMNPQRSTUWY",      // G
    "KMNRTU",                   // H
    "DELMNOQRST",               // I
    "EMOP",                     // J
    "EGHIMNPRWYZ",              // K
    "ABCIKRSTUVY",              // L
    "ACDEFGHKLMNOPQRSTUVWXYZ",  // M
    "ACEFGILOPRUZ",             // N
    "M",                        // O
    "AEFGHKLMNRSTWY",           // P
    "A",                        // Q
    "EOSUW",                    // R
    "ABCDEGHIJKLMNORSTVXYZ",    // S
    "CDFGHJKLMNORTVWZ",         // T
    "AGMSYZ",                   // U
    "ACEGINU",                  // V
    "FS",                       // W
    "",                         // X
    "ET",                       // Y
    "AMW",                      // Z
};

constexpr std::size_t CodeCount() {
    std::size_t count = 0;
    for (const auto letters : SecondLetters)
        count += letters.size();
    return count;
}
static_assert(CodeCount() == 249);

constexpr char UpperCase(unsigned letter) {
    return static_cast<char>(letter >= 'a' && letter <= 'z' ? letter - 'a' + 'A' : letter);
}

}  // namespace

bool IsKnownCountry(std::uint16_t code) {
    const char first = UpperCase(code >> 8);
    if (first < 'A' || first > 'Z') return false;
    return SecondLetters[static_cast<std::size_t>(first - 'A')].find(UpperCase(code & 0xFF)) != std::string_view::npos;
}

}  // namespace quayCommand
