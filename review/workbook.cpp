#include "review/workbook.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "review/figures.h"
#include "review/looking.h"
#include "review/plain_tables.h"
#include "review/zip_members.h"
#include "season/text.h"

namespace review {

namespace {

constexpr std::size_t kLongestText = 32767;  // characters of UTF-16 that a cell holds

void Require(lxw_error error) {
    if (error != LXW_NO_ERROR) {
        throw std::runtime_error(std::string("The workbook cannot be written: ") +
                                 lxw_strerror(error));
    }
}

[[noreturn]] void ThrowSystemError() {
    throw std::system_error(errno, std::generic_category());
}

// Where no file can be made, the library would print that in its own words.
void RequireWritable(const std::filesystem::path& path) {
    errno = 0;
    if (!std::ofstream(path, std::ios::binary)) {
        ThrowSystemError();
    }
}

// A text that a cell takes: without what no cell can hold, and no longer than it holds.
std::string CellText(const std::string& text, bool& isCut) {
    std::u16string wide = season::ToUtf16(season::WellFormed(text));
    std::erase(wide, u'\r');
    std::replace_if(
        wide.begin(), wide.end(),
        [](char16_t c) { return (c < 0x20 && c != u'\n' && c != u'\t') || c >= 0xFFFE; },
        u'\xFFFD');
    isCut = wide.size() > kLongestText;
    if (isCut) {
        wide.erase(kLongestText);
        if (wide.back() >= 0xD800 && wide.back() <= 0xDBFF) {
            wide.pop_back();
        }
    }
    return season::ToUtf8(wide);
}

// While it lives, the library cannot print in its own words what an exception says.
class Hush {
public:
#ifdef __GLIBC__  // where the stream may be replaced
    Hush() : before_(stderr), nowhere_(std::fopen("/dev/null", "w")) {
        if (nowhere_ != nullptr) {
            stderr = nowhere_;
        }
    }
    ~Hush() {
        stderr = before_;
        if (nowhere_ != nullptr) {
            std::fclose(nowhere_);
        }
    }
    Hush(const Hush&) = delete;
    Hush& operator=(const Hush&) = delete;

private:
    std::FILE* before_;
    std::FILE* nowhere_;
#else
    Hush() {}
#endif
};

std::size_t CountOf(std::string_view text, std::string_view part) {
    std::size_t number = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos;
         at = text.find(part, at + part.size())) {
        ++number;
    }
    return number;
}

// Whether the element that holds all others is closed at the end.
bool IsWholeXml(std::string_view text) {
    const std::size_t declared = text.find("?>");
    const std::size_t root = text.find('<', declared == std::string_view::npos ? 0 : declared);
    const std::size_t last = text.rfind("</");
    if (root == std::string_view::npos || last == std::string_view::npos) {
        return false;
    }
    const std::string_view begun = text.substr(root + 1);
    const std::string closing =
        "</" + std::string(begun.substr(0, begun.find_first_of(" >"))) + ">";
    return text.substr(last, text.find_last_not_of("\r\n") + 1 - last) == closing;
}

// The library writes sheets to temporary files first and does not notice when there is no room for
// them: so what came out is read back.
void RequireWhole(const std::filesystem::path& path, const std::vector<std::size_t>& cells) {
    std::size_t sheets = 0;
    const bool isWhole = EachZipMember(path, [&](const std::string& name, const std::string& text) {
        constexpr std::string_view kSheets = "xl/worksheets/sheet";
        if (!name.starts_with(kSheets)) {
            return IsWholeXml(text);
        }
        const std::size_t number = std::stoul(name.substr(kSheets.size()));
        ++sheets;
        return number >= 1 && number <= cells.size() && IsWholeXml(text) &&
               CountOf(text, "<c r=") == cells[number - 1];
    });
    if (!isWhole || sheets != cells.size()) {
        throw std::runtime_error(
            "The workbook could not be written whole. There may be no room left for temporary "
            "files.");
    }
}

class Workbook {
public:
    explicit Workbook(const std::filesystem::path& path)
        : book_(workbook_new(path.string().c_str())) {
        if (book_ == nullptr) {
            throw std::runtime_error("The workbook cannot be made.");
        }
        head_ = workbook_add_format(book_);
        format_set_bold(head_);
        format_set_bg_color(head_, 0xE8E8E8);
        format_set_bottom(head_, LXW_BORDER_THIN);
        text_ = workbook_add_format(book_);
        format_set_align(text_, LXW_ALIGN_VERTICAL_TOP);
        format_set_text_wrap(text_);
        for (const auto& [type, pattern] :
             {std::pair(PlainType::kWhole, "0"), std::pair(PlainType::kDollars, "#,##0.00"),
              std::pair(PlainType::kAcres, "#,##0.00")}) {
            numbers_[type] = workbook_add_format(book_);
            format_set_num_format(numbers_[type], pattern);
            format_set_align(numbers_[type], LXW_ALIGN_VERTICAL_TOP);
        }
        total_ = workbook_add_format(book_);
        format_set_num_format(total_, "$#,##0;-$#,##0");
    }
    Workbook(const Workbook&) = delete;
    Workbook& operator=(const Workbook&) = delete;
    ~Workbook() {
        if (book_ != nullptr) {
            const Hush hush;
            workbook_close(book_);
        }
    }
    void Close() {
        const Hush hush;
        errno = 0;
        if (workbook_close(std::exchange(book_, nullptr)) != LXW_NO_ERROR) {
            ThrowSystemError();
        }
    }
    // How many cells each sheet has, in the order of the sheets.
    [[nodiscard]] const std::vector<std::size_t>& Cells() const { return cells_; }

