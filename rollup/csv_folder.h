// The folders and names of a roll-up in CSV files: TABLE/year=YYYY/NAME.csv.gz.
//
// The rows of contents lie in a file for each table, named by their `file_id`. A row of `files` is
// a file too, named by its path, and holds nothing else: whatever names its contents is there.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "rollup/tables.h"

namespace rollup {

using Year = std::optional<std::int64_t>;

class CsvFolder {
public:
    explicit CsvFolder(std::filesystem::path folder) : folder_(std::move(folder)) {}

    [[nodiscard]] const std::filesystem::path& Path() const { return folder_; }
    // Where files are written before they get their name; what lies there is of a killed run.
    [[nodiscard]] std::filesystem::path Unfinished() const { return folder_ / ".unfinished"; }
    [[nodiscard]] std::filesystem::path Place(TableId table, Year year,
                                              const std::string& name) const;
    // The name of the row of a path.
    [[nodiscard]] static std::string NameOfPath(const std::string& path);

    // All files of a table whose name is a row's or a contents'.
    using TakeFile =
        std::function<void(const std::filesystem::path& file, Year year, const std::string& name)>;
    void EachFile(TableId table, const TakeFile& take) const;
    // A row of `files`; nothing when the file is not whole.
    [[nodiscard]] static std::optional<FileRow> ReadFileRow(const std::filesystem::path& file,
                                                            Year year);

private:
    std::filesystem::path folder_;
};

}  // namespace rollup
