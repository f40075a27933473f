// fcdtool export: everything of a data file for other programs.
#include <stdexcept>

#include "review/plain_tables.h"
#include "review/workbook.h"
#include "season/text.h"
#include "tools/fcdtool/command.h"
#include "tools/fcdtool/files.h"
#include "tools/fcdtool/output.h"

namespace fcdtool {

namespace {

bool EndsWith(const std::string& file, std::string_view ending) {
    return season::Folded(file).ends_with(ending);
}

bool IsFolder(const std::string& target) {
    std::error_code absent;
    return target.ends_with('/') || target.ends_with('\\') ||
           std::filesystem::is_directory(PathOf(target), absent);
}

void SaveCsv(const std::string& folder, const std::vector<std::string>& sources,
             const season::Season& season) {
    std::error_code failed;
    const bool isNew = std::filesystem::create_directories(PathOf(folder), failed);
    if (failed) {
        ThrowNotWritten(folder, failed);
    }
    std::vector<NewFile> files;
    for (const review::PlainTable& table : review::PlainTables(season)) {
        files.push_back({(PathOf(folder) / (table.name + ".csv")).string(), review::CsvOf(table)});
    }
    try {
        SaveFiles(files, sources);
    } catch (...) {
        if (isNew) {
            std::filesystem::remove(PathOf(folder), failed);
        }
        throw;
    }
}

void SaveWorkbook(const std::string& target, const std::vector<std::string>& sources,
                  const season::Season& season) {
    RequireOther(target, sources);
    try {
        review::WriteWorkbook(season, PathOf(target));
    } catch (const std::system_error& error) {
        ThrowNotWritten(target, error.code());
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(target + ": " + error.what());
    }
}

int RunExport(const Arguments& arguments) {
    const auto& files = arguments.Exactly(1, "one data file");
    const std::string target = arguments.Required("--to");
    const bool toWorkbook = EndsWith(target, ".xlsx");
    const bool toJson = EndsWith(target, ".json");
    const bool toFolder = IsFolder(target);
    if (!toWorkbook && !toJson && !toFolder) {
        throw UsageError(
            "--to takes a name that ends in .xlsx or .json, or a folder, written with "
            "a / at its end.");
    }
    const season::Season season = ReadFile(files.front());
    if (toFolder) {
        SaveCsv(target, files, season);
    } else if (toJson) {
        SaveFile(target, files, review::JsonOfTables(review::PlainTables(season)));
    } else {
        SaveWorkbook(target, files, season);
    }
    return kNothing;
}

}  // namespace

const Command& ExportCommand() {
    static const Command command{
        "export",
        "FILE --to OUT.xlsx|OUT.json|DIR/",
        "Writes everything of a data file for other programs.",
        "  --to OUT.xlsx     a workbook: a sheet for each table, and totals as formulas\n"
        "  --to OUT.json     one JSON object with an array for each table\n"
        "  --to DIR/         a folder with a CSV file for each table\n\n"
        "Sheets, members and files have the tables' names, headings those of the fields. A file\n"
        "that is there is replaced.",
        {{"--to", true}},
        RunExport};
    return command;
}

}  // namespace fcdtool
