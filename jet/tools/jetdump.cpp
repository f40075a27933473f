// jetdump FILE [TABLE | page N | index TABLE.INDEX]
//
// Shows what is inside a database file, in words: the file and its tables; a table's columns,
// indexes and rows; a page as it is stored, whatever it is; an index in order. Opens the file for
// reading only; a page is shown even of a file that is too damaged to be opened.
//
// Exit status: 0 shown, 1 no such table, page or index, 2 unreadable.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "check/page_source.h"
#include "index/index_cursor.h"
#include "jet/error.h"
#include "jet/path.h"
#include "page/header.h"
#include "parts/dump_values.h"
#include "parts/help.h"
#include "parts/page_words.h"
#include "recordset/open_file.h"
#include "table/row_cursor.h"
#include "values/text.h"

namespace {

constexpr int kShown = 0;
constexpr int kAbsent = 1;
constexpr int kUnreadable = 2;

class Opened {
public:
    explicit Opened(const char* path)
        : database_(
              jet::Database::Open(jet::PathOf(path), {.exclusive = false, .readOnly = true})) {}

    jet::OpenFile& File() { return *database_->Internals().file; }

    jet::Table* Find(const std::string& name) {
        const jet::CatalogEntry* entry = File().Tables().Find(jet::WidenName(name));
        if (entry == nullptr) {
            std::fprintf(stderr, "there is no table %s\n", name.c_str());
            return nullptr;
        }
        return &File().Tables().Open(*entry);
    }

private:
    std::unique_ptr<jet::Database> database_;
};

int ShowFile(const char* path) {
    Opened opened(path);
    jet::Pager& pager = opened.File().Pages();
    const jet::FileHeader& header = pager.Header();
    std::printf("%s: %s, %u pages of %u bytes, language %u, code page %u\n", path,
                header.version == jet::Version::kJet3 ? "Jet 3" : "Jet 4", pager.PageCount(),
                pager.FileFormat().pageSize, header.language, header.codePage);
    for (const jet::CatalogEntry& entry : opened.File().Tables().Entries()) {
        const jet::Definition& definition = opened.File().Tables().Open(entry).Def();
        std::printf("%s table %s: %u rows, %zu columns, %zu indexes, definition on page %u\n",
                    entry.system ? "system" : "user", entry.name.c_str(), definition.rowCount,
                    definition.columns.size(), definition.logicalIndexes.size(),
                    definition.page.value);
    }
    return kShown;
}

void ShowIndexes(const jet::Definition& definition) {
    for (const jet::LogicalIndex& index : definition.logicalIndexes) {
        const jet::RealIndex& real = definition.realIndexes[index.real];
        std::printf("index %s on", index.name.c_str());
        for (const jet::RealIndex::Part& part : real.parts) {
            std::printf(" %s%s", definition.columns[part.column].name.c_str(),
                        part.ascending ? "" : " descending");
        }
        std::printf("%s%s%s%s%s, root page %u\n",
                    index.role == jet::IndexRole::kPrimary ? ", primary key" : "",
                    index.role == jet::IndexRole::kRelation ? ", of a relationship" : "",
                    real.Unique() ? ", unique" : "", real.IgnoresNulls() ? ", without nulls" : "",
                    real.Required() ? ", required" : "", real.root.value);
    }
}

int ShowTable(const char* path, const std::string& name) {
    Opened opened(path);
    jet::Table* table = opened.Find(name);
    if (table == nullptr) {
        return kAbsent;
    }
    const jet::Definition& definition = table->Def();
    std::printf("table %s: definition on page %u, %u rows, last number given out %u\n",
                table->Name().c_str(), definition.page.value, definition.rowCount,
                definition.lastAutoNumber);
    for (const jet::Column& column : definition.columns) {
        std::printf("column %u %s: %s, %u bytes, %s%s\n", column.number, column.name.c_str(),
                    TypeWord(column.type).c_str(), column.length,
                    column.fixed
                        ? ("at byte " + std::to_string(column.fixedOffset)).c_str()
                        : ("variable value " + std::to_string(column.variableIndex)).c_str(),
                    column.autoNumber ? ", auto-number" : "");
    }
    ShowIndexes(definition);
    jet::RowCursor rows(table->Rows());
    for (bool on = rows.SeekToFirst(); on; on = rows.Next()) {
        const jet::RowId id = rows.Row();
        jet::StoredRow stored;
        if (!table->Rows().Find(id, stored)) {
            continue;
        }
        const jet::RowView view = table->View(stored.bytes);
        std::printf("row %u.%u:", id.page.value, unsigned{id.slot});
        for (std::size_t i = 0; i < definition.columns.size(); ++i) {
            std::printf("%s %s=%s", i == 0 ? "" : ",", definition.columns[i].name.c_str(),
                        DumpValue(table->ReadValue(view, i)).c_str());
        }
        std::printf("\n");
    }
    return kShown;
}

int ShowIndex(const char* path, const std::string& name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos) {
        std::fputs("an index is named as TABLE.INDEX\n", stderr);
        return kAbsent;
    }
    Opened opened(path);
    jet::Table* table = opened.Find(name.substr(0, dot));
    if (table == nullptr) {
        return kAbsent;
    }
    const jet::LogicalIndex* index = table->Def().FindIndex(jet::WidenName(name.substr(dot + 1)));
    if (index == nullptr) {
        std::fprintf(stderr, "the table has no index %s\n", name.c_str() + dot + 1);
        return kAbsent;
    }
    const jet::TableIndex& tree = *table->Indexes()[index->real];
    std::printf("index %s: root page %u\n", name.c_str(), tree.Real().root.value);
    jet::IndexCursor cursor(tree.Tree());
    for (bool on = cursor.SeekToFirst(); on; on = cursor.Next()) {
        const jet::IndexEntry* const entry = &cursor.Entry();
        std::printf("row %u.%u: key %s", entry->row.page.value, unsigned{entry->row.slot},
                    HexWords(entry->key).c_str());
        jet::StoredRow stored;
        if (table->Rows().Find(entry->row, stored)) {
            const jet::RowView view = table->View(stored.bytes);
            for (const jet::RealIndex::Part& part : tree.Real().parts) {
                std::printf("  %s", DumpValue(table->ReadValue(view, part.column)).c_str());
            }
        }
        std::printf("\n");
    }
    return kShown;
}

