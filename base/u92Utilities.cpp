#include "base/u92Utilities.h"

#include <QCoreApplication>

#include "base/u91Trace.h"
#include "platform/dialogs/MsgBox.h"

namespace u92Utilities {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(u92Utilities)
};

}  // namespace

bool ConfirmDelete(const QString& itemName) {
    u91Trace::Procedure(QStringLiteral("u92Utilities.ConfirmDelete"));
    platform::MsgOptions options;
    options.title = Texts::tr("Delete");
    options.icon = platform::MsgIcon::kStop;
    options.buttons = platform::MsgButtons::kYesNo;
    options.secondIsDefault = true;
    return platform::MsgBox(Texts::tr("Do you really want to delete ") + itemName, options) ==
           platform::MsgAnswer::kYes;
}

}  // namespace u92Utilities
