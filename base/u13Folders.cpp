#include "base/u13Folders.h"

#include "base/u91Trace.h"
#include "platform/RuntimeError.h"
#include "platform/system/CostsFolder.h"
#include "platform/system/ProgramFolder.h"

namespace u13Folders {

QString CostsPath() {
    u91Trace::Procedure(QStringLiteral("u13Folders.CostsPath"));
    try {
        return platform::ListedCostsFolder();
    } catch (const platform::RuntimeError& error) {
        const QString programFolder = platform::ProgramFolder();
        u91Trace::Warning(QStringLiteral("  Err = %1, CostsPath = ").arg(error.Number()) +
                          programFolder);
        return programFolder;
    }
}

}  // namespace u13Folders
