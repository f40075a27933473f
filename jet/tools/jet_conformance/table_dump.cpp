#include "jet_conformance/table_dump.h"

#include <algorithm>
#include <set>

#include "index/index_cursor.h"
#include "parts/dump_values.h"
#include "parts/page_words.h"
#include "table/row_cursor.h"
#include "values/collation.h"

namespace {

using jet::Column;
using jet::ColumnType;
using jet::Key;
using jet::RowId;
using jet::Value;

std::string Bool(bool value) {
    return value ? "true" : "false";
}

class Dumper {
public:
    Dumper(jet::Table& table, bool system)
        : table_(table), system_(system), jet3_(table.Def().version == jet::Version::kJet3) {}

    TableDump Run() {
        DumpDefinition();
        DumpRows();
        for (std::size_t i = 0; i < table_.Indexes().size(); ++i) {
            WalkIndex(i);
        }
        DumpIndexes();
        dump_.lines.push_back(R"({"k":"endtable","name":)" + QuotedName(table_.Name()) +
                              ",\"rows\":" + std::to_string(dump_.rows) + "}");
        return std::move(dump_);
    }

private:
    void DumpDefinition() {
        const jet::Definition& definition = table_.Def();
        dump_.lines.push_back(R"({"k":"table","name":)" + QuotedName(table_.Name()) +
                              ",\"system\":" + Bool(system_) +
                              ",\"columns\":" + std::to_string(definition.columns.size()) +
                              ",\"indexes\":" + std::to_string(definition.logicalIndexes.size()) +
                              ",\"rowcount\":" + std::to_string(definition.rowCount) +
                              ",\"maxcolumns\":" + std::to_string(definition.shape.columnCount) +
                              ",\"page\":" + std::to_string(definition.page.value) + "}");
        for (std::size_t i = 0; i < definition.columns.size(); ++i) {
            DumpColumn(definition.columns[i], i);
        }
    }

    void DumpColumn(const Column& column, std::size_t n) {
        std::string line = R"({"k":"column","n":)" + std::to_string(n) +
                           ",\"name\":" + QuotedName(column.name) +
                           ",\"num\":" + std::to_string(column.number) + ",\"type\":\"" +
                           TypeWord(column.type) + "\",\"bytes\":" + std::to_string(column.length) +
                           ",\"auto\":" + Bool(column.autoNumber || column.autoGuid) +
                           ",\"var\":" + Bool(!column.fixed);
        if (column.type == ColumnType::kDecimal) {
            line += ",\"precision\":" + std::to_string(unsigned{column.precision}) +
                    ",\"scale\":" + std::to_string(unsigned{column.scale});
        }
        if (column.type == ColumnType::kText || column.type == ColumnType::kMemo) {
            line += ",\"compress\":" + Bool(column.compressed && !jet3_) + ",\"sort\":[" +
                    std::to_string(column.collation.language) + "," +
                    (jet3_ ? "-1" : std::to_string(unsigned{column.collation.version})) +
                    "],\"codepage\":" + (jet3_ ? std::to_string(column.collation.codePage) : "0");
        }
        dump_.lines.push_back(line + "}");
    }

    void DumpRows() {
        jet::RowCursor rows(table_.Rows());
        for (bool on = rows.SeekToFirst(); on; on = rows.Next()) {
            const jet::RowId id = rows.Row();
            jet::StoredRow stored;
            if (!table_.Rows().Find(id, stored)) {
                dump_.faults.push_back("a row of the scan cannot be found");
                continue;
            }
            const jet::RowView view = table_.View(stored.bytes);
            std::string line = R"({"k":"row","id":[)" + std::to_string(id.page.value) + "," +
                               std::to_string(id.slot) + "],\"v\":[";
            for (std::size_t i = 0; i < table_.Def().columns.size(); ++i) {
                if (i > 0) line += ',';
                line += DumpValue(table_.ReadValue(view, i));
            }
            dump_.lines.push_back(line + "]}");
            places_.emplace(id, dump_.rows++);
        }
    }

    // The order of an index, and its keys against those of the rows.
    void WalkIndex(std::size_t i) {
        const jet::TableIndex& index = *table_.Indexes()[i];
        std::vector<std::int64_t> order;
        std::set<RowId> seen;
        jet::IndexCursor cursor(index.Tree());
        for (bool on = cursor.SeekToFirst(); on; on = cursor.Next()) {
            const jet::IndexEntry* const entry = &cursor.Entry();
            const auto place = places_.find(entry->row);
            order.push_back(place == places_.end() ? -1 : static_cast<std::int64_t>(place->second));
            ++dump_.entries;
            if (place == places_.end() || !seen.insert(entry->row).second) {
                dump_.faults.push_back("index " + index.Name() + " has an entry too many");
                continue;
            }
            CompareKey(index, *entry);
        }
        for (const auto& [row, place] : places_) {
            if (seen.count(row) == 0 && MustBeEntered(index, row)) {
                dump_.faults.push_back("index " + index.Name() + " lacks an entry");
            }
        }
        CheckBackwards(index, order);
        orders_.push_back(std::move(order));
    }

    void CheckBackwards(const jet::TableIndex& index, const std::vector<std::int64_t>& order) {
        std::size_t left = order.size();
        jet::IndexCursor cursor(index.Tree());
        for (bool on = cursor.SeekToLast(); on && left > 0; on = cursor.Prev()) {
            const jet::IndexEntry* const entry = &cursor.Entry();
            --left;
            const auto place = places_.find(entry->row);
            const std::int64_t found =
                place == places_.end() ? -1 : static_cast<std::int64_t>(place->second);
            if (found != order[left]) {
                break;
            }
            if (left == 0) {
                return;
            }
        }
        if (!order.empty()) {
            dump_.faults.push_back("index " + index.Name() + " is not the same backwards");
        }
    }

