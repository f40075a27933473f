// One field's value.
//
// A Value is a small sum type: null, or one of the types that a Jet column can hold. Text is
// UTF-16 as the format knows it, unpaired surrogates included, so that nothing is lost on the way
// through. Currency is a count of ten-thousandths. A date is a count of days since 1899-12-30.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace jet {

struct Currency {
    std::int64_t tenThousandths = 0;
    bool operator==(const Currency&) const = default;
};

struct Date {
    double days = 0;  // whole part: days since 1899-12-30; fraction: time of day
    bool operator==(const Date&) const = default;
};

struct Guid {
    std::array<std::byte, 16> bytes{};  // as stored
    bool operator==(const Guid&) const = default;
};

struct Decimal {
    bool negative = false;
    std::array<std::uint8_t, 16> magnitude{};  // most significant byte first
    std::uint8_t scale = 0;                    // value = magnitude / 10^scale
    bool operator==(const Decimal&) const = default;
};

using Binary = std::vector<std::byte>;

// The types that a value can have; the first is null.
using ValueStorage = std::variant<std::monostate, bool, std::int32_t, Currency, float, double, Date,
                                  std::u16string, Binary, Guid, Decimal>;

class Value : private ValueStorage {
public:
    using Storage = ValueStorage;

    // A value is made of whatever stands where one is expected: any of its types, or what becomes
    // one of them without losing anything.
    using Storage::Storage;
    Value() = default;
    Value(Value&&) noexcept = default;
    Value& operator=(Value&&) noexcept = default;
    // A variant that holds text must not be copied as a whole: when memory runs out on the way,
    // some libraries leave it in a state that they cannot destroy.
    Value(const Value& other) : Value() { *this = other; }
    Value& operator=(const Value& other) {
        std::visit([this](const auto& held) { Storage::operator=(held); }, other.Get());
        return *this;
    }
    ~Value() = default;

    [[nodiscard]] bool IsNull() const { return std::holds_alternative<std::monostate>(Get()); }

    // The value as another type. A null, a text that is no number and a number outside the range
    // throw kTypeMismatch or kOverflow; numbers of other types are converted, halves to even.
    [[nodiscard]] bool AsBoolean() const;
    [[nodiscard]] std::int32_t AsLong() const;
    [[nodiscard]] float AsSingle() const;
    [[nodiscard]] double AsDouble() const;
    // Numbers become their shortest decimal text, GUIDs theirs.
    [[nodiscard]] std::u16string AsText() const;

    [[nodiscard]] const Storage& Get() const { return *this; }
    [[nodiscard]] Storage& Get() { return *this; }
    bool operator==(const Value&) const = default;
};

}  // namespace jet
