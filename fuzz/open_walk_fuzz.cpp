// Opens a file that was tampered with and walks all of it: every table in stored order with every
// field, and along every index; and checks it.
#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "samples.h"

namespace {

void ReadFields(jet::Recordset& rows) {
    for (int field = 0; field < static_cast<int>(rows.Fields().size()); ++field) {
        try {
            (void)rows.Get(jet::FieldId{field});
        } catch (const jet::Error&) {
            // One damaged value does not keep the others from being read.
        }
    }
}

// Values do not depend on the order, so they are read once: texts take most of the time.
void WalkInStoredOrder(jet::Recordset& rows) {
    for (; !rows.IsEof(); rows.MoveNext()) ReadFields(rows);
}

void WalkAlong(jet::Recordset& rows, const std::string& index) {
    rows.SetIndex(index);
    if (rows.IsEof()) return;
    for (rows.MoveFirst(); !rows.IsEof(); rows.MoveNext()) {
        try {
            (void)rows.Get(jet::FieldId{0});
        } catch (const jet::Error&) {
        }
    }
}

void WalkTable(jet::Database& database, const std::string& name) {
    try {
        const jet::TableSchema schema = database.Describe(name);
        const auto rows = database.OpenTable(name);
        WalkInStoredOrder(*rows);
        for (const jet::IndexSchema& index : schema.indexes) WalkAlong(*rows, index.name);
    } catch (const jet::Error&) {
        // Damage is reported as an error.
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    tarn_fuzz::Input input(bytes, size);
    const auto files = jet::MakeMemoryFileSystem();
    tarn_fuzz::Put(*files, tarn_fuzz::kFile, tarn_fuzz::FileFrom(input));
    try {
        const auto database = jet::Database::Open(tarn_fuzz::kFile, {.readOnly = true}, *files);
        for (const std::string& name : database->TableNames()) WalkTable(*database, name);
        for (const std::string& name : database->SystemTableNames()) WalkTable(*database, name);
        database->Close();
        (void)jet::CheckFile(tarn_fuzz::kFile, *files);
    } catch (const jet::Error&) {
        // So is a file that cannot be opened.
    }
    return 0;
}
