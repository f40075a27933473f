// jet_tables('FILE'): the user tables of a file, with the number of their records.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "jet/recordset.h"
#include "jetsql/JetTable.h"
#include "jetsql/VirtualTable.h"

namespace jetsql {

namespace {

enum Column { kName, kRecords, kFile };

struct List : sqlite3_vtab {
    explicit List(OpenedFiles& opened) : sqlite3_vtab{}, files(opened) {}

    static std::unique_ptr<List> Make(OpenedFiles& opened,
                                      std::span<const char* const> /*arguments*/) {
        return std::make_unique<List>(opened);
    }
    [[nodiscard]] static std::string Declaration() {
        return "CREATE TABLE x(name TEXT, records INTEGER, file TEXT HIDDEN)";
    }
    int BestIndex(sqlite3_index_info& info);

    // The module, which outlives its tables, holds them.
    OpenedFiles& files;
};

int List::BestIndex(sqlite3_index_info& info) {
    for (int at = 0; at < info.nConstraint; ++at) {
        const auto& constraint = info.aConstraint[at];
        if (constraint.iColumn == kFile && constraint.op == SQLITE_INDEX_CONSTRAINT_EQ) {
            if (constraint.usable == 0) return SQLITE_CONSTRAINT;
            info.aConstraintUsage[at].argvIndex = 1;
            info.aConstraintUsage[at].omit = 1;
            info.estimatedCost = 1;
            return SQLITE_OK;
        }
    }
    SetMessage(zErrMsg, "Write jet_tables('FILE').");
    return SQLITE_ERROR;
}

class Cursor : public sqlite3_vtab_cursor {
public:
    explicit Cursor(List& list) : sqlite3_vtab_cursor{}, list_(list) {}

    void Start(const char* /*plan*/, sqlite3_value** values) {
        const auto* name = reinterpret_cast<const char*>(sqlite3_value_text(values[0]));
        file_ = name == nullptr ? "" : name;
        entries_.clear();
        at_ = 0;
        const std::shared_ptr<OpenedFile> opened = list_.files.Open(file_);
        jet::Database& data = opened->Data();
        for (const std::string& table : data.TableNames()) {
            entries_.push_back({table, data.OpenTable(table)->RecordCount()});
        }
    }
    void Next() { ++at_; }
    [[nodiscard]] bool IsAtEnd() const { return at_ >= entries_.size(); }
    [[nodiscard]] std::int64_t RowId() const { return static_cast<std::int64_t>(at_); }
    void Give(sqlite3_context* context, int column) const {
        const Entry& entry = entries_[at_];
        if (column == kRecords) {
            sqlite3_result_int(context, entry.records);
            return;
        }
        const std::string& text = column == kName ? entry.name : file_;
        sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }

private:
    struct Entry {
        std::string name;
        std::int32_t records = 0;
    };
    List& list_;
    std::string file_;
    std::vector<Entry> entries_;
    std::size_t at_ = 0;
};

}  // namespace

int AddTablesFunction(sqlite3* connection, std::shared_ptr<OpenedFiles> files) {
    static const sqlite3_module kModule = VirtualTable<List, Cursor>::Module(true);
    return sqlite3_create_module_v2(connection, "jet_tables", &kModule,
                                    new SharedFiles(std::move(files)), DeleteSharedFiles);
}

}  // namespace jetsql
