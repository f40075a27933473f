// The management areas of the open file and their goals, without a window.
//
// An area that is added or deleted is so in the file at once. Headings and objectives that are
// typed stay here, their areas marked as changed, until they are saved. Objectives may be long:
// they are read when they are first asked for, and written back to the letter unless they were
// changed.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace worksheets {

class GoalList {
public:
    struct Goal {
        std::int32_t key = 0;
        QString heading;
        std::optional<QString> body;  // nothing: as the file has it
    };

    // Takes what the file has, in the order of the keys; what was typed and not saved is dropped.
    void Load();
    [[nodiscard]] int Count() const { return static_cast<int>(entries_.size()); }
    // Rows count from 0.
    [[nodiscard]] std::int32_t Key(int row) const { return At(row).goal.key; }
    [[nodiscard]] const QString& Heading(int row) const { return At(row).goal.heading; }
    // With carriage return and line feed at the ends of its lines.
    [[nodiscard]] QString Body(int row) const;
    // The row of an area, or nothing.
    [[nodiscard]] std::optional<int> RowOf(std::int32_t key) const;

    void SetHeading(int row, const QString& heading);
    void SetBody(int row, const QString& body);
    [[nodiscard]] bool IsChanged(int row) const { return At(row).changed; }
    // Writes an area in one transaction when it was changed. No current record (3021) when it is no
    // longer in the file; it then stays marked.
    void Save(int row);

    // Adds an area without texts at the end; gives its row.
    int Add();
    // Deletes an area; gives it with all that it held.
    Goal Delete(int row);
    // Puts a deleted area back under its former key; gives its row.
    int Restore(const Goal& goal);

private:
    struct Entry {
        Goal goal;
        bool changed = false;
    };
    [[nodiscard]] const Entry& At(int row) const {
        return entries_.at(static_cast<std::size_t>(row));
    }
    [[nodiscard]] Entry& At(int row) { return entries_.at(static_cast<std::size_t>(row)); }

    std::vector<Entry> entries_;
};

}  // namespace worksheets
