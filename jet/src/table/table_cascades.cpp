// Changes and deletions of rows, and of the rows that a relationship makes follow them.
#include "table/table.h"

namespace jet {

bool Table::Update(Operation& operation, RowId id, const RowValues& row) {
    std::vector<RowChange> cascade;
    bool indexChanged = UpdateOne(operation, id, row, cascade);
    for (std::size_t i = 0; i < cascade.size(); ++i) {
        const RowChange change = cascade[i];
        indexChanged |=
            change.place.table->UpdateOne(operation, change.place.row, *change.values, cascade);
    }
    const auto requireParents = [](Table& table, RowId place, const RowValues& given) {
        const RowView now = table.TakeOldRow(place);
        const auto read = [&](std::size_t column) { return table.ReadValue(now, column); };
        table.relations_.RequireParents(given, false, read);
    };
    if (!cascade.empty()) requireParents(*this, id, row);
    for (const RowChange& change : cascade) {
        requireParents(*change.place.table, change.place.row, *change.values);
    }
    return indexChanged;
}

bool Table::Has(RowId id) {
    StoredRow stored;
    return rows_.Find(id, stored);
}

void Table::Delete(Operation& operation, RowId id, std::vector<TableRow>& deleted,
                   const IndexPlace& found) {
    std::vector<RowChange> releases;
    deleted.assign(1, {this, id});
    std::size_t done = 0;
    for (std::size_t i = 0; i < deleted.size(); ++i) {
        const TableRow next = deleted[i];
        // Two relationships can lead to one row.
        if (i > 0 && !next.table->Has(next.row)) continue;
        next.table->DeleteOne(operation, next.row, i == 0 ? found : IndexPlace(), deleted,
                              releases);
        deleted[done++] = next;
    }
    deleted.resize(done);
    // Last, since a row that another relationship deletes need not bear the nulls.
    std::erase_if(releases, [](const RowChange& release) {
        return !release.place.table->Has(release.place.row);
    });
    std::vector<RowChange> further;
    for (const RowChange& release : releases) {
        release.place.table->UpdateOne(operation, release.place.row, *release.values, further);
    }
}

}  // namespace jet
