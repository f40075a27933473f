// Opens a file with a log beside it, either of them tampered with. A log that is not recovered
// leaves the file as it is; one that is leaves the file as the log says and nothing else.
#include <cstdlib>

#include "jet/database.h"
#include "jet/error.h"
#include "samples.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    tarn_fuzz::Input input(bytes, size);
    const tarn_fuzz::Interrupted pair = tarn_fuzz::DamagedPair(input);
    const auto files = jet::MakeMemoryFileSystem();
    tarn_fuzz::Put(*files, tarn_fuzz::kFile, pair.file);
    tarn_fuzz::Put(*files, tarn_fuzz::kLog, pair.log);
    bool applied = false;
    bool opened = false;
    try {
        const auto database = jet::Database::Open(tarn_fuzz::kFile, {}, *files);
        opened = true;
        applied = database->OpeningRecovery().applied;
        database->Close();
    } catch (const jet::Error&) {
        // Damage above the pages shows after the log was recovered, so the file may have changed.
    }
    if (opened && !applied && tarn_fuzz::Get(*files, tarn_fuzz::kFile).size() != pair.file.size()) {
        std::abort();
    }
    if (opened && files->Exists(tarn_fuzz::kLog)) std::abort();
    return 0;
}
