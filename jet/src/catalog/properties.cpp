#include "catalog/properties.h"

#include <algorithm>
#include <array>
#include <limits>

#include "jet/error.h"
#include "page/bytes.h"
#include "values/text.h"

namespace jet {

namespace {

constexpr std::uint16_t kNameList = 0x80;
constexpr std::uint16_t kOfTable = 0x00;
constexpr std::uint16_t kOfColumn = 0x01;
constexpr std::size_t kChunkHead = 6;
constexpr std::size_t kPropertyHead = 8;
constexpr std::array<std::u16string_view, 5> kNames = {
    u"Required", u"AllowZeroLength", u"DefaultValue", u"ValidationRule", u"ValidationText"};
constexpr std::size_t kNamesWithoutRules = 3;
constexpr std::uint16_t kRequired = 0;
constexpr std::uint16_t kAllowZeroLength = 1;
constexpr std::uint16_t kDefaultValue = 2;
constexpr std::uint16_t kValidationRule = 3;
constexpr std::uint16_t kValidationText = 4;

std::uint32_t Signature(Version version) {
    return version == Version::kJet3 ? 0x00444B4B : 0x0032524D;
}

// Texts in properties are never compressed.
std::u16string PlainText(Bytes stored, Version version) {
    std::u16string text;
    if (version == Version::kJet3) {
        DecodeText(stored, version, text);
        return text;
    }
    for (std::size_t i = 0; i + 1 < stored.size(); i += 2) {
        text.push_back(static_cast<char16_t>(ReadU16(stored, i)));
    }
    return text;
}

// The text behind a length of two bytes, and where it ends.
std::u16string CountedText(Bytes bytes, std::size_t& at, Version version) {
    const std::size_t size = ReadU16(bytes, at);
    const Bytes text = Slice(bytes, at + 2, size);
    at += 2 + size;
    return PlainText(text, version);
}

bool HoldsTrue(Bytes value) {
    return !value.empty() && value[0] != std::byte{0};
}

void ApplyToColumn(Column& column, std::u16string_view name, Bytes value, Version version) {
    if (name == kNames[kRequired]) {
        column.required = HoldsTrue(value);
    } else if (name == kNames[kAllowZeroLength]) {
        column.allowZeroLength = HoldsTrue(value);
    } else if (name == kNames[kDefaultValue]) {
        column.defaultValue = NarrowName(PlainText(value, version));
    } else if (name == kNames[kValidationRule]) {
        column.validationRule = NarrowName(PlainText(value, version));
    } else if (name == kNames[kValidationText]) {
        column.validationText = NarrowName(PlainText(value, version));
    }
}

void ApplyToTable(Definition& definition, std::u16string_view name, Bytes value) {
    if (name == kNames[kValidationRule]) {
        definition.validationRule = NarrowName(PlainText(value, definition.version));
    } else if (name == kNames[kValidationText]) {
        definition.validationText = NarrowName(PlainText(value, definition.version));
    }
}

void ApplyChunk(std::uint16_t kind, Bytes chunk, const std::vector<std::u16string>& names,
                Definition& definition) {
    const std::size_t head = ReadU32(chunk, 0);
    std::size_t at = 4;
    const auto column = definition.FindColumn(CountedText(chunk, at, definition.version));
    for (at = head; at < chunk.size();) {
        const std::size_t size = ReadU16(chunk, at);
        const std::size_t name = ReadU16(chunk, at + 4);
        const Bytes value = Slice(chunk, at + kPropertyHead, ReadU16(chunk, at + 6));
        if (size < kPropertyHead + value.size()) ThrowOutOfBounds();
        if (kind == kOfTable && name < names.size()) {
            ApplyToTable(definition, names[name], value);
        } else if (column && name < names.size()) {
            ApplyToColumn(definition.columns[*column], names[name], value, definition.version);
        }
        at += size;
    }
}

void ApplyChunks(Bytes stored, Definition& definition) {
    std::vector<std::u16string> names;
    for (std::size_t at = 4; at < stored.size();) {
        const std::size_t size = ReadU32(stored, at);
        if (size < kChunkHead) ThrowOutOfBounds();
        const Bytes chunk = Slice(stored, at, size).subspan(kChunkHead);
        const std::uint16_t kind = ReadU16(stored, at + 4);
        if (kind == kNameList) {
            for (std::size_t place = 0; place < chunk.size();) {
                names.push_back(CountedText(chunk, place, definition.version));
            }
        } else if (kind == kOfTable || kind == kOfColumn) {
            ApplyChunk(kind, chunk, names, definition);
        }
        at += size;
    }
}

class Builder {
public:
    explicit Builder(Version version) : version_(version) {}