    void AddTable(const PlainTable& table);
    void AddTotals(const season::Season& season, const PlainTable& values);
    void AddNotes();

private:
    lxw_worksheet* AddSheet(const char* name, const std::vector<std::string>& headings);
    void Count(lxw_error error) {
        Require(error);
        ++cells_.back();
    }
    void Write(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column, PlainType type,
               const PlainValue& value);
    void WriteText(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column, const std::string& text);

    struct Note {
        std::string sheet;
        std::string cell;
        std::size_t characters = 0;
    };

    lxw_workbook* book_;
    lxw_format* head_ = nullptr;
    lxw_format* text_ = nullptr;
    lxw_format* total_ = nullptr;
    std::map<PlainType, lxw_format*> numbers_;
    std::string sheetName_;
    std::vector<Note> notes_;
    std::vector<std::size_t> cells_;
};

lxw_worksheet* Workbook::AddSheet(const char* name, const std::vector<std::string>& headings) {
    lxw_worksheet* const sheet = workbook_add_worksheet(book_, name);
    if (sheet == nullptr) {
        throw std::runtime_error("The workbook cannot be made.");
    }
    sheetName_ = name;
    cells_.push_back(0);
    for (std::size_t i = 0; i < headings.size(); ++i) {
        Count(worksheet_write_string(sheet, 0, static_cast<lxw_col_t>(i), headings[i].c_str(),
                                     head_));
    }
    worksheet_freeze_panes(sheet, 1, 0);
    worksheet_repeat_rows(sheet, 0, 0);
    worksheet_fit_to_pages(sheet, 1, 0);
    return sheet;
}

void Workbook::WriteText(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column,
                         const std::string& text) {
    bool isCut = false;
    const std::string shown = CellText(text, isCut);
    if (isCut) {
        notes_.push_back({sheetName_, static_cast<char>('A' + column) + std::to_string(row + 1),
                          season::ToUtf16(text).size()});
    }
    Count(worksheet_write_string(sheet, row, column, shown.c_str(), text_));
}

void Workbook::Write(lxw_worksheet* sheet, lxw_row_t row, lxw_col_t column, PlainType type,
                     const PlainValue& value) {
    if (const auto* whole = std::get_if<std::int32_t>(&value)) {
        Count(worksheet_write_number(sheet, row, column, *whole, numbers_[type]));
    } else if (const auto* number = std::get_if<float>(&value)) {
        if (std::isfinite(*number)) {
            Count(worksheet_write_number(sheet, row, column, Typed(*number), numbers_[type]));
        } else {
            WriteText(sheet, row, column, Figure(*number));
        }
    } else if (const auto* text = std::get_if<std::string>(&value)) {
        WriteText(sheet, row, column, *text);
    }
}

void Workbook::AddTable(const PlainTable& table) {
    std::vector<std::string> headings;
    for (const PlainField& field : table.fields) {
        headings.push_back(field.name);
    }
    lxw_worksheet* const sheet = AddSheet(table.name.c_str(), headings);
    for (std::size_t i = 0; i < table.fields.size(); ++i) {
        constexpr double kOfNumber = 14;
        constexpr double kOfText = 36;
        constexpr double kOfMemo = 80;
        const double width = table.fields[i].name == "Explanation"      ? kOfMemo
                             : table.fields[i].type == PlainType::kText ? kOfText
                                                                        : kOfNumber;
        const auto column = static_cast<lxw_col_t>(i);
        Require(worksheet_set_column(sheet, column, column, width, nullptr));
    }
    for (std::size_t row = 0; row < table.records.size(); ++row) {
        for (std::size_t i = 0; i < table.fields.size(); ++i) {
            Write(sheet, static_cast<lxw_row_t>(row + 1), static_cast<lxw_col_t>(i),
                  table.fields[i].type, table.records[row][i]);
        }
    }
}

// Where the rows of each location stand in the sheet of values, counted as the sheet counts.
std::map<std::int32_t, std::pair<std::size_t, std::size_t>> RowsByLocation(
    const PlainTable& values) {
    std::map<std::int32_t, std::pair<std::size_t, std::size_t>> rows;
    for (std::size_t i = 0; i < values.records.size(); ++i) {
        const auto resource = std::get<std::int32_t>(values.records[i][1]);
        if (resource >= 1 && resource <= season::kNvcResources) {
            const auto key = std::get<std::int32_t>(values.records[i][0]);
            rows.try_emplace(key, i + 2, i + 2).first->second.second = i + 2;
        }
    }
    return rows;
}

// What the formulas give: the sums of the numbers that the cells show.
ValueRow SumsOf(const season::Location& location) {
    ValueRow sums{};
    for (const season::NvcRow& row : location.rows) {
        const bool counts = row.resource >= 1 && row.resource <= season::kNvcResources;
        for (std::size_t i = 0; counts && i < sums.size(); ++i) {
            sums[i] += IsFinite(row.values[i]) ? Typed(row.values[i].value_or(0.0F)) : 0.0;
        }
    }
    return sums;
}

void Workbook::AddTotals(const season::Season& season, const PlainTable& values) {
    std::vector<std::string> headings{"Zone", "FMZKey", "Location"};
    for (int level = 1; level <= season::kFilLevels; ++level) {
        headings.push_back("FIL" + std::to_string(level));
    }
    lxw_worksheet* const sheet = AddSheet("Totals", headings);
    Require(worksheet_set_column(sheet, 0, 0, 36, nullptr));
    Require(worksheet_set_column(sheet, 1, 8, 14, nullptr));
    const auto rowsByLocation = RowsByLocation(values);
    lxw_row_t row = 0;
    EachLive(season, [&](const season::Zone& zone, int number, const season::Location* location) {
        ++row;
        WriteText(sheet, row, 0, zone.name.value_or(std::string()));
        Write(sheet, row, 1, PlainType::kWhole, zone.key);
        Write(sheet, row, 2, PlainType::kWhole, number);
        const auto rows =
            rowsByLocation.find(static_cast<std::int32_t>(season::JoinKey(zone.key, number)));
        if (rows == rowsByLocation.end()) {
            return;
        }
        const ValueRow totals = SumsOf(*location);
        for (lxw_col_t level = 0; level < season::kFilLevels; ++level) {
            const std::string column(1, static_cast<char>('C' + level));
            std::string formula = "=SUM(NVCPerAcre!";
            formula.append(column).append(std::to_string(rows->second.first)).append(":");
            formula.append(column).append(std::to_string(rows->second.second)).append(")");
            Count(worksheet_write_formula_num(sheet, row, static_cast<lxw_col_t>(3 + level),
                                              formula.c_str(), total_, totals[level]));
        }
    });
}

void Workbook::AddNotes() {
    if (notes_.empty()) {
        return;
    }
    const std::vector<Note> notes = notes_;
    lxw_worksheet* const sheet = AddSheet("Notes", {"Sheet", "Cell", "Note"});
    Require(worksheet_set_column(sheet, 2, 2, 100, nullptr));
    lxw_row_t row = 0;
    for (const Note& note : notes) {
        ++row;
        WriteText(sheet, row, 0, note.sheet);
        WriteText(sheet, row, 1, note.cell);
        WriteText(sheet, row, 2,
                  "The text has " + Figure(static_cast<double>(note.characters)) +
                      " characters; a cell holds the first 32,767 of them.");
    }
}

}  // namespace

void WriteWorkbook(const season::Season& season, const std::filesystem::path& path) {
    std::filesystem::path part = path;
    part += ".part";
    std::error_code ignored;
    try {
        RequireWritable(part);
        Workbook workbook(part);
        const std::vector<PlainTable> tables = PlainTables(season);
        for (const PlainTable& table : tables) {
            workbook.AddTable(table);
        }
        workbook.AddTotals(season, tables.back());
        workbook.AddNotes();
        workbook.Close();
        RequireWhole(part, workbook.Cells());
        std::filesystem::rename(part, path);
    } catch (...) {
        std::filesystem::remove(part, ignored);
        throw;
    }
}

}  // namespace review
