// Reads an input as a typed number, and shows what was read by each pattern in use.
#include <QString>

#include <cstdint>

#include "platform/RuntimeError.h"
#include "platform/text/Numbers.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    try {
        (void)platform::IsPlainNumber(text);
        const double value = platform::Val(text);
        for (const char* pattern : {"$#,0", "#,#.00", "$#,#", "#.00", "#.0", "#", ""}) {
            (void)platform::Format(value, QString::fromLatin1(pattern));
        }
        (void)platform::Str(value);
        (void)platform::CDbl(text);
        (void)platform::CLng(value);
    } catch (const platform::RuntimeError&) {
        // A number that is none, or too large.
    }
    return 0;
}
