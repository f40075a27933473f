// The frame of a virtual table: SQLite's callbacks, made of a table and a cursor that know nothing
// of them. What these throw becomes SQLite's error, with its message.
//
// A Table is a sqlite3_vtab that is made by Make of the files of the connection and the words of
// the statement, gives the Declaration of its columns as a statement, and answers BestIndex with a
// result code. A Cursor is a sqlite3_vtab_cursor that is made of its table; Start begins with a
// plan and the values for it, Next and IsAtEnd walk, Give hands out a column, RowId a number.
#pragma once

#include <memory>
#include <span>
#include <string>

#include "jetsql/ModuleParts.h"

namespace jetsql {

template <typename Table, typename Cursor>
class VirtualTable {
public:
    // `isEponymous`: the module's name by itself is a table, or a function.
    static sqlite3_module Module(bool isEponymous) {
        sqlite3_module module{};
        module.xCreate = isEponymous ? nullptr : Create;
        module.xConnect = Connect;
        module.xBestIndex = BestIndex;
        module.xDisconnect = Disconnect;
        module.xDestroy = isEponymous ? nullptr : Disconnect;
        module.xOpen = Open;
        module.xClose = Close;
        module.xFilter = Filter;
        module.xNext = Next;
        module.xEof = IsAtEnd;
        module.xColumn = GiveColumn;
        module.xRowid = GiveRowId;
        return module;
    }

private:
    static Table& ToTable(sqlite3_vtab* table) { return *static_cast<Table*>(table); }
    static Cursor& ToCursor(sqlite3_vtab_cursor* cursor) { return *static_cast<Cursor*>(cursor); }

    static int Connect(sqlite3* connection, void* files, int count, const char* const* arguments,
                       sqlite3_vtab** made, char** message) {
        return Guarded(*message, [&] {
            auto table = Table::Make(**static_cast<SharedFiles*>(files),
                                     {arguments, static_cast<std::size_t>(count)});
            const int code = sqlite3_declare_vtab(connection, table->Declaration().c_str());
            if (code == SQLITE_OK) *made = table.release();
            return code;
        });
    }
    // Apart from Connect: where the two are the same, SQLite takes the module for eponymous.
    static int Create(sqlite3* connection, void* files, int count, const char* const* arguments,
                      sqlite3_vtab** made, char** message) {
        return Connect(connection, files, count, arguments, made, message);
    }
    static int Disconnect(sqlite3_vtab* table) {
        delete &ToTable(table);
        return SQLITE_OK;
    }
    static int BestIndex(sqlite3_vtab* table, sqlite3_index_info* info) {
        return Guarded(table->zErrMsg, [&] { return ToTable(table).BestIndex(*info); });
    }
    static int Open(sqlite3_vtab* table, sqlite3_vtab_cursor** made) {
        return Guarded(table->zErrMsg, [&] {
            *made = std::make_unique<Cursor>(ToTable(table)).release();
            return SQLITE_OK;
        });
    }
    static int Close(sqlite3_vtab_cursor* cursor) {
        delete &ToCursor(cursor);
        return SQLITE_OK;
    }
    static int Filter(sqlite3_vtab_cursor* cursor, int /*number*/, const char* plan, int /*count*/,
                      sqlite3_value** values) {
        return Guarded(cursor->pVtab->zErrMsg, [&] {
            ToCursor(cursor).Start(plan, values);
            return SQLITE_OK;
        });
    }
    static int Next(sqlite3_vtab_cursor* cursor) {
        return Guarded(cursor->pVtab->zErrMsg, [&] {
            ToCursor(cursor).Next();
            return SQLITE_OK;
        });
    }
    static int IsAtEnd(sqlite3_vtab_cursor* cursor) { return ToCursor(cursor).IsAtEnd() ? 1 : 0; }
    static int GiveColumn(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column) {
        return Guarded(cursor->pVtab->zErrMsg, [&] {
            ToCursor(cursor).Give(context, column);
            return SQLITE_OK;
        });
    }
    static int GiveRowId(sqlite3_vtab_cursor* cursor, sqlite3_int64* rowid) {
        *rowid = ToCursor(cursor).RowId();
        return SQLITE_OK;
    }
};

}  // namespace jetsql
