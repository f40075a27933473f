// Checks a file with a log beside it, either of them tampered with. The check writes nothing, and
// sees what an opening makes of the two.
#include <cstdlib>

#include "jet/check.h"
#include "jet/database.h"
#include "jet/error.h"
#include "samples.h"

namespace {

using tarn_fuzz::Contents;

bool SameVerdict(const jet::CheckReport& left, const jet::CheckReport& right) {
    return left.IsSound() == right.IsSound() && left.pages == right.pages &&
           left.tables == right.tables && left.rows == right.rows && left.entries == right.entries;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    tarn_fuzz::Input input(bytes, size);
    const tarn_fuzz::Interrupted pair = tarn_fuzz::DamagedPair(input);
    const auto files = jet::MakeMemoryFileSystem();
    tarn_fuzz::Put(*files, tarn_fuzz::kFile, pair.file);
    tarn_fuzz::Put(*files, tarn_fuzz::kLog, pair.log);
    try {
        const jet::CheckReport before = jet::CheckFile(tarn_fuzz::kFile, *files);
        if (tarn_fuzz::Get(*files, tarn_fuzz::kFile) != pair.file) std::abort();
        if (tarn_fuzz::Get(*files, tarn_fuzz::kLog) != pair.log) std::abort();
        jet::Database::Open(tarn_fuzz::kFile, {}, *files)->Close();
        if (!SameVerdict(before, jet::CheckFile(tarn_fuzz::kFile, *files))) std::abort();
    } catch (const jet::Error&) {
        // A file that cannot be read as one has no verdict.
    }
    return 0;
}
