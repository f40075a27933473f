// The check reads the format by itself, through its own layouts and row parts: a mistake in the
// parts that read and write rows must not pass for right here.
#include "jet/check.h"

#include <algorithm>
#include <optional>
#include <set>

#include "check/account.h"
#include "check/catalog_check.h"
#include "check/findings.h"
#include "check/lone_definitions.h"
#include "check/page_source.h"
#include "check/row_check.h"
#include "check/tree_check.h"
#include "jet/error.h"
#include "os/out_of_memory.h"
#include "page/bytes.h"
#include "page/header.h"
#include "page/slotted_page.h"
#include "recordset/open_file.h"

namespace jet {

namespace {

class FileCheck {
public:
    FileCheck(const PageSource& pages, const FileHeader& header, CheckReport& report)
        : header_(header),
          findings_(report),
          context_{pages, FormatOf(header.version), findings_, report},
          account_(context_) {}

    void Run() {
        context_.report.pages = context_.pages.PageCount();
        account_.Claim(0, "the header", {});
        account_.Claim(1, "the global maps", {});
        CheckHeader();
        account_.ReadMap(header_.secondMap, "pages set aside", {});
        if (!CheckCatalog()) {
            CheckTablesByPageType();
        }
        CheckRelations(context_, tables_);
        CheckUnaccounted();
        CheckRowCounts();
        findings_.Finish();
    }

private:
    void CheckHeader() {
        const auto expect = [&](bool right, const std::string& what) {
            if (!right) {
                findings_.Error({{}, 0, -1}, "header-field",
                                "The header names a wrong place for " + what + ".");
            }
        };
        expect(header_.freePages == RowId{PageNumber{1}, 0}, "the map of free pages");
        expect(header_.secondMap == RowId{PageNumber{1}, 1}, "the second map");
        expect(header_.objects.value == 2, "the catalog");
        expect(header_.accessControl.value == 3, "the permissions");
        // In some files these two have changed places.
        const std::set<std::uint32_t> rest{header_.queries.value, header_.relationships.value};
        expect(rest == std::set<std::uint32_t>{4, 5}, "the queries and relationships");
    }

    bool CheckCatalog() {
        auto objects = ReadTableLayout(context_, header_.objects.value, "MSysObjects");
        std::optional<CatalogCheck> catalog;
        if (objects) {
            catalog.emplace(context_, *objects);
        }
        if (!catalog || !catalog->IsReadable()) {
            findings_.Error({{}, header_.objects.value, -1}, "catalog-unreadable",
                            "The catalog cannot be read; tables are looked for by their pages.");
            return false;
        }
        CheckTable(*objects, [&](const CheckedRow& row) { catalog->AddRow(row); });
        bool self = false;
        for (const ListedObject& entry : catalog->Tables()) {
            if (entry.page == header_.objects.value) {
                self = true;
                continue;
            }
            CheckEntry(entry);
        }
        if (!self) {
            findings_.Error({"MSysObjects", header_.objects.value, -1}, "catalog-missing",
                            "The catalog does not list itself.");
        }
        return true;
    }

    void CheckEntry(const ListedObject& entry) {
        if (entry.page >= context_.pages.PageCount()) {
            findings_.Error({"MSysObjects", entry.row.page.value, entry.row.slot},
                            "page-beyond-end",
                            "The table " + entry.name + " is said to be on page " +
                                std::to_string(entry.page) + ", which is past the end.");
            return;
        }
        if (const auto table = ReadTableLayout(context_, entry.page, entry.name)) {
            CheckTable(*table, [](const CheckedRow&) {});
        }
    }

    void CheckTablesByPageType() {
        for (const std::uint32_t page : LoneDefinitions(context_.pages, account_)) {
            const auto table = ReadTableLayout(context_, page, "on page " + std::to_string(page));
            if (table) {
                CheckTable(*table, [](const CheckedRow&) {});
            }
        }
    }

    template <typename Visit>
    void CheckTable(const TableLayout& table, const Visit& visit) {
        for (const std::uint32_t page : table.chain) {
            account_.Claim(page, "the definition of " + table.name, table.name);
        }
        std::vector<EntryCheck> entries;
        for (const RealIndexLayout& index : table.indexes) {
            entries.emplace_back(context_, table, index);
        }
        std::uint64_t rows = 0;
        std::int64_t greatest = 0;
        bool random = false;  // numbers drawn at random do not rise
        RowCheck(context_, account_, table).Run([&](const CheckedRow& row) {
            ++rows;
            for (std::size_t i = 0; i < table.columns.size(); ++i) {
                const auto* number = std::get_if<std::int32_t>(&row.values[i].Get());
                if (table.columns[i].autoNumber && number != nullptr) {
                    greatest = std::max<std::int64_t>(greatest, *number);
                    random = random || *number < 0;
                }
            }
            for (EntryCheck& check : entries) {
                check.AddRow(row);
            }
            visit(row);
        });
        for (std::size_t i = 0; i < entries.size(); ++i) {
            TreeCheck(context_, account_, table, table.indexes[i]).Run([&](const Key& entry) {
                ++context_.report.entries;
                entries[i].AddEntry(entry);
            });
            entries[i].Finish();
        }
        if (greatest > table.lastAutoNumber && !random) {
            findings_.Error({table.name, table.page, -1}, "autonumber",
                            "The last number given out is " + std::to_string(table.lastAutoNumber) +
                                ", but " + std::to_string(greatest) + " is in use.");
        }
        if (rows != table.rowCount) {
            wrongCounts_.push_back({table.name, table.page, table.system, table.rowCount, rows});
        }
        ++context_.report.tables;
        context_.report.rows += rows;
        context_.report.indexes += static_cast<std::uint32_t>(table.indexes.size());
        tables_.push_back(table);
    }

