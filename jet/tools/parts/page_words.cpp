#include "parts/page_words.h"

#include <algorithm>

#include "index/index_page.h"
#include "jet/error.h"
#include "page/bytes.h"
#include "page/header.h"
#include "page/map_row.h"
#include "record/data_page.h"

namespace {

using jet::Bytes;
using jet::Format;

std::string Number(std::uint64_t value) {
    return std::to_string(value);
}

std::string SlotWord(jet::SlotKind kind) {
    switch (kind) {
        case jet::SlotKind::kRow:
            return "row";
        case jet::SlotKind::kPointer:
            return "pointer to a moved row";
        case jet::SlotKind::kTarget:
            return "moved row";
        default:
            return "deleted";
    }
}

std::string HeaderWords(Bytes page) {
    const jet::FileHeader header = jet::ReadFileHeader(page);
    return std::string("header of a ") +
           (header.version == jet::Version::kJet3 ? "Jet 3" : "Jet 4") +
           " file\nmap of free pages: row " + Number(header.freePages.slot) + " of page " +
           Number(header.freePages.page.value) + "\ncatalog: page " + Number(header.objects.value) +
           "\nlanguage " + Number(header.language) + ", code page " + Number(header.codePage) +
           "\n";
}

std::string DataWords(Bytes page, const Format& format) {
    const std::uint32_t owner = jet::PageOwner(page);
    std::string words = "data page of ";
    words += owner == jet::kLongValueOwner ? "long values"
             : owner <= 1                  ? "usage maps"
                                           : "the table defined on page " + Number(owner);
    words += ", " + Number(jet::ReadU16(page, 2)) + " bytes free\n";
    for (std::uint32_t i = 0; i < jet::SlotCount(page, format); ++i) {
        const jet::Slot slot = jet::ReadSlot(page, format, i);
        words += "slot " + Number(i) + ": " + SlotWord(slot.kind) + ", " + Number(slot.length) +
                 " bytes at " + Number(slot.start);
        if (slot.kind == jet::SlotKind::kPointer && slot.length >= 4) {
            const auto target = jet::RowId::FromPacked(jet::ReadU32(page, slot.start));
            words += ", to row " + Number(target.slot) + " of page " + Number(target.page.value);
        }
        words += "\n    " + HexWords(page.subspan(slot.start, slot.length)) + "\n";
    }
    return words;
}

std::string IndexWords(Bytes page, const Format& format, std::uint32_t number) {
    const jet::PageNumber table{jet::ReadU32(page, 4)};
    const jet::IndexPage index(page, format, jet::PageNumber{number}, table);
    std::string words = std::string(index.IsLeaf() ? "leaf" : "node") +
                        " of an index of the table defined on page " + Number(table.value) +
                        ", level " + Number(index.Level()) + ", " + Number(index.FreeField()) +
                        " bytes free\nprevious page " + Number(index.Previous().value) +
                        ", next page " + Number(index.Next().value) + ", tail " +
                        Number(index.Tail().value) + ", shared prefix of " +
                        Number(index.PrefixSize()) + " bytes\n";
    jet::Key bytes;
    for (std::size_t at = 0; at != index.End(); at = index.After(at)) {
        index.Read(at, bytes);
        const jet::IndexEntry entry = jet::EntryFromBytes(bytes);
        words += "row " + Number(entry.row.page.value) + "." + Number(entry.row.slot) + ": key " +
                 HexWords(entry.key);
        words += index.IsLeaf() ? "\n" : ", child page " + Number(index.Child(at).value) + "\n";
    }
    return words;
}

std::string DefinitionWords(Bytes page, const Format& format) {
    const bool jet3 = format.version == jet::Version::kJet3;
    std::string words = "definition of a table, or a further page of one; next page " +
                        Number(jet::ReadU32(page, 4)) + "\n";
    words += "as a first page: " + Number(jet::ReadU32(page, 8)) + " bytes long, " +
             Number(jet::ReadU32(page, jet3 ? 12 : 16)) + " rows, " +
             Number(jet::ReadU16(page, jet3 ? 25 : 45)) + " columns, " +
             Number(jet::ReadU32(page, jet3 ? 31 : 51)) + " indexes\n";
    return words;
}

std::string MapWords(Bytes page, const Format& format) {
    const auto bits = page.subspan(jet::kMapPageHead);
    std::uint64_t set = 0;
    for (const std::byte byte : bits) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            set += std::to_integer<unsigned>(byte) >> bit & 1U;
        }
    }
    return "page of a usage map, " + Number(set) + " of " + Number(jet::PagesOfMapPage(format)) +
           " pages in it\n";
}

std::string Words(Bytes page, const Format& format, std::uint32_t number) {
    if (number == 0) {
        return HeaderWords(page);
    }
    switch (jet::ReadU8(page, 0)) {
        case 1:
            return DataWords(page, format);
        case 2:
            return DefinitionWords(page, format);
        case 3:
        case 4:
            return IndexWords(page, format, number);
        case 5:
            return MapWords(page, format);
        default:
            break;
    }
    const bool empty =
        std::all_of(page.begin(), page.end(), [](std::byte b) { return b == std::byte{0}; });
    return empty ? "never used\n" : "of no known kind, or free\n";
}

}  // namespace

std::string PageWords(Bytes page, const Format& format, std::uint32_t number) {
    std::string words = "page " + Number(number) + ": ";
    try {
        return words + Words(page, format, number);
    } catch (const jet::Error& error) {
        return words + error.what() + "\n";
    }
}

std::string HexWords(Bytes bytes) {
    std::string words;
    for (const std::byte byte : bytes) {
        words += words.empty() ? "" : " ";
        words += "0123456789ABCDEF"[std::to_integer<unsigned>(byte) >> 4];
        words += "0123456789ABCDEF"[std::to_integer<unsigned>(byte) & 15U];
    }
    return words;
}

std::string TypeWord(jet::ColumnType type) {
    switch (type) {
        case jet::ColumnType::kBoolean:
            return "boolean";
        case jet::ColumnType::kByte:
            return "byte";
        case jet::ColumnType::kInteger:
            return "integer";
        case jet::ColumnType::kLong:
            return "long";
        case jet::ColumnType::kCurrency:
            return "currency";
        case jet::ColumnType::kSingle:
            return "single";
        case jet::ColumnType::kDouble:
            return "double";
        case jet::ColumnType::kDate:
            return "date";
        case jet::ColumnType::kBinary:
            return "binary";
        case jet::ColumnType::kText:
            return "text";
        case jet::ColumnType::kOle:
            return "ole";
        case jet::ColumnType::kMemo:
            return "memo";
        case jet::ColumnType::kGuid:
            return "guid";
        case jet::ColumnType::kDecimal:
            return "decimal";
        default: {
            const std::string digits = HexWords(std::vector{static_cast<std::byte>(type)});
            return "unknown_" + digits;
        }
    }
}
