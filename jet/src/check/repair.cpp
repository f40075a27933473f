// The repair: a new file with everything of the old one that can be read.
//
// Tables are found through the catalog, or by the pages of their definitions; their rows through
// the table's map and by the pages that name the table; moved rows also where no pointer leads to
// them. Indexes are not read at all but made anew from the rows.
#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "catalog/new_table.h"
#include "catalog/properties.h"
#include "check/catalog_check.h"
#include "check/lone_definitions.h"
#include "check/requirements.h"
#include "check/row_check.h"
#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "os/out_of_memory.h"
#include "page/bytes.h"
#include "page/data_file.h"
#include "page/header.h"
#include "page/slotted_page.h"
#include "recordset/open_file.h"

namespace jet {

namespace {

constexpr std::uint32_t kCatalogPage = 2;
constexpr std::int32_t kDocument = -32757;  // holds nothing but properties of the file

struct TableSource {
    TableLayout layout;
    Binary properties;
};

bool IsKnownType(ColumnType type) {
    return SizeOfType(type) != 0 || IsLongValue(type) || type == ColumnType::kBoolean ||
           type == ColumnType::kText || type == ColumnType::kBinary;
}

// Findings of the scan that cost a row or a value.
bool IsLoss(const Finding& finding) {
    const auto begins = [&](const char* with) { return finding.code.rfind(with, 0) == 0; };
    return finding.severity == Severity::kError && finding.code != "long-value-map" &&
           finding.code != "slot-flags" &&
           (begins("row-") || begins("value-") || begins("long-value") || begins("overflow") ||
            begins("slot-") || finding.code == "page-type" || finding.code == "page-owner");
}

// Errors that another row or value would not meet.
bool IsAboutTheRow(const Error& error) {
    switch (error.Kind()) {
        case ErrorKind::kDuplicateKey:
        case ErrorKind::kNullNotAllowed:
        case ErrorKind::kRecordTooLarge:
        case ErrorKind::kUnsupported:
        case ErrorKind::kTypeMismatch:
        case ErrorKind::kOverflow:
        case ErrorKind::kTextTooLong:
            return true;
        default:
            return false;
    }
}

std::string PlaceOf(const Finding& finding) {
    std::string place = "Table " + finding.table;
    if (finding.page >= 0) {
        place += ", page " + std::to_string(finding.page);
    }
    if (finding.row >= 0) {
        place += ", row " + std::to_string(finding.row);
    }
    return place + ": ";
}

class Repair {
public:
    Repair(const PageSource& pages, const FileHeader& header, Database& target)
        : pages_(pages), header_(header), format_(FormatOf(header.version)), target_(target) {}

    RepairReport Run() {
        LookThroughPages();
        for (const TableSource& source : FindTables()) {
            CopyTable(source);
        }
        return std::move(report_);
    }

private:
    void Lose(std::string sentence) { report_.losses.push_back(std::move(sentence)); }

    // Rows may be there that a rule would refuse now.
    void DropRule(std::string& rule, const std::string& what) {
        if (rule.empty()) return;
        Lose(what + " is left out (" + rule + ").");
        rule.clear();
    }

    void LookThroughPages() {
        CheckReport aside;
        Findings silent(aside);
        CheckContext context{pages_, format_, silent, aside};
        PageAccount account(context);
        const auto free = account.ReadMap(header_.freePages, "the free pages", {});
        free_.insert(free.begin(), free.end());
        for (std::uint32_t page = 2; page < pages_.PageCount(); ++page) {
            const auto bytes = pages_.Read(page);
            if (free_.count(page) == 0 && IsDataPage(bytes)) {
                named_[PageOwner(bytes)].push_back(page);
            }
        }
    }

    std::vector<TableSource> FindTables() {
        CheckReport aside;
        Findings silent(aside);
        CheckContext context{pages_, format_, silent, aside};
        PageAccount account(context);
        std::vector<TableSource> sources;
        const auto claim = [&](const TableLayout& layout) {
            for (const std::uint32_t page : layout.chain) {
                account.Claim(page, "table " + layout.name, layout.name);
            }
        };
        for (const ListedObject& entry : ReadCatalog(context)) {
            const auto layout = ReadTableLayout(context, entry.page, entry.name);
            if (layout) {
                claim(*layout);
                for (const std::uint32_t page :
                     account.ReadMap(layout->ownedMap, "table " + entry.name, entry.name)) {
                    if (!mapped_.emplace(page, entry.page).second) {
                        contested_.insert(page);
                    }
                }
            }
            if (entry.system && !entry.hidden) {
                continue;
            }
            if (layout) {
                sources.push_back({*layout, entry.properties});
            } else {
                Lose("Table " + entry.name + ": its definition cannot be read.");
            }
        }
        for (const std::uint32_t page : LoneDefinitions(pages_, account)) {
            if (free_.count(page) != 0 || !IsWholeDefinition(pages_, format_, page)) {
                continue;
            }
            const std::string name = "Table of page " + std::to_string(page);
            const auto layout = ReadTableLayout(context, page, name);
            if (layout && !layout->system) {
                Lose("A table without a name was kept as \"" + name + "\".");
                sources.push_back({*layout, {}});
            }
        }
        return sources;
    }

