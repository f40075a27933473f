#include "platform/dialogs/CommonDialog.h"

#include <QDir>
#include <QRegularExpression>
#include <QSettings>
#include <QStringList>
#include <algorithm>

#include "platform/dialogs/OpenDialog.h"
#include "platform/dialogs/RunModal.h"

namespace platform {
namespace {

// "Data files (*.fcd)" and "*.fcd;*.mdb" as one Qt filter: "Data files (*.fcd *.mdb)".
QString ToNameFilter(QString description, QString patterns) {
    static const QRegularExpression kTrailingPatterns(QStringLiteral("\\s*\\([^()]*\\)\\s*$"));
    description.remove(kTrailingPatterns);
    const QStringList list = patterns.replace(u';', u' ').split(u' ', Qt::SkipEmptyParts);
    return description + QStringLiteral(" (") + list.join(u' ') + u')';
}

// Qt's dialog writes its layout and history to a file of its own whenever it goes, and waits for
// the disk to do so.
void KeepNoSettings() {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       QStringLiteral(":/no settings"));
}

}  // namespace

QStringList NameFilters(const QString& filter) {
    const QStringList parts = filter.split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        filters += ToNameFilter(parts[i], parts[i + 1]);
    }
    return filters;
}

QString CommonDialog::ShowOpen(const OpenFileRequest& request, QWidget* parent) {
    KeepNoSettings();
    OpenDialog dialog(parent, request.title);
    dialog.setObjectName(QStringLiteral("CMDialog1"));
    dialog.setFileMode(request.mustExist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    const QStringList filters = NameFilters(request.filter);
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
        const qsizetype chosen =
            std::clamp<qsizetype>(request.filterIndex - 1, 0, filters.size() - 1);
        dialog.selectNameFilter(filters[chosen]);
    }
    // Set every time: the dialog would otherwise start where the last one ended.
    const QString folder = request.initialFolder;
    dialog.setDirectory(!folder.isEmpty() && QDir(folder).exists() ? folder : QDir::currentPath());
    if (!request.fileName.isEmpty()) {
        dialog.selectFile(request.fileName);
    }
    const bool accepted = RunModal(dialog) == QDialog::Accepted;
    const QStringList files = dialog.selectedFiles();
    return accepted && !files.isEmpty() ? QDir::toNativeSeparators(files.first()) : QString();
}

}  // namespace platform
