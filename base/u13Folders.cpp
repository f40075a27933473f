#include "base/u13Folders.h"

#include "base/u91Trace.h"
#include "platform/RuntimeError.h"
#include "platform/system/CostsFolder.h"
#include "platform/system/Host.h"

namespace u13Folders {

QString CostsPath() {
    u91Trace::Procedure(QStringLiteral("u13Folders.CostsPath"));
    const QString programFolder = platform::ProgramFolder();
    const QString costs = platform::CostsFolder();
    try {
        // Only whether listing fails counts: a folder that is not there lists as empty.
        (void)platform::Dir(platform::JoinPath(costs, QString()));
        return costs;
    } catch (const platform::RuntimeError& error) {
        u91Trace::Warning(QStringLiteral("  Err = %1, CostsPath = ").arg(error.Number()) +
                          programFolder);
        return programFolder;
    }
}

}  // namespace u13Folders