    std::vector<ListedObject> ReadCatalog(CheckContext& context) {
        std::optional<TableLayout> objects;
        std::unique_ptr<CatalogCheck> catalog;
        // The catalog has the same page in every file; the header could be wrong.
        for (const std::uint32_t page : {header_.objects.value, kCatalogPage}) {
            if (!catalog || !catalog->IsReadable()) {
                objects = ReadTableLayout(context, page, "MSysObjects");
                catalog.reset();
                if (objects) {
                    catalog = std::make_unique<CatalogCheck>(context, *objects);
                }
            }
        }
        if (!catalog || !catalog->IsReadable()) {
            Lose("The catalog cannot be read, so the tables' names are lost.");
            return {};
        }
        PageAccount account(context);
        RowCheck rows(context, account, *objects);
        AddPages(rows, *objects);
        rows.Run([&](const CheckedRow& row) { catalog->AddRow(row); });
        for (const auto& [kind, count] : catalog->Others()) {
            NoteOthers(kind, count);
        }
        return catalog->Tables();
    }

    void NoteOthers(std::int32_t kind, std::uint32_t count) {
        const char* const what = kind == 4 || kind == 6          ? "linked tables"
                                 : kind == 5                     ? "queries"
                                 : kind == 8                     ? "relationships"
                                 : kind < 0 && kind != kDocument ? "forms, reports and the like"
                                                                 : nullptr;
        if (what != nullptr) {
            Lose("Not carried over: " + std::to_string(count) + " " + what + ".");
        }
    }

    // Pages that name the table and are in nobody's map.
    void AddPages(RowCheck& rows, const TableLayout& table) {
        for (const std::uint32_t page : named_[table.page]) {
            const auto mapped = mapped_.find(page);
            if (mapped == mapped_.end() || mapped->second == table.page ||
                contested_.count(page) != 0) {
                rows.AddPage(page);
            }
        }
    }

    // Every row that can be read at all. What is lost is noted when `note` says so.
    template <typename Visit>
    void ForEachRow(const TableLayout& table, bool note, const Visit& visit) {
        CheckReport found;
        Findings findings(found);
        CheckContext context{pages_, format_, findings, found};
        PageAccount account(context);
        RowCheck rows(context, account, table);
        rows.BeLenient(contested_);
        AddPages(rows, table);
        const auto keep = [&](const CheckedRow& row) {
            if (row.readable.empty() ||
                std::find(row.readable.begin(), row.readable.end(), true) != row.readable.end()) {
                visit(row);
            }
        };
        rows.Run(keep);
        for (const CheckedRow& row : rows.Orphans()) {
            keep(row);
        }
        if (note) {
            findings.Finish();
            for (const Finding& finding : found.findings) {
                if (IsLoss(finding)) {
                    Lose(PlaceOf(finding) + finding.sentence);
                }
            }
        }
    }

    // The new table's description: the old one's, without demands that the rows do not meet.
    TableSchema MakeSchema(const TableSource& source, const Requirements& requirements) {
        const TableLayout& layout = source.layout;
        Definition definition;
        definition.version = header_.version;
        definition.columns = layout.columns;
        ApplyProperties(source.properties, definition);
        for (Column& column : definition.columns) {
            const auto place = static_cast<std::size_t>(&column - definition.columns.data());
            if (column.required && requirements.ColumnHasNull(place)) {
                column.required = false;
                Lose("Table " + layout.name + ": the field " + column.name +
                     " has no value in some rows, so it is not required any more.");
            }
            column.allowZeroLength = true;
            DropRule(column.validationRule,
                     "Table " + layout.name + ": the rule of the field " + column.name);
        }
        DropRule(definition.validationRule, "Table " + layout.name + ": the rule of its records");
        std::erase_if(definition.columns, [&](const Column& column) {
            const bool lost = !IsKnownType(column.type);
            if (lost) {
                Lose("Table " + layout.name + ": the field " + column.name +
                     " is of an unknown type and is left out.");
            }
            return lost;
        });
        TableSchema schema = SchemaOf(layout.name, definition);
        bool numbered = false;
        for (ColumnSchema& column : schema.columns) {
            // One field numbers the records; damage can make it look like two.
            if (column.autoNumber) column.autoNumber = !std::exchange(numbered, true);
        }
        for (const LogicalIndexLayout& index : layout.logicalIndexes) {
            AddIndex(layout, index, requirements, schema);
        }
        return schema;
    }

