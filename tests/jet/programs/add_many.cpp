// Adds many rows of 280 bytes in one transaction, or each by itself, and prints the most memory
// that it took, in MiB. Without the number it opens and closes the file. Usage: add_many FILE [ROWS
// commit|rollback|kill|each]
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

#include "jet/database.h"
#include "jet/recordset.h"

namespace {

void PrintPeak() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmHWM:", 0) == 0) std::printf("%ld\n", std::atol(line.c_str() + 6) / 1024);
    }
    std::fflush(stdout);
}

void AddMany(jet::Database& database, std::int32_t count, const std::string& end) {
    jet::TableSchema schema;
    schema.name = "Rows";
    schema.columns = {{.name = "ID", .type = jet::ColumnType::kLong},
                      {.name = "Text", .type = jet::ColumnType::kText, .length = 255}};
    schema.indexes = {{.name = "PrimaryKey", .columns = {{"ID"}}, .primary = true}};
    database.CreateTable(schema);
    database.MakeDurable();
    std::optional<jet::Transaction> transaction;
    if (end != "each") transaction.emplace(database.Begin());
    const auto rows = database.OpenTable("Rows");
    const jet::FieldId id = rows->Field("ID");
    const jet::FieldId text = rows->Field("Text");
    // Compressed, it takes a byte for each character.
    const jet::Value value(std::u16string(255, u'x'));
    for (std::int32_t i = 0; i < count; ++i) {
        rows->AddNew();
        rows->Set(id, i);
        rows->Set(text, value);
        rows->Update();
    }
    if (end == "rollback") {
        transaction->Rollback();
    } else if (transaction) {
        transaction->Commit();
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc != 2 && argc != 4) {
        std::fputs("usage: add_many FILE [ROWS commit|rollback|kill|each]\n", stderr);
        return 2;
    }
    if (argc == 2) {
        jet::Database::Open(argv[1])->Close();
        PrintPeak();
        return 0;
    }
    const std::string end = argv[3];
    const auto database = jet::Database::Create(argv[1], jet::Version::kJet4);
    AddMany(*database, std::atoi(argv[2]), end);
    PrintPeak();
    if (end == "kill") std::_Exit(0);
    database->Close();
}