    void CheckUnaccounted() {
        const std::vector<std::uint32_t> nobodys = account_.Unaccounted(header_.freePages);
        const std::vector<std::uint32_t> lone = LoneDefinitions(context_.pages, account_);
        for (const std::uint32_t page : nobodys) {
            const Spot spot{{}, page, -1};
            if (std::binary_search(lone.begin(), lone.end(), page) &&
                IsWholeDefinition(context_.pages, context_.format, page)) {
                findings_.Error(spot, "table-lost",
                                "A table's definition is here, but not in the catalog.");
            } else if (const std::string owner = OwnerOfRows(page); !owner.empty()) {
                findings_.Error({owner, page, -1}, "rows-lost",
                                "The page has rows of the table, but is not in its map.");
            } else {
                pagesLost_ = true;
                findings_.Warning(spot, "page-lost", "Nobody uses the page, and it is not free.");
            }
        }
    }

    // The table that a data page with live rows names.
    std::string OwnerOfRows(std::uint32_t number) {
        const auto page = context_.pages.Read(number);
        if (!IsDataPage(page)) {
            return {};
        }
        const std::uint32_t owner = PageOwner(page);
        const auto table =
            std::find_if(tables_.begin(), tables_.end(),
                         [&](const TableLayout& candidate) { return candidate.page == owner; });
        const std::uint32_t count = ClaimedSlotCount(page, context_.format);
        for (std::uint32_t i = 0; table != tables_.end() && i < std::min(count, 255U); ++i) {
            if (ReadSlotKind(page, context_.format, i) != SlotKind::kDeleted) {
                return table->name;
            }
        }
        return {};
    }

    // Counts of system tables, and of files that have lost pages, are often off in sound files.
    void CheckRowCounts() {
        for (const WrongCount& wrong : wrongCounts_) {
            const Spot spot{wrong.table, wrong.page, -1};
            const std::string sentence = "The table claims " + std::to_string(wrong.claimed) +
                                         " rows and has " + std::to_string(wrong.rows) + ".";
            if (wrong.system || pagesLost_) {
                findings_.Warning(spot, "row-count", sentence);
            } else {
                findings_.Error(spot, "row-count", sentence);
            }
        }
    }

    struct WrongCount {
        std::string table;
        std::uint32_t page = 0;
        bool system = false;
        std::uint32_t claimed = 0;
        std::uint64_t rows = 0;
    };

    const FileHeader& header_;
    Findings findings_;
    CheckContext context_;
    PageAccount account_;
    std::vector<TableLayout> tables_;
    std::vector<WrongCount> wrongCounts_;
    bool pagesLost_ = false;
};

void NoteLog(const FoundLog& log, Findings& findings) {
    if (log.finding == LogReplay::Finding::kPending) {
        findings.Note({}, "log-pending",
                      "A log lies beside the file with " +
                          std::to_string(log.replay->Position().operations) +
                          " operations of an interrupted run. The file is checked as opening it "
                          "recovers it.");
    } else if (log.finding == LogReplay::Finding::kForeign) {
        findings.Note({}, "log-foreign",
                      "A log lies beside the file that does not belong to its present state. The "
                      "file is checked without it.");
    }
}

}  // namespace

CheckReport CheckFile(const std::filesystem::path& path, FileSystem& files) {
    return Guarded([&] {
        const InspectedFile inspected = OpenForInspection(path, files);
        const FileHeader& header = inspected.header;
        File* const file = inspected.file.get();
        const std::uint32_t pageSize = FormatOf(header.version).pageSize;
        CheckReport report;
        Findings findings(report);
        const bool pending = inspected.log.finding == LogReplay::Finding::kPending;
        if (!pending && file->Size() % pageSize != 0) {
            findings.Error({}, "file-length", "The file ends in the middle of a page.");
        }
        if (!pending && file->Size() / pageSize < kSmallestPageCount) {
            findings.Error({}, "file-length", "The file is shorter than an empty database.");
            return report;
        }
        NoteLog(inspected.log, findings);
        const FilePages pages(inspected);
        FileCheck(pages, header, report).Run();
        return report;
    });
}

CheckReport CheckDatabase(Database& database) {
    return Guarded([&] {
        OpenFile& file = *database.Internals().file;
        file.RequireOpen();
        const PagerPages pages(file.Pages());
        CheckReport report;
        FileCheck(pages, file.Pages().Header(), report).Run();
        return report;
    });
}

}  // namespace jet