    void AddIndex(const TableLayout& layout, const LogicalIndexLayout& index,
                  const Requirements& requirements, TableSchema& schema) {
        constexpr std::uint8_t kRelation = 2;
        if (index.real >= layout.indexes.size() || index.type == kRelation) {
            return;
        }
        const RealIndexLayout& real = layout.indexes[index.real];
        IndexSchema added;
        added.name = index.name;
        added.unique = real.IsUnique() && !requirements.IsRepeated(index.real);
        added.ignoreNulls = real.IgnoresNulls();
        added.required = real.IsRequired() && !requirements.HasNull(index.real);
        added.primary = index.type == 1 && added.unique && !requirements.HasNull(index.real);
        for (const RealIndexLayout::Part& part : real.parts) {
            const Column* column = layout.FindColumn(part.column);
            if (column == nullptr || !IsKnownType(column->type)) {
                Lose("Table " + layout.name + ": the index " + index.name +
                     " is on a field that is not there.");
                return;
            }
            const bool again = std::any_of(
                added.columns.begin(), added.columns.end(),
                [column](const IndexColumn& other) { return other.name == column->name; });
            if (!again) added.columns.push_back({column->name, part.ascending});
        }
        if (added.columns.empty()) {
            return;
        }
        if (real.IsUnique() && !added.unique) {
            Lose("Table " + layout.name + ": several rows have the same values in the index " +
                 index.name + ", so it is not unique any more.");
        }
        if (real.IsRequired() && !added.required) {
            Lose("Table " + layout.name + ": rows lack values in the index " + index.name +
                 ", so it does not require them any more.");
        }
        schema.indexes.push_back(added);
    }

    void CopyTable(const TableSource& source) {
        Requirements requirements(source.layout);
        ForEachRow(source.layout, false,
                   [&](const CheckedRow& row) { requirements.AddRow(row, header_.version); });
        try {
            target_.CreateTable(MakeSchema(source, requirements));
        } catch (const Error& error) {
            Lose("Table " + source.layout.name + " cannot be made: " + error.what());
            return;
        }
        ++report_.tables;
        const auto rows = target_.OpenTable(source.layout.name);
        ForEachRow(source.layout, true,
                   [&](const CheckedRow& row) { CopyRow(*rows, row, source); });
    }

    void CopyRow(Recordset& rows, const CheckedRow& row, const TableSource& source) {
        const std::string place = "Table " + source.layout.name + ", page " +
                                  std::to_string(row.id.page.value) + ", row " +
                                  std::to_string(row.id.slot) + ": ";
        try {
            rows.AddNew();
            int field = -1;
            for (std::size_t i = 0; i < row.values.size(); ++i) {
                const Column& column = source.layout.columns[i];
                field += IsKnownType(column.type) ? 1 : 0;
                if (!IsKnownType(column.type) || (column.autoNumber && row.values[i].IsNull())) {
                    continue;
                }
                try {
                    rows.Set(FieldId{field}, row.values[i]);
                } catch (const Error& error) {
                    if (!IsAboutTheRow(error)) {
                        throw;
                    }
                    Lose(place + "the value of " + column.name + " is left out: " + error.what());
                    rows.Set(FieldId{field}, Value());
                }
            }
            rows.Update();
            ++report_.rowsKept;
        } catch (const Error& error) {
            if (!IsAboutTheRow(error)) {
                throw;
            }
            rows.CancelUpdate();
            Lose(place + error.what());
        }
    }

    const PageSource& pages_;
    const FileHeader& header_;
    const Format& format_;
    Database& target_;
    std::set<std::uint32_t> free_;
    std::map<std::uint32_t, std::vector<std::uint32_t>> named_;  // data pages by their owners
    std::map<std::uint32_t, std::uint32_t> mapped_;  // pages to the tables whose maps have them
    std::set<std::uint32_t> contested_;              // pages in several maps
    RepairReport report_;
};

}  // namespace

RepairReport RepairFile(const std::filesystem::path& source, const std::filesystem::path& target,
                        FileSystem& files) {
    return Guarded([&] {
        const InspectedFile inspected = OpenForInspection(source, files);
        const FileHeader& header = inspected.header;
        const FilePages pages(inspected);
        // Named before anything can fail: without memory no name could be made.
        const std::filesystem::path log = LogPath(target);
        auto database =
            Database::Impl::Create(target, header.version, {}, files, inspected.file.get());
        try {
            RepairReport report = Repair(pages, header, *database).Run();
            database->Close();
            if (inspected.log.finding == LogReplay::Finding::kForeign) {
                report.losses.push_back(
                    "A log lies beside the file that does not belong to its present state; what it "
                    "holds is not carried over.");
            }
            return report;
        } catch (...) {
            database.reset();
            RemoveQuietly(files, target);
            RemoveQuietly(files, log);
            throw;
        }
    });
}

}  // namespace jet
