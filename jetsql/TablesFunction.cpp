// jet_tables('FILE'): the user tables of a file, with the number of their records.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "jet/recordset.h"
#include "jetsql/JetTable.h"
#include "jetsql/ModuleParts.h"

namespace jetsql {

namespace {

enum Column { kName, kRecords, kFile };

struct List : sqlite3_vtab {
    SharedFiles files;
};

struct Cursor : sqlite3_vtab_cursor {
    struct Entry {
        std::string name;
        std::int32_t records = 0;
    };
    std::string file;
    std::vector<Entry> entries;
    std::size_t at = 0;
};

Cursor& ToCursor(sqlite3_vtab_cursor* cursor) {
    return *static_cast<Cursor*>(cursor);
}

int Connect(sqlite3* connection, void* files, int /*count*/, const char* const* /*arguments*/,
            sqlite3_vtab** made, char** message) {
    return Guarded(*message, [&] {
        auto list = std::make_unique<List>();
        list->files = *static_cast<SharedFiles*>(files);
        const int code = sqlite3_declare_vtab(
            connection, "CREATE TABLE x(name TEXT, records INTEGER, file TEXT HIDDEN)");
        if (code == SQLITE_OK) *made = list.release();
        return code;
    });
}

int Disconnect(sqlite3_vtab* list) {
    delete static_cast<List*>(list);
    return SQLITE_OK;
}

int BestIndex(sqlite3_vtab* list, sqlite3_index_info* info) {
    for (int at = 0; at < info->nConstraint; ++at) {
        const auto& constraint = info->aConstraint[at];
        if (constraint.iColumn == kFile && constraint.op == SQLITE_INDEX_CONSTRAINT_EQ) {
            if (constraint.usable == 0) return SQLITE_CONSTRAINT;
            info->aConstraintUsage[at].argvIndex = 1;
            info->aConstraintUsage[at].omit = 1;
            info->estimatedCost = 1;
            return SQLITE_OK;
        }
    }
    SetMessage(list->zErrMsg, "Write jet_tables('FILE').");
    return SQLITE_ERROR;
}

int Open(sqlite3_vtab* list, sqlite3_vtab_cursor** made) {
    return Guarded(list->zErrMsg, [&] {
        *made = std::make_unique<Cursor>().release();
        return SQLITE_OK;
    });
}

int Close(sqlite3_vtab_cursor* cursor) {
    delete &ToCursor(cursor);
    return SQLITE_OK;
}

int Filter(sqlite3_vtab_cursor* base, int /*number*/, const char* /*plan*/, int /*count*/,
           sqlite3_value** values) {
    return Guarded(base->pVtab->zErrMsg, [&] {
        Cursor& cursor = ToCursor(base);
        const auto* name = reinterpret_cast<const char*>(sqlite3_value_text(values[0]));
        cursor.file = name == nullptr ? "" : name;
        cursor.entries.clear();
        cursor.at = 0;
        jet::Database& data = static_cast<List*>(base->pVtab)->files->Open(cursor.file)->Data();
        for (const std::string& table : data.TableNames()) {
            cursor.entries.push_back({table, data.OpenTable(table)->RecordCount()});
        }
        return SQLITE_OK;
    });
}

int Next(sqlite3_vtab_cursor* cursor) {
    ++ToCursor(cursor).at;
    return SQLITE_OK;
}

int IsAtEnd(sqlite3_vtab_cursor* cursor) {
    return ToCursor(cursor).at >= ToCursor(cursor).entries.size() ? 1 : 0;
}

int GiveColumn(sqlite3_vtab_cursor* base, sqlite3_context* context, int column) {
    const Cursor& cursor = ToCursor(base);
    const Cursor::Entry& entry = cursor.entries[cursor.at];
    if (column == kRecords) {
        sqlite3_result_int(context, entry.records);
    } else {
        const std::string& text = column == kName ? entry.name : cursor.file;
        sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    return SQLITE_OK;
}

int GiveRowId(sqlite3_vtab_cursor* cursor, sqlite3_int64* rowid) {
    *rowid = static_cast<sqlite3_int64>(ToCursor(cursor).at);
    return SQLITE_OK;
}

const sqlite3_module& TablesModule() {
    static const sqlite3_module kModule = [] {
        sqlite3_module module{};
        module.xConnect = Connect;
        module.xBestIndex = BestIndex;
        module.xDisconnect = Disconnect;
        module.xOpen = Open;
        module.xClose = Close;
        module.xFilter = Filter;
        module.xNext = Next;
        module.xEof = IsAtEnd;
        module.xColumn = GiveColumn;
        module.xRowid = GiveRowId;
        return module;
    }();
    return kModule;
}

}  // namespace

int AddTablesFunction(sqlite3* connection, std::shared_ptr<OpenedFiles> files) {
    return sqlite3_create_module_v2(connection, "jet_tables", &TablesModule(),
                                    new SharedFiles(std::move(files)), DeleteSharedFiles);
}

}  // namespace jetsql
