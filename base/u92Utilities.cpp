#include "base/u92Utilities.h"

#include "base/u91Trace.h"
#include "platform/dialogs/MsgBox.h"

namespace u92Utilities {

bool ConfirmDelete(const QString& itemName) {
    u91Trace::Procedure(QStringLiteral("u92Utilities.ConfirmDelete"));
    platform::MsgOptions options;
    options.title = QStringLiteral("Delete");
    options.icon = platform::MsgIcon::kStop;
    options.buttons = platform::MsgButtons::kYesNo;
    options.secondIsDefault = true;
    return platform::MsgBox(QStringLiteral("Do you really want to delete ") + itemName, options) ==
           platform::MsgAnswer::kYes;
}

}  // namespace u92Utilities