    std::vector<Value> KeyValues(const jet::TableIndex& index, RowId row) {
        std::vector<Value> values;
        jet::StoredRow stored;
        if (table_.Rows().Find(row, stored)) {
            const jet::RowView view = table_.View(stored.bytes);
            for (const jet::RealIndex::Part& part : index.Real().parts) {
                values.push_back(table_.ReadValue(view, part.column));
            }
        }
        return values;
    }

    bool MustBeEntered(const jet::TableIndex& index, RowId row) {
        const auto values = KeyValues(index, row);
        return !index.Real().IgnoresNulls() ||
               !std::all_of(values.begin(), values.end(),
                            [](const Value& value) { return value.IsNull(); });
    }

    [[nodiscard]] std::string Label(const jet::KeyColumn& column) const {
        std::string label = jet3_ ? "Jet 3 " : "Jet 4 ";
        label += TypeWord(column.type);
        if (column.type == ColumnType::kText || column.type == ColumnType::kMemo) {
            label += " (language " + std::to_string(column.collation.language) +
                     (jet3_ ? ", code page " + std::to_string(column.collation.codePage)
                            : ", version " + std::to_string(unsigned{column.collation.version})) +
                     ")";
        }
        return label + (column.ascending ? " ascending" : " descending");
    }

    // Goes through the parts of a key, each made from the row's value.
    void CompareKey(const jet::TableIndex& index, const jet::IndexEntry& entry) {
        const auto values = KeyValues(index, entry.row);
        std::size_t at = 0;
        bool equal = true;
        for (std::size_t i = 0; i < values.size(); ++i) {
            const jet::KeyColumn& column = index.KeyColumns()[i];
            KeyCount& count = dump_.keys[Label(column)];
            if (!equal || jet::KeyObstacle(column, table_.Def().version)) {
                ++(equal ? count.unsupported : count.total);
                if (equal) {
                    return;  // where this part ends is not known
                }
                continue;
            }
            ++count.total;
            Key part;
            jet::AppendKeyPart(part, column, values[i], table_.Def().version);
            if (!IsAt(entry.key, at, part)) {
                part = Variant(column, values[i]);
                equal = !part.empty() && IsAt(entry.key, at, part);
                count.variant += equal ? 1 : 0;
            }
            count.matched += equal ? 1 : 0;
            at += part.size();
        }
        if (!equal || at != entry.key.size()) {
            dump_.faults.push_back("index " + index.Name() + " has another key for row " +
                                   std::to_string(entry.row.slot) + " of page " +
                                   std::to_string(entry.row.page.value));
        }
    }

    static bool IsAt(const Key& key, std::size_t at, const Key& part) {
        return part.size() <= key.size() - at &&
               std::equal(part.begin(), part.end(), key.begin() + static_cast<std::ptrdiff_t>(at));
    }

    // One writer counts sharp s and the ligatures as one letter.
    [[nodiscard]] Key Variant(const jet::KeyColumn& column, const Value& value) const {
        Key key;
        const auto* text = std::get_if<std::u16string>(&value.Get());
        if (text != nullptr && !jet3_) {
            key.push_back(column.ascending ? std::byte{0x7F} : std::byte{0x80});
            jet::AppendGeneralLegacy(key, *text, column.ascending, jet::LetterCount::kCharacters);
        }
        return key;
    }

    void DumpIndexes() {
        std::vector<const jet::LogicalIndex*> indexes;
        for (const jet::LogicalIndex& index : table_.Def().logicalIndexes) {
            indexes.push_back(&index);
        }
        std::sort(indexes.begin(), indexes.end(),
                  [](const auto* a, const auto* b) { return a->number < b->number; });
        for (const jet::LogicalIndex* index : indexes) {
            DumpIndex(*index);
        }
    }

    void DumpIndex(const jet::LogicalIndex& index) {
        const jet::RealIndex& real = table_.Def().realIndexes[index.real];
        const std::vector<std::int64_t>& order = orders_[index.real];
        std::string line = R"({"k":"index","name":)" + QuotedName(index.name) +
                           ",\"num\":" + std::to_string(index.number) +
                           ",\"data\":" + std::to_string(index.real) + ",\"columns\":[";
        for (std::size_t i = 0; i < real.parts.size(); ++i) {
            line += std::string(i == 0 ? "[" : ",[") +
                    QuotedName(table_.Def().columns[real.parts[i].column].name) +
                    (real.parts[i].ascending ? ",\"asc\"]" : ",\"desc\"]");
        }
        line += "],\"primary\":" + Bool(index.role == jet::IndexRole::kPrimary) +
                ",\"foreign\":" + Bool(index.role == jet::IndexRole::kRelation) +
                ",\"unique\":" + Bool(real.Unique()) +
                ",\"ignorenulls\":" + Bool(real.IgnoresNulls()) +
                ",\"required\":" + Bool(real.Required()) +
                ",\"entries\":" + std::to_string(order.size()) + ",\"order\":[";
        for (std::size_t i = 0; i < order.size(); ++i) {
            if (i > 0) line += ',';
            line += std::to_string(order[i]);
        }
        dump_.lines.push_back(line + "]}");
    }

    jet::Table& table_;
    bool system_;
    bool jet3_;
    TableDump dump_;
    std::map<RowId, std::uint64_t> places_;
    std::vector<std::vector<std::int64_t>> orders_;  // by real index
};

}  // namespace

TableDump DumpTable(jet::Table& table, bool system) {
    return Dumper(table, system).Run();
}
