#include "jetsql/JetTable.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/recordset.h"
#include "jetsql/KeyRange.h"
#include "jetsql/Plan.h"
#include "jetsql/Values.h"
#include "jetsql/VirtualTable.h"

namespace jetsql {

namespace {

// Records between two looks at whether the file is still the one that was opened.
constexpr int kLookEvery = 256;
constexpr std::size_t kFirstArgument = 3;  // of a module: behind module, schema and table name
constexpr std::size_t kArguments = 2;

struct Table : sqlite3_vtab {
    static std::unique_ptr<Table> Make(OpenedFiles& files, std::span<const char* const> arguments);
    [[nodiscard]] std::string Declaration() const {
        return jetsql::Declaration(schema, "x", false);
    }
    int BestIndex(sqlite3_index_info& info) const;

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

    void Start(const char* text, sqlite3_value** values) {
        const Plan plan = Plan::FromText(text);
        RequireUnchanged();
        walked_ = 0;
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
        ++walked_;
        atEnd_ = backwards_ ? records_->IsBof() : records_->IsEof();
        StopAtEnd();
        if (atEnd_ || walked_ % kLookEvery == 0) RequireUnchanged();
    }

    [[nodiscard]] bool IsAtEnd() const { return atEnd_; }
    // One for each record whatever the plan is: SQLite joins the parts of an OR by it.
    [[nodiscard]] std::int64_t RowId() const { return records_->RecordId(); }
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
    std::int64_t walked_ = 0;
    bool backwards_ = false;
    bool atEnd_ = true;
};

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

std::unique_ptr<Table> Table::Make(OpenedFiles& files, std::span<const char* const> arguments) {
    if (arguments.size() != kFirstArgument + kArguments) {
        throw jet::Error(jet::ErrorKind::kSyntax, "Write jet('FILE', 'TABLE').");
    }
    auto table = std::make_unique<Table>();
    table->file = files.Open(Unquoted(arguments[kFirstArgument]));
    table->schema = table->file->Data().Describe(Unquoted(arguments[kFirstArgument + 1]));
    table->records = table->file->Data().OpenTable(table->schema.name)->RecordCount();
    return table;
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

int Table::BestIndex(sqlite3_index_info& info) const {
    const Plan plan = MakePlan(schema, records, Conditions(&info), Orders(info));
    int argument = 0;
    for (const Condition& condition : plan.conditions) {
        info.aConstraintUsage[condition.argument].argvIndex = ++argument;
    }
    info.idxStr = sqlite3_mprintf("%s", plan.Text(schema).c_str());
    if (info.idxStr == nullptr) return SQLITE_NOMEM;
    info.needToFreeIdxStr = 1;
    info.orderByConsumed = plan.ordered ? 1 : 0;
    info.estimatedCost = plan.cost;
    info.estimatedRows = static_cast<sqlite3_int64>(plan.rows);
    return SQLITE_OK;
}

}  // namespace

int AddJetModule(sqlite3* connection, std::shared_ptr<OpenedFiles> files) {
    static const sqlite3_module kModule = VirtualTable<Table, Cursor>::Module(false);
    return sqlite3_create_module_v2(connection, "jet", &kModule, new SharedFiles(std::move(files)),
                                    DeleteSharedFiles);
}

}  // namespace jetsql
