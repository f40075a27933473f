#include "jetsql/JetTable.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "jet/recordset.h"
#include "jetsql/KeyRange.h"
#include "jetsql/ModuleParts.h"
#include "jetsql/Plan.h"
#include "jetsql/Values.h"

namespace jetsql {

namespace {

// Records between two looks at whether the file is still the one that was opened.
constexpr int kLookEvery = 256;
constexpr int kFirstArgument = 3;  // of a module: behind module, schema and table name
constexpr int kArguments = 2;

struct Table : sqlite3_vtab {
    std::shared_ptr<OpenedFile> file;
    jet::TableSchema schema;
    double records = 0;
};

class Cursor : public sqlite3_vtab_cursor {
public:
    explicit Cursor(Table& table)
        : sqlite3_vtab_cursor{},
          table_(table),
          records_(table.file->Data().OpenTable(table.schema.name)) {
        for (const jet::ColumnSchema& column : table.schema.columns) {
            fields_.push_back(records_->Field(column.name));
        }
    }

    void Start(const Plan& plan, sqlite3_value** values) {
        RequireUnchanged();
        rowid_ = 0;
        backwards_ = plan.backwards;
        end_.clear();
        if (plan.index < 0) {
            records_->SetIndex("");
            atEnd_ = records_->IsEof();
            return;
        }
        const KeyRange range = MakeKeyRange(table_.schema, plan, values);
        records_->SetIndex(table_.schema.indexes[static_cast<std::size_t>(plan.index)].name);
        atEnd_ = range.empty || !GoToStart(range);
        const std::vector<jet::Value>& end = backwards_ ? range.lower : range.upper;
        if (!end.empty()) records_->MakeKey(end, end_);
        StopAtEnd();
    }

    void Next() {
        if (backwards_) {
            records_->MovePrevious();
        } else {
            records_->MoveNext();
        }
        ++rowid_;
        atEnd_ = backwards_ ? records_->IsBof() : records_->IsEof();
        StopAtEnd();
        if (atEnd_ || rowid_ % kLookEvery == 0) RequireUnchanged();
    }

    [[nodiscard]] bool IsAtEnd() const { return atEnd_; }
    [[nodiscard]] std::int64_t RowId() const { return rowid_; }
    void Give(sqlite3_context* context, int column) const {
        const auto at = static_cast<std::size_t>(column);
        GiveResult(context, *records_, fields_[at], table_.schema.columns[at].type);
    }

private:
    bool GoToStart(const KeyRange& range) {
        const std::vector<jet::Value>& start = backwards_ ? range.upper : range.lower;
        if (!start.empty()) {
            return records_->Seek(
                backwards_ ? jet::Comparison::kLessOrEqual : jet::Comparison::kGreaterOrEqual,
                start);
        }
        if (backwards_ && !records_->IsEof()) records_->MoveLast();
        return !records_->IsEof();
    }

    // Records whose key begins with the end's still belong to the range.
    void StopAtEnd() {
        if (atEnd_ || end_.empty()) return;
        const int order = records_->CompareToKey(end_);
        atEnd_ = backwards_ ? order < 0 : order > 0;
    }

    void RequireUnchanged() const {
        if (!table_.file->IsUnchanged()) {
            throw jet::Error(jet::ErrorKind::kFileInUse,
                             "The file was changed by another program after it had been opened. "
                             "Ask again.");
        }
    }

