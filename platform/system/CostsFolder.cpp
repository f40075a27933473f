#include "platform/system/CostsFolder.h"

#include "platform/system/Host.h"

namespace platform {

QString CostsFolder() {
    return FindFile(ProgramFolder(), QStringLiteral("Costs"));
}

}  // namespace platform
