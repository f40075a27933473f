#include "season/file_name.h"

#include <vector>

#include "season/text.h"

namespace season {

namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

int Number(std::string_view digits) {
    return (digits[0] - '0') * 10 + (digits[1] - '0');
}

// Where the two digits begin.
std::optional<std::size_t> PlaceOfYear(std::string_view unitName) {
    const std::size_t apostrophe = unitName.rfind('\'');
    if (apostrophe == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view rest = unitName.substr(apostrophe + 1);
    const bool isYear = rest.size() >= 2 && IsDigit(rest[0]) && IsDigit(rest[1]) &&
                        (rest.size() == 2 || !IsDigit(rest[2]));
    return isYear ? std::optional(apostrophe + 1) : std::nullopt;
}

// The characters of a text, one string each.
std::vector<std::string> Characters(std::string_view text) {
    std::vector<std::string> characters;
    for (const char c : text) {
        if ((c & 0xC0) == 0x80 && !characters.empty()) {
            characters.back() += c;
        } else {
            characters.emplace_back(1, c);
        }
    }
    return characters;
}

}  // namespace

std::string TitleOf(const std::filesystem::path& path) {
    const std::u8string name = path.filename().u8string();
    return {name.begin(), name.end()};
}

std::optional<FileName> ParseFileName(const std::filesystem::path& path) {
    const std::u8string stem = path.stem().u8string();
    const std::vector<std::string> letters = Characters(std::string(stem.begin(), stem.end()));
    if (letters.size() != 7) {
        return std::nullopt;
    }
    const std::string state = letters[3] + letters[4];
    const std::string digits = letters[5] + letters[6];
    if (state.size() != 2 || !IsLetter(state[0]) || !IsLetter(state[1]) || digits.size() != 2 ||
        !IsDigit(digits[0]) || !IsDigit(digits[1])) {
        return std::nullopt;
    }
    return FileName{letters[0] + letters[1] + letters[2], state, Number(digits)};
}

std::optional<int> YearOfUnitName(std::string_view unitName) {
    const auto place = PlaceOfYear(unitName);
    return place ? std::optional(Number(unitName.substr(*place))) : std::nullopt;
}

std::string WithYear(std::string_view unitName, int year) {
    std::string name(unitName);
    if (const auto place = PlaceOfYear(unitName)) {
        return name.replace(*place, 2, TwoDigits(year));
    }
    if (IsBlank(unitName)) {
        return name;
    }
    const bool endsBlank = name.back() == ' ';
    return name + (endsBlank ? "'" : " '") + TwoDigits(year);
}

int FullYear(int twoDigits) {
    return twoDigits >= 70 ? 1900 + twoDigits : 2000 + twoDigits;
}

std::string TwoDigits(int year) {
    return {static_cast<char>('0' + year / 10 % 10), static_cast<char>('0' + year % 10)};
}

}  // namespace season
