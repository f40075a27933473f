// Seeks and edits in a file that may have been tampered with. A file that was sound before must be
// sound afterwards.
#include <cstdio>
#include <cstdlib>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "samples.h"

namespace {

using tarn_fuzz::Input;

void FillFields(jet::Recordset& rows, Input& input) {
    for (const auto& field : rows.Fields()) {
        if (field.autoNumber || input.Byte() % 4 == 0) continue;
        switch (field.type) {
            case jet::ColumnType::kText:
                rows.Set(field.name, input.Text(input.Byte() % 48));
                break;
            case jet::ColumnType::kMemo:
                rows.Set(field.name, std::u16string(input.Word() % 9000, input.Byte()));
                break;
            default:
                rows.Set(field.name, static_cast<std::int32_t>(input.Byte() % 24));
                break;
        }
    }
}

void Step(jet::Recordset& rows, const jet::TableSchema& schema, Input& input) {
    switch (input.Byte() % 9) {
        case 0:
            rows.MoveFirst();
            break;
        case 1:
            rows.MoveNext();
            break;
        case 2:
            rows.MovePrevious();
            break;
        case 3:
            rows.MoveLast();
            break;
        case 4:
            if (!schema.indexes.empty()) {
                rows.SetIndex(schema.indexes[input.Byte() % schema.indexes.size()].name);
            }
            break;
        case 5: {
            const auto comparison = static_cast<jet::Comparison>(input.Byte() % 5);
            if (input.Byte() % 2 == 0) {
                rows.Seek(comparison, {static_cast<std::int32_t>(input.Byte() % 24)});
            } else {
                rows.Seek(comparison, {input.Text(input.Byte() % 8)});
            }
            break;
        }
        case 6:
            rows.AddNew();
            FillFields(rows, input);
            rows.Update();
            break;
        case 7:
            rows.Edit();
            FillFields(rows, input);
            rows.Update();
            break;
        default:
            rows.Delete();
            break;
    }
}

void EditTable(jet::Database& database, const std::string& name, Input& input) {
    try {
        const jet::TableSchema schema = database.Describe(name);
        const auto rows = database.OpenTable(name);
        for (int steps = input.Byte() % 64; steps > 0 && !input.IsEmpty(); --steps) {
            try {
                Step(*rows, schema, input);
            } catch (const jet::Error&) {
                // The next step starts from whatever this one left.
            }
        }
    } catch (const jet::Error&) {
    }
}

// The samples are sound, and most of what is worth trying starts from them as they are.
bool IsSound(const tarn_fuzz::Contents& contents, jet::FileSystem& files) {
    return contents == tarn_fuzz::SampleFile(jet::Version::kJet3) ||
           contents == tarn_fuzz::SampleFile(jet::Version::kJet4) ||
           jet::CheckFile(tarn_fuzz::kFile, files).IsSound();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    const auto files = jet::MakeMemoryFileSystem();
    const tarn_fuzz::Contents contents = tarn_fuzz::FileFrom(input);
    tarn_fuzz::Put(*files, tarn_fuzz::kFile, contents);
    bool sound = false;
    try {
        sound = IsSound(contents, *files);
        const auto database = jet::Database::Open(tarn_fuzz::kFile, {}, *files);
        for (const std::string& name : database->TableNames()) EditTable(*database, name, input);
        database->Close();
    } catch (const jet::Error&) {
        return 0;
    }
    if (sound) {
        const jet::CheckReport report = jet::CheckFile(tarn_fuzz::kFile, *files);
        if (!report.IsSound()) {
            std::fputs(report.Text().c_str(), stderr);
            std::abort();
        }
    }
    return 0;
}
