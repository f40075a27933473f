#include "tarnreview/SaveDialog.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>

#include "platform/dialogs/MsgBox.h"
#include "platform/dialogs/RunModal.h"
#include "tarnreview/Parts.h"

namespace {

// "html" of "Report (*.html)"
QString EndingOf(const QString& filter) {
    static const QRegularExpression kEnding(QStringLiteral("\\*\\.(\\w+)"));
    return kEnding.match(filter).captured(1);
}

// What is typed counts; the kind that is chosen only adds what is missing.
QString WithEnding(const QString& path, const QStringList& filters, const QString& chosen) {
    for (const QString& filter : filters) {
        if (path.endsWith(QLatin1Char('.') + EndingOf(filter), Qt::CaseInsensitive)) {
            return path;
        }
    }
    return path + QLatin1Char('.') + EndingOf(chosen);
}

}  // namespace

namespace SaveDialog {

Answer Ask(QWidget* parent, const Request& request) {
    QFileDialog dialog(parent, request.title, request.folder);
    Parts::Name(dialog, "CMDialog1", request.title);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    // Asked below, when the name is complete.
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilters(request.filters);
    dialog.selectNameFilter(request.filters.value(request.filter));
    dialog.selectFile(request.name);
    while (platform::RunModal(dialog) == QDialog::Accepted) {
        const QString path = WithEnding(dialog.selectedFiles().value(0), request.filters,
                                        dialog.selectedNameFilter());
        const Answer answer{path, request.filters.indexOf(dialog.selectedNameFilter())};
        if (!QFileInfo::exists(path)) {
            return answer;
        }
        const QString name = QFileInfo(path).fileName();
        platform::MsgOptions options;
        options.icon = platform::MsgIcon::kExclamation;
        if (!request.mayReplace) {
            platform::MsgBox(QObject::tr("%1 is there already. Choose another name.").arg(name),
                             options);
            continue;
        }
        options.buttons = platform::MsgButtons::kYesNo;
        options.secondIsDefault = true;
        if (platform::MsgBox(QObject::tr("Replace %1?").arg(name), options) ==
            platform::MsgAnswer::kYes) {
            return answer;
        }
    }
    return {};
}

}  // namespace SaveDialog
