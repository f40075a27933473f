#include "capi/guard.h"

#include <algorithm>
#include <string>

#include "jet/convert.h"

namespace jet::capi {

namespace {

// Where a text of at most `limit` bytes can be cut without cutting a character.
std::size_t WholeCharacters(std::string_view text, std::size_t limit) {
    if (text.size() <= limit) return text.size();
    while (limit > 0 && (static_cast<unsigned char>(text[limit]) & 0xC0U) == 0x80U) --limit;
    return limit;
}

}  // namespace

int Report(int kind, int number, std::string_view message, jet_error* error) noexcept {
    if (error == nullptr) return kind;
    error->kind = kind;
    error->number = number;
    const std::size_t size = WholeCharacters(message, sizeof(error->message) - 1);
    std::memcpy(error->message, message.data(), size);
    error->message[size] = '\0';
    return kind;
}

int Report(ErrorKind kind, std::string_view message, jet_error* error) noexcept {
    return Report(static_cast<int>(kind) + 1, ErrorNumber(kind), message, error);
}

void ThrowBadArgument() {
    throw BadArgument();
}

Value ValueOf(const jet_value& value) {
    switch (value.type) {
        case JET_NULL:
            return {};
        case JET_BOOLEAN:
            return value.long_value != 0;
        case JET_LONG:
            return value.long_value;
        case JET_CURRENCY:
            return Currency{value.currency_value};
        case JET_DOUBLE:
            return value.double_value;
        case JET_DATE:
            return Date{value.double_value};
        case JET_TEXT:
            return ToUtf16(&Require(static_cast<const char*>(value.data)));
        case JET_DECIMAL:
            return ParseDecimal(&Require(static_cast<const char*>(value.data)));
        case JET_BINARY: {
            const auto* bytes = static_cast<const std::byte*>(value.data);
            if (value.size > 0) Require(bytes);
            return Binary(bytes, bytes + value.size);
        }
        case JET_GUID: {
            Guid guid;
            std::memcpy(guid.bytes.data(), &Require(static_cast<const std::byte*>(value.data)),
                        guid.bytes.size());
            return guid;
        }
        default:
            ThrowBadArgument();
    }
}

std::vector<Value> ValuesOf(const jet_value* values, std::size_t count) {
    if (count > 0) Require(values);
    std::vector<Value> made;
    for (std::size_t i = 0; i < count; ++i) made.push_back(ValueOf(values[i]));
    return made;
}

void GiveText(std::string_view text, char* to, std::size_t capacity, std::size_t* size) {
    if (capacity > 0) {
        Require(to);
        const std::size_t kept = WholeCharacters(text, capacity - 1);
        std::copy_n(text.begin(), kept, to);
        to[kept] = '\0';
    }
    if (size != nullptr) *size = text.size();
}

void GiveBytes(const void* bytes, std::size_t count, void* to, std::size_t capacity,
               std::size_t* size) {
    if (capacity > 0) Require(static_cast<std::byte*>(to));
    if (const std::size_t kept = std::min(count, capacity); kept > 0) std::memcpy(to, bytes, kept);
    if (size != nullptr) *size = count;
}

}  // namespace jet::capi
