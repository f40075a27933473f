#include "platform/system/CostsFolder.h"

#include "platform/system/Files.h"
#include "platform/system/ProgramFolder.h"

namespace platform {

QString CostsFolder() {
    return FindFile(ProgramFolder(), QStringLiteral("Costs"));
}

QString ListedCostsFolder() {
    const QString costs = CostsFolder();
    (void)Dir(JoinPath(costs, QString()));
    return costs;
}

}  // namespace platform
