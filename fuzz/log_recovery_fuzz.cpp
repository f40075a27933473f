// Opens a file with a log beside it, either of them tampered with. A log that is not recovered
// leaves the file as it is; one that is leaves the file as the log says and nothing else. Half of
// the inputs have their checksums put right, so that what lies behind those is reached.
#include <cstdlib>

#include "jet/database.h"
#include "jet/error.h"
#include "page/bytes.h"
#include "page/checksum.h"
#include "page/log_format.h"
#include "samples.h"

namespace {

using tarn_fuzz::Contents;

void PutChecksumsRight(Contents& log) {
    if (log.size() < jet::kLogHeaderSize) return;
    const std::size_t headerBody = jet::kLogHeaderSize - jet::kLogChecksumSize;
    std::uint64_t checksum = jet::Checksum(jet::Bytes(log).first(headerBody), 0);
    jet::WriteU64(log, headerBody, checksum);
    std::size_t at = jet::kLogHeaderSize;
    while (log.size() - at >= jet::kLogRecordHead + jet::kLogChecksumSize) {
        const std::size_t length = jet::ReadU32(log, at);
        if (length < jet::kLogRecordHead + jet::kLogChecksumSize || length > log.size() - at)
            return;
        const std::size_t body = length - jet::kLogChecksumSize;
        checksum = jet::Checksum(jet::Bytes(log).subspan(at, body), checksum);
        jet::WriteU64(log, at + body, checksum);
        at += length;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    tarn_fuzz::Input input(bytes, size);
    const std::uint8_t kind = input.Byte();
    const auto& sample =
        tarn_fuzz::InterruptedSample(kind % 2 == 0 ? jet::Version::kJet3 : jet::Version::kJet4);
    Contents file = sample.file;
    Contents log = sample.log;
    if (kind & 2) tarn_fuzz::Damage(file, 64, input);
    if (kind & 4) log.resize(input.Word() % (log.size() + 1));
    tarn_fuzz::Damage(log, 64, input);
    if (kind & 8) PutChecksumsRight(log);

    const auto files = jet::MakeMemoryFileSystem();
    tarn_fuzz::Put(*files, tarn_fuzz::kFile, file);
    tarn_fuzz::Put(*files, tarn_fuzz::kLog, log);
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
    if (opened && !applied && tarn_fuzz::Get(*files, tarn_fuzz::kFile).size() != file.size()) {
        std::abort();
    }
    if (opened && files->Exists(tarn_fuzz::kLog)) std::abort();
    return 0;
}
