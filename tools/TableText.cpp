#include "tools/TableText.h"

#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "jet/value.h"

namespace tools {

namespace {

std::vector<std::string> Split(const std::string& line, char separator) {
    std::vector<std::string> parts(1);
    for (const char character : line) {
        if (character == separator) {
            parts.emplace_back();
        } else {
            parts.back() += character;
        }
    }
    return parts;
}

std::u16string ToUtf16(const std::string& text) {
    return std::filesystem::path(reinterpret_cast<const char8_t*>(text.c_str())).u16string();
}

}  // namespace

std::vector<TextRow> ReadTable(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::string line;
    if (!std::getline(file, line)) {
        throw std::runtime_error("cannot read " + path.string());
    }
    const std::vector<std::string> names = Split(line, '\t');
    std::vector<TextRow> rows;
    while (std::getline(file, line)) {
        const std::vector<std::string> texts = Split(line, '\t');
        if (texts.size() != names.size()) {
            throw std::runtime_error(path.string() + ": wrong number of fields: " + line);
        }
        TextRow row;
        for (std::size_t at = 0; at < names.size(); ++at) {
            row[names[at]] = texts[at];
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

std::vector<std::string> SplitWords(const std::string& text) {
    return Split(text, ' ');
}

void SetFromText(jet::Recordset& records, std::string_view field, const std::string& text) {
    if (text.empty()) {
        return;
    }
    const jet::FieldId id = records.Field(field);
    switch (records.Fields().at(static_cast<std::size_t>(id.position)).type) {
        case jet::ColumnType::kText:
        case jet::ColumnType::kMemo:
            records.Set(id, ToUtf16(text));
            break;
        case jet::ColumnType::kSingle:
            records.Set(id, std::stof(text));
            break;
        case jet::ColumnType::kDouble:
            records.Set(id, std::stod(text));
            break;
        default:
            records.Set(id, static_cast<std::int32_t>(std::stol(text)));
            break;
    }
}

void AddRows(jet::Database& database, std::string_view table, const std::vector<TextRow>& rows) {
    const auto records = database.OpenTable(table);
    for (const TextRow& row : rows) {
        records->AddNew();
        for (const auto& [field, text] : row) {
            SetFromText(*records, field, text);
        }
        records->Update();
    }
}

jet::ColumnSchema Column(std::string name, jet::ColumnType type, int length) {
    jet::ColumnSchema column;
    column.name = std::move(name);
    column.type = type;
    column.length = length;
    return column;
}

jet::ColumnSchema AutoNumber(std::string name) {
    jet::ColumnSchema column = Column(std::move(name), jet::ColumnType::kLong);
    column.autoNumber = true;
    return column;
}

jet::IndexSchema Index(std::string name, const std::vector<std::string>& columns, bool primary) {
    jet::IndexSchema index;
    index.name = std::move(name);
    for (const std::string& column : columns) {
        index.columns.push_back({column, true});
    }
    index.primary = primary;
    index.unique = primary;
    index.required = primary;
    return index;
}

void MakeFile(const std::filesystem::path& path, const std::function<void(jet::Database&)>& fill) {
    if (path.has_parent_path()) {
        std::filesystem::create_directories(path.parent_path());
    }
    std::filesystem::path unfinished = path;
    unfinished += ".part";
    std::filesystem::remove(unfinished);
    const auto database = jet::Database::Create(unfinished, jet::Version::kJet4);
    fill(*database);
    database->Close();
    std::filesystem::rename(unfinished, path);
}

int RunTool(const std::function<void()>& work) {
    try {
        work();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}

}  // namespace tools
