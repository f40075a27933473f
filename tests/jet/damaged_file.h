// What every damaged file must bear: being read, changed and repaired, with the engine's errors
// only.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"

namespace jet {

// Runs a step as far as the damage allows.
template <typename Step>
void Attempt(Step step) {
    try {
        step();
    } catch (const Error&) {
        // Refused: nothing is passed off as sound.
    }
}

// Changes, deletes and adds a record of a table.
inline void EditTable(Recordset& rows) {
    Attempt([&] {
        rows.MoveFirst();
        rows.Edit();
        for (const ColumnSchema& field : rows.Fields()) {
            if (field.type == ColumnType::kMemo) rows.Set(field.name, std::u16string(3000, u'x'));
        }
        rows.Update();
    });
    Attempt([&] {
        rows.MoveLast();
        rows.Delete();
    });
    Attempt([&] {
        rows.AddNew();
        for (const ColumnSchema& field : rows.Fields()) {
            if (field.autoNumber) continue;
            Attempt([&] { rows.Set(field.name, 7777); });
        }
        rows.Update();
    });
}

// Changes of every kind, in every table.
inline void EditEverywhere(const std::filesystem::path& path, FileSystem& files) {
    Attempt([&] {
        const auto database = Database::Open(path, {}, files);
        for (const std::string& table : database->TableNames()) {
            Attempt([&] { EditTable(*database->OpenTable(table)); });
        }
        Attempt([&] {
            TableSchema schema;
            schema.name = "Made in a damaged file";
            schema.columns = {{.name = "A"}, {.name = "B", .type = ColumnType::kMemo}};
            schema.indexes = {{.name = "PrimaryKey", .columns = {{"A"}}, .primary = true}};
            database->CreateTable(schema);
        });
        database->Close();
    });
}

// What can be read makes a sound file, or there is an error and no file.
inline void ExpectRepairedOrRefused(const std::filesystem::path& path,
                                    const std::filesystem::path& target, FileSystem& files) {
    try {
        (void)RepairFile(path, target, files);
    } catch (const Error&) {
        EXPECT_FALSE(files.Exists(target));
        return;
    }
    const CheckReport report = CheckFile(target, files);
    EXPECT_TRUE(report.IsSound()) << report.Text();
    files.Remove(target);
}

}  // namespace jet