    void U8(std::uint8_t value) { bytes_.push_back(static_cast<std::byte>(value)); }
    void U16(std::size_t value) {
        U8(static_cast<std::uint8_t>(value & 0xFF));
        U8(static_cast<std::uint8_t>(value >> 8 & 0xFF));
    }
    void U32(std::size_t value) {
        U16(value & 0xFFFF);
        U16(value >> 16);
    }
    void Add(Bytes bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }
    void Counted(std::u16string_view text) {
        const std::vector<std::byte> stored = Stored(text);
        U16(stored.size());
        Add(stored);
    }
    void Chunk(std::uint16_t kind, const Builder& contents) {
        U32(kChunkHead + contents.bytes_.size());
        U16(kind);
        Add(contents.bytes_);
    }
    // Its length takes two bytes.
    void Property(std::uint16_t name, ColumnType type, Bytes value) {
        if (kPropertyHead + value.size() > std::numeric_limits<std::uint16_t>::max()) {
            throw Error(ErrorKind::kUnsupported,
                        "A default value, a rule or its text is longer than the format allows.");
        }
        U16(kPropertyHead + value.size());
        U8(1);
        U8(static_cast<std::uint8_t>(type));
        U16(name);
        U16(value.size());
        Add(value);
    }
    void Flag(std::uint16_t name, bool value) {
        const std::byte stored{value ? std::uint8_t{1} : std::uint8_t{0}};
        Property(name, ColumnType::kBoolean, Bytes(&stored, 1));
    }
    [[nodiscard]] std::vector<std::byte> Stored(std::u16string_view text) const {
        std::vector<std::byte> stored;
        EncodeText(text, version_, false, stored);
        return stored;
    }
    [[nodiscard]] const std::vector<std::byte>& Finished() const { return bytes_; }

private:
    Version version_;
    std::vector<std::byte> bytes_;
};

bool IsTextual(const ColumnSchema& column) {
    return column.type == ColumnType::kText || column.type == ColumnType::kMemo;
}

bool IsUsual(const ColumnSchema& column) {
    return !column.required && column.defaultValue.empty() && column.validationRule.empty() &&
           (column.allowZeroLength || !IsTextual(column));
}

void AddRule(Builder& chunk, const std::string& rule, const std::string& text) {
    if (rule.empty()) return;
    chunk.Property(kValidationRule, ColumnType::kMemo, chunk.Stored(WidenName(rule)));
    if (text.empty()) return;
    chunk.Property(kValidationText, ColumnType::kMemo, chunk.Stored(WidenName(text)));
}

void AddColumn(Builder& all, const ColumnSchema& column, Version version) {
    const std::u16string name = WidenName(column.name);
    Builder chunk(version);
    chunk.U32(4 + 2 + chunk.Stored(name).size());
    chunk.Counted(name);
    chunk.Flag(kRequired, column.required);
    if (IsTextual(column)) chunk.Flag(kAllowZeroLength, column.allowZeroLength);
    if (!column.defaultValue.empty()) {
        chunk.Property(kDefaultValue, ColumnType::kMemo,
                       chunk.Stored(WidenName(column.defaultValue)));
    }
    AddRule(chunk, column.validationRule, column.validationText);
    all.Chunk(kOfColumn, chunk);
}

bool HasRules(const TableSchema& schema) {
    return !schema.validationRule.empty() ||
           std::any_of(schema.columns.begin(), schema.columns.end(),
                       [](const ColumnSchema& column) { return !column.validationRule.empty(); });
}

}  // namespace

void ApplyProperties(Bytes stored, Definition& definition) {
    if (stored.size() < 4 || ReadU32(stored, 0) != Signature(definition.version)) return;
    try {
        ApplyChunks(stored, definition);
    } catch (const Error& error) {
        if (error.Kind() != ErrorKind::kDamaged) throw;
    }
}

std::vector<std::byte> BuildProperties(const TableSchema& schema, Version version) {
    const bool usual = std::all_of(schema.columns.begin(), schema.columns.end(), IsUsual);
    if (usual && schema.validationRule.empty()) return {};
    Builder all(version);
    all.U32(Signature(version));
    Builder names(version);
    const std::size_t count = HasRules(schema) ? kNames.size() : kNamesWithoutRules;
    for (std::size_t i = 0; i < count; ++i) names.Counted(kNames[i]);
    all.Chunk(kNameList, names);
    if (!schema.validationRule.empty()) {
        Builder table(version);
        table.U32(4 + 2);
        table.Counted({});
        AddRule(table, schema.validationRule, schema.validationText);
        all.Chunk(kOfTable, table);
    }
    for (const ColumnSchema& column : schema.columns) {
        if (!IsUsual(column) || IsTextual(column)) AddColumn(all, column, version);
    }
    return all.Finished();
}

}  // namespace jet
