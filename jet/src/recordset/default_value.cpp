#include "recordset/default_value.h"

#include <algorithm>
#include <array>

#include "jet/error.h"
#include "values/text.h"

namespace jet {

namespace {

std::u16string_view Trimmed(std::u16string_view text) {
    while (!text.empty() && text.front() <= u' ') text.remove_prefix(1);
    while (!text.empty() && text.back() <= u' ') text.remove_suffix(1);
    return text;
}

// The text between quotes, in which a doubled quote stands for one.
std::optional<std::u16string> Unquoted(std::u16string_view text) {
    const char16_t quote = text.front();
    if (text.size() < 2 || text.back() != quote) return std::nullopt;
    const std::u16string_view inner = text.substr(1, text.size() - 2);
    std::u16string plain;
    for (std::size_t i = 0; i < inner.size(); ++i) {
        plain.push_back(inner[i]);
        if (inner[i] != quote) continue;
        if (i + 1 == inner.size() || inner[i + 1] != quote) return std::nullopt;
        ++i;
    }
    return plain;
}

std::optional<bool> Word(std::u16string_view text) {
    constexpr std::array<std::u16string_view, 3> kTrue = {u"true", u"yes", u"on"};
    constexpr std::array<std::u16string_view, 3> kFalse = {u"false", u"no", u"off"};
    std::u16string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char16_t c) {
        return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
    });
    if (std::find(kTrue.begin(), kTrue.end(), lower) != kTrue.end()) return true;
    if (std::find(kFalse.begin(), kFalse.end(), lower) != kFalse.end()) return false;
    return std::nullopt;
}

std::optional<Value> Literal(std::u16string_view text) {
    if (text.empty()) return std::nullopt;
    if (text.front() == u'"' || text.front() == u'\'') {
        const auto plain = Unquoted(text);
        return plain ? std::optional<Value>(*plain) : std::nullopt;
    }
    if (const auto word = Word(text)) return Value(*word);
    return Value(Value(std::u16string(text)).AsDouble());
}

}  // namespace

std::optional<Value> LiteralDefault(const Column& column, Version version) {
    const std::u16string expression = WidenName(column.defaultValue);
    std::u16string_view text = Trimmed(expression);
    if (!text.empty() && text.front() == u'=') text = Trimmed(text.substr(1));
    try {
        const auto literal = Literal(text);
        if (!literal) return std::nullopt;
        return ConvertForColumn(column, *literal, version);
    } catch (const Error&) {
        // Anything else is left for the writer of the record to fill in.
        return std::nullopt;
    }
}

}  // namespace jet
