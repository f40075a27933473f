// Reads an input as the text of a query, and asks it of a sample file if it can be understood.
#include "jet/database.h"
#include "jet/error.h"
#include "jet/query.h"
#include "jet/recordset.h"
#include "samples.h"

namespace {

jet::Database& Sample() {
    static const auto files = [] {
        auto made = jet::MakeMemoryFileSystem();
        tarn_fuzz::Put(*made, tarn_fuzz::kFile, tarn_fuzz::SampleFile(jet::Version::kJet4));
        return made;
    }();
    static const auto database = jet::Database::Open(tarn_fuzz::kFile, {.readOnly = true}, *files);
    return *database;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string text(bytes, bytes + size);
    try {
        (void)jet::ParseQuery(text);
        const auto rows = Sample().OpenQuery(text);
        while (!rows->IsEof()) rows->MoveNext();
    } catch (const jet::Error&) {
        // A text that is no query, or one about tables that are not there.
    }
    return 0;
}
