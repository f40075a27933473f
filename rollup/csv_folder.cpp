#include "rollup/csv_folder.h"

#include <algorithm>
#include <charconv>
#include <span>

#include "rollup/csv_text.h"
#include "rollup/destination.h"
#include "rollup/sha256.h"

namespace rollup {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kYearFolder = "year=";
constexpr std::string_view kUnknownYear = "unknown";
constexpr std::string_view kEnding = ".csv.gz";
constexpr std::size_t kNameDigits = 16;

std::string YearFolder(Year year) {
    return std::string(kYearFolder) + (year ? std::to_string(*year) : std::string(kUnknownYear));
}

std::optional<std::int64_t> WholeOf(std::string_view digits) {
    std::int64_t number = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const bool isWhole = end.ec == std::errc() && end.ptr == digits.data() + digits.size();
    return isWhole ? std::optional(number) : std::nullopt;
}

// The year of such a folder; nothing for another one.
std::optional<Year> YearOfFolder(const std::string& name) {
    if (!name.starts_with(kYearFolder)) {
        return std::nullopt;
    }
    const std::string_view rest = std::string_view(name).substr(kYearFolder.size());
    if (rest == kUnknownYear) {
        return Year();
    }
    const auto year = WholeOf(rest);
    return year ? std::optional(year) : std::nullopt;
}

// The name without its ending where it is one that rows have.
std::optional<std::string> RowName(const std::string& file) {
    const bool isName = file.size() == kNameDigits + kEnding.size() && file.ends_with(kEnding) &&
                        file.find_first_not_of("0123456789abcdef") == kNameDigits;
    return isName ? std::optional(file.substr(0, kNameDigits)) : std::nullopt;
}

}  // namespace

fs::path CsvFolder::Place(TableId table, Year year, const std::string& name) const {
    return folder_ / TableOf(table).name / YearFolder(year) / (name + std::string(kEnding));
}

std::string CsvFolder::NameOfPath(const std::string& path) {
    Sha256 sha;
    sha.Add(std::as_bytes(std::span(path)));
    return sha.Finish().substr(0, kNameDigits);
}

void CsvFolder::EachFile(TableId table, const TakeFile& take) const {
    std::error_code absent;
    for (const fs::directory_entry& folder :
         fs::directory_iterator(folder_ / TableOf(table).name, absent)) {
        const auto year = YearOfFolder(folder.path().filename().string());
        if (!year || !folder.is_directory()) {
            continue;
        }
        for (const fs::directory_entry& file : fs::directory_iterator(folder.path())) {
            if (const auto name = RowName(file.path().filename().string())) {
                take(file.path(), *year, *name);
            }
        }
    }
}

std::optional<FileRow> CsvFolder::ReadFileRow(const fs::path& file, Year year) {
    constexpr std::size_t kFields = 11;  // all but the year
    GzipReader reader(file);
    CsvRecord heading;
    CsvRecord fields;
    if (!ReadRecord(reader, heading) || !ReadRecord(reader, fields) || fields.size() != kFields ||
        reader.Next() >= 0 || !reader.IsWhole()) {
        return std::nullopt;
    }
    auto field = fields.begin();
    const auto whole = [](const std::optional<std::string>& text) {
        return text ? WholeOf(*text) : std::nullopt;
    };
    FileRow row;
    row.fileId = *field++;
    row.path = field++->value_or("");
    row.sha256 = *field++;
    row.bytes = whole(*field++);
    row.format = *field++;
    row.jet = whole(*field++);
    row.unit = *field++;
    row.state = *field++;
    row.year = year;
    row.unitName = *field++;
    row.status = StatusOf(field++->value_or(""));
    row.reason = *field;
    return row;
}

}  // namespace rollup
