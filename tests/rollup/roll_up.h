// Roll-ups that tests make: files in a folder, the command, and answers of SQLite.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "season/data_file.h"
#include "support/command.h"
#include "support/made_season.h"
#include "support/temp_folder.h"

namespace tarn_test {

using Answer = std::vector<std::string>;

// Each row as "one|two|three", a null as "-".
inline Answer AskSqlite(const std::filesystem::path& file, const std::string& sql) {
    sqlite3* database = nullptr;
    Answer rows;
    const auto take = [](void* to, int count, char** values, char** /*names*/) {
        std::string row;
        for (int i = 0; i < count; ++i) {
            row += (i > 0 ? "|" : "") + std::string(values[i] == nullptr ? "-" : values[i]);
        }
        static_cast<Answer*>(to)->push_back(row);
        return 0;
    };
    if (sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK ||
        sqlite3_exec(database, sql.c_str(), take, &rows, nullptr) != SQLITE_OK) {
        rows.push_back(std::string("error: ") + sqlite3_errmsg(database));
    }
    sqlite3_close(database);
    return rows;
}

// The rows with so many digits of each number, and truths as 1 and 0: engines write them in several
// ways.
inline Answer Normal(const Answer& rows, int numberDigits) {
    const auto normalField = [numberDigits](const std::string& field) -> std::string {
        if (field == "t" || field == "true") return "1";
        if (field == "f" || field == "false") return "0";
        char* rest = nullptr;
        const double number = std::strtod(field.c_str(), &rest);
        std::array<char, 64> digits{};
        std::snprintf(digits.data(), digits.size(), "%.*g", numberDigits, number);
        return !field.empty() && *rest == '\0' ? digits.data() : field;
    };
    Answer normal;
    for (const std::string& row : rows) {
        std::string& line = normal.emplace_back();
        for (std::size_t begin = 0; begin <= row.size();) {
            const std::size_t end = std::min(row.find('|', begin), row.size());
            line += (begin > 0 ? "|" : "") + normalField(row.substr(begin, end - begin));
            begin = end + 1;
        }
    }
    return normal;
}

using Plant = std::function<void(season::Season&)>;

// A sound season whose figures depend on `salt`, so that no two files are alike.
inline season::Season SaltedSeason(int salt, const Plant& plant = {}) {
    season::Season made = SoundSeason(2, 2);
    made.zones[0].locations[0].rows[0].values[0] = static_cast<float>(salt) + 0.1F;
    if (plant) plant(made);
    return made;
}

class RollUp : public testing::Test {
protected:
    RollUp() { std::filesystem::create_directory(Files()); }

    [[nodiscard]] std::filesystem::path Files() const { return folder_ / "files"; }
    [[nodiscard]] std::filesystem::path File(const std::string& name) const {
        return Files() / name;
    }
    [[nodiscard]] std::filesystem::path Database() const { return folder_ / "nation.sqlite"; }

    std::filesystem::path Make(const std::string& name, int salt, const Plant& plant = {}) {
        std::filesystem::remove(File(name));
        season::WriteNew(SaltedSeason(salt, plant), File(name));
        return File(name);
    }
    [[nodiscard]] CommandResult Run(const std::string& words,
                                    const std::string& before = {}) const {
        return RunCommand(before + Quoted(BuiltProgram("fcdtool")) + " rollup " + words + " --to " +
                          Quoted("sqlite:" + Database().string()));
    }
    [[nodiscard]] CommandResult RunAll(const std::string& options = {}) const {
        return Run(Quoted(Files()) + " " + options);
    }
    [[nodiscard]] Answer Ask(const std::string& sql) const { return AskSqlite(Database(), sql); }
    // The title, status and reason of each file.
    [[nodiscard]] Answer Statuses() const {
        return Ask("SELECT replace(path, '" + Files().string() +
                   "/', ''), status FROM files ORDER BY path");
    }
    // Whether rows are there for the contents of each read file, and for no others.
    void ExpectConsistent() const {
        for (const char* const table :
             {"properties", "goals", "resources", "zones", "costs", "nvc_resources", "nvc"}) {
            const std::string name(table);
            EXPECT_THAT(Ask("SELECT DISTINCT file_id FROM " + name +
                            " EXCEPT SELECT file_id FROM "
                            "files WHERE status = 'read'"),
                        testing::IsEmpty())
                << name;
            EXPECT_THAT(Ask("SELECT t.file_id FROM " + name +
                            " t JOIN files f ON f.file_id = "
                            "t.file_id AND f.status = 'read' WHERE t.year IS NOT f.year"),
                        testing::IsEmpty())
                << name;
        }
        EXPECT_THAT(Ask("SELECT path, count(*) FROM files GROUP BY path HAVING count(*) > 1"),
                    testing::IsEmpty());
        EXPECT_THAT(Ask("SELECT file_id, zone, location, resource FROM nvc GROUP BY 1, 2, 3, 4 "
                        "HAVING count(*) > 1"),
                    testing::IsEmpty());
    }

    TempFolder folder_;
};

}  // namespace tarn_test