    Table& table_;
    std::unique_ptr<jet::Recordset> records_;
    std::vector<jet::FieldId> fields_;
    std::vector<std::byte> end_;  // the key at which the walk ends; empty: at the index's end
    std::int64_t rowid_ = 0;
    bool backwards_ = false;
    bool atEnd_ = true;
};

Cursor& ToCursor(sqlite3_vtab_cursor* cursor) {
    return *static_cast<Cursor*>(cursor);
}

// An argument as it stands in the statement, quotes and all.
std::string Unquoted(const std::string& argument) {
    if (argument.size() < 2 || (argument.front() != '\'' && argument.front() != '"')) {
        return argument;
    }
    std::string text;
    for (std::size_t at = 1; at + 1 < argument.size(); ++at) {
        text += argument[at];
        if (argument[at] == argument.front()) ++at;  // doubled
    }
    return text;
}

int Connect(sqlite3* connection, void* files, int count, const char* const* arguments,
            sqlite3_vtab** made, char** message) {
    return Guarded(*message, [&] {
        if (count != kFirstArgument + kArguments) {
            throw jet::Error(jet::ErrorKind::kSyntax, "Write jet('FILE', 'TABLE').");
        }
        auto table = std::make_unique<Table>();
        table->file =
            (*static_cast<SharedFiles*>(files))->Open(Unquoted(arguments[kFirstArgument]));
        table->schema = table->file->Data().Describe(Unquoted(arguments[kFirstArgument + 1]));
        table->records = table->file->Data().OpenTable(table->schema.name)->RecordCount();
        const int code =
            sqlite3_declare_vtab(connection, Declaration(table->schema, "x", false).c_str());
        if (code != SQLITE_OK) return code;
        *made = table.release();
        return SQLITE_OK;
    });
}

// Apart from Connect, so that "jet" by itself is no table.
int Create(sqlite3* connection, void* files, int count, const char* const* arguments,
           sqlite3_vtab** made, char** message) {
    return Connect(connection, files, count, arguments, made, message);
}

int Disconnect(sqlite3_vtab* table) {
    delete static_cast<Table*>(table);
    return SQLITE_OK;
}

std::optional<Bound> BoundOf(int operation) {
    switch (operation) {
        case SQLITE_INDEX_CONSTRAINT_EQ:
            return Bound::kEqual;
        case SQLITE_INDEX_CONSTRAINT_GT:
        case SQLITE_INDEX_CONSTRAINT_GE:
            return Bound::kAbove;
        case SQLITE_INDEX_CONSTRAINT_LT:
        case SQLITE_INDEX_CONSTRAINT_LE:
            return Bound::kBelow;
        default:
            return std::nullopt;
    }
}

// An index compares texts without regard to case and accents' order, so it finds every text that is
// equal in these two ways of comparing, and perhaps more.
bool IsComparedAsKnown(sqlite3_index_info* info, int constraint) {
    const std::string collation = sqlite3_vtab_collation(info, constraint);
    return collation == "BINARY" || collation == "NOCASE";
}

std::vector<Condition> Conditions(sqlite3_index_info* info) {
    std::vector<Condition> conditions;
    for (int at = 0; at < info->nConstraint; ++at) {
        const auto& constraint = info->aConstraint[at];
        const std::optional<Bound> bound = BoundOf(constraint.op);
        if (constraint.usable != 0 && constraint.iColumn >= 0 && bound &&
            IsComparedAsKnown(info, at)) {
            conditions.push_back({.column = constraint.iColumn, .bound = *bound, .argument = at});
        }
    }
    return conditions;
}

std::vector<Order> Orders(const sqlite3_index_info& info) {
    std::vector<Order> orders;
    for (int at = 0; at < info.nOrderBy; ++at) {
        orders.push_back(
            {.column = info.aOrderBy[at].iColumn, .descending = info.aOrderBy[at].desc != 0});
    }
    return orders;
}

int BestIndex(sqlite3_vtab* base, sqlite3_index_info* info) {
    return Guarded(base->zErrMsg, [&] {
        const Table& table = *static_cast<Table*>(base);
        const Plan plan = MakePlan(table.schema, table.records, Conditions(info), Orders(*info));
        int argument = 0;
        for (const Condition& condition : plan.conditions) {
            info->aConstraintUsage[condition.argument].argvIndex = ++argument;
        }
        info->idxStr = sqlite3_mprintf("%s", plan.Text(table.schema).c_str());
        if (info->idxStr == nullptr) return SQLITE_NOMEM;
        info->needToFreeIdxStr = 1;
        info->orderByConsumed = plan.ordered ? 1 : 0;
        info->estimatedCost = plan.cost;
        info->estimatedRows = static_cast<sqlite3_int64>(plan.rows);
        return SQLITE_OK;
    });
}

int Open(sqlite3_vtab* base, sqlite3_vtab_cursor** made) {
    return Guarded(base->zErrMsg, [&] {
        *made = std::make_unique<Cursor>(*static_cast<Table*>(base)).release();
        return SQLITE_OK;
    });
}

int Close(sqlite3_vtab_cursor* cursor) {
    delete &ToCursor(cursor);
    return SQLITE_OK;
}

int Filter(sqlite3_vtab_cursor* cursor, int /*number*/, const char* plan, int /*count*/,
           sqlite3_value** values) {
    return Guarded(cursor->pVtab->zErrMsg, [&] {
        ToCursor(cursor).Start(Plan::FromText(plan), values);
        return SQLITE_OK;
    });
}

int Next(sqlite3_vtab_cursor* cursor) {
    return Guarded(cursor->pVtab->zErrMsg, [&] {
        ToCursor(cursor).Next();
        return SQLITE_OK;
    });
}

int IsAtEnd(sqlite3_vtab_cursor* cursor) {
    return ToCursor(cursor).IsAtEnd() ? 1 : 0;
}

int GiveColumn(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int column) {
    return Guarded(cursor->pVtab->zErrMsg, [&] {
        ToCursor(cursor).Give(context, column);
        return SQLITE_OK;
    });
}

int GiveRowId(sqlite3_vtab_cursor* cursor, sqlite3_int64* rowid) {
    *rowid = ToCursor(cursor).RowId();
    return SQLITE_OK;
}

const sqlite3_module& JetModule() {
    static const sqlite3_module kModule = [] {
        sqlite3_module module{};
        module.xCreate = Create;
        module.xConnect = Connect;
        module.xBestIndex = BestIndex;
        module.xDisconnect = Disconnect;
        module.xDestroy = Disconnect;
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

int AddJetModule(sqlite3* connection, std::shared_ptr<OpenedFiles> files) {
    return sqlite3_create_module_v2(connection, "jet", &JetModule(),
                                    new SharedFiles(std::move(files)), DeleteSharedFiles);
}

}  // namespace jetsql