int ShowPage(const char* path, const std::string& number) {
    const jet::InspectedFile inspected = jet::OpenForInspection(path, jet::HostFileSystem());
    const jet::Format& format = jet::FormatOf(inspected.header.version);
    const jet::FilePages pages(inspected);
    char* end = nullptr;
    const unsigned long page = std::strtoul(number.c_str(), &end, 10);
    if (number.empty() || *end != '\0' || page >= pages.PageCount()) {
        std::fprintf(stderr, "the file has pages 0 to %u\n", pages.PageCount() - 1);
        return kAbsent;
    }
    std::fputs(PageWords(pages.Read(static_cast<std::uint32_t>(page)), format,
                         static_cast<std::uint32_t>(page))
                   .c_str(),
               stdout);
    return kShown;
}

constexpr const char* kUsage =
    "usage: jetdump FILE [TABLE | page N | index TABLE.INDEX]\n"
    "Shows the tables of a database file, the rows of one, a page, or the entries of an index.\n";

}  // namespace

int main(int argc, char** argv) {
    if (AsksForHelp(argc, argv)) {
        std::fputs(kUsage, stdout);
        return kShown;
    }
    try {
        const std::string what = argc > 2 ? argv[2] : "";
        if (argc == 2) {
            return ShowFile(argv[1]);
        }
        if (argc == 3) {
            return ShowTable(argv[1], what);
        }
        if (argc == 4 && what == "page") {
            return ShowPage(argv[1], argv[3]);
        }
        if (argc == 4 && what == "index") {
            return ShowIndex(argv[1], argv[3]);
        }
        std::fputs(kUsage, stderr);
        return kUnreadable;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return kUnreadable;
    }
}
