// Writes one long value in pieces of 64 KiB, reads it in such pieces, and prints the most memory
// that it took, in MiB. Usage: add_long FILE MEBIBYTES ole|memo each|commit|rollback|cancel|delete
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/database.h"
#include "jet/recordset.h"

namespace {

constexpr std::size_t kPiece = std::size_t{64} << 10;

void PrintPeak() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("VmHWM:", 0) == 0) std::printf("%ld\n", std::atol(line.c_str() + 6) / 1024);
    }
}

template <typename Unit>
void Append(jet::Recordset& rows, jet::FieldId field, std::size_t units) {
    const std::vector<Unit> piece(kPiece / sizeof(Unit), static_cast<Unit>(0x61));
    for (std::size_t at = 0; at < units; at += piece.size()) {
        if constexpr (sizeof(Unit) == 2) {
            rows.Append(field, std::u16string_view(piece.data(), piece.size()));
        } else {
            rows.Append(field, std::span(piece));
        }
    }
}

template <typename Unit>
bool Holds(jet::Recordset& rows, jet::FieldId field, std::size_t units) {
    const auto reader = rows.OpenReader(field);
    std::vector<Unit> piece(kPiece / sizeof(Unit));
    std::size_t found = 0;
    while (const std::size_t count = reader->Read(std::span(piece))) {
        found += static_cast<std::size_t>(
            std::count(piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count),
                       static_cast<Unit>(0x61)));
    }
    return found == units;
}

template <typename Unit>
bool Run(jet::Database& database, std::size_t bytes, const std::string& end) {
    const auto rows = database.OpenTable("Rows");
    const jet::FieldId field = rows->Field(sizeof(Unit) == 2 ? "Memo" : "Ole");
    const std::size_t units = bytes / sizeof(Unit);
    std::optional<jet::Transaction> transaction;
    if (end == "commit" || end == "rollback") transaction.emplace(database.Begin());
    rows->AddNew();
    Append<Unit>(*rows, field, units);
    if (end == "cancel") {
        rows->CancelUpdate();
        return true;
    }
    rows->Update();
    rows->MoveFirst();
    if (!Holds<Unit>(*rows, field, units)) return false;
    if (end == "commit") transaction->Commit();
    if (end == "rollback") transaction->Rollback();
    if (end == "delete") rows->Delete();
    return true;
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc != 5) {
        std::fputs("usage: add_long FILE MEBIBYTES ole|memo each|commit|rollback|cancel|delete\n",
                   stderr);
        return 2;
    }
    const auto database = jet::Database::Create(argv[1], jet::Version::kJet4);
    jet::TableSchema schema;
    schema.name = "Rows";
    schema.columns = {{.name = "Ole", .type = jet::ColumnType::kOle},
                      {.name = "Memo", .type = jet::ColumnType::kMemo}};
    database->CreateTable(schema);
    const std::size_t bytes = static_cast<std::size_t>(std::atoi(argv[2])) << 20;
    const bool isMemo = std::string(argv[3]) == "memo";
    const bool done = isMemo ? Run<char16_t>(*database, bytes, argv[4])
                             : Run<std::byte>(*database, bytes, argv[4]);
    database->Close();
    PrintPeak();
    return done ? 0 : 1;
}
