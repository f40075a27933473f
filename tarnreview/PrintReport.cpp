#include "tarnreview/PrintReport.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QScreen>
#include <QToolBar>

#include "platform/EventTrap.h"
#include "platform/dialogs/RunModal.h"
#include "reportpdf/report_pages.h"
#include "tarnreview/Parts.h"

using platform::EventTrap::Trapped;

namespace {

constexpr double kPartOfScreen = 0.85;

// Qt's dialog leaves its tools without names that could be heard.
void NameParts(QPrintPreviewDialog& dialog) {
    int number = 0;
    for (QWidget* part : dialog.findChildren<QWidget*>()) {
        const auto* const button = qobject_cast<QAbstractButton*>(part);
        const bool isBox =
            qobject_cast<QComboBox*>(part) != nullptr || qobject_cast<QLineEdit*>(part) != nullptr;
        if ((button == nullptr && !isBox) || !part->accessibleName().isEmpty()) {
            continue;
        }
        const QString heard =
            button != nullptr ? button->toolTip() : QObject::tr("Page or size of the pages");
        ++number;
        part->setAccessibleName(heard);
        if (part->objectName().isEmpty()) {
            part->setObjectName(QStringLiteral("toolPreview_%1").arg(number));
        }
    }
}

}  // namespace

namespace PrintReport {

void Preview(QWidget* parent, const review::Document& document, const QString& name) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(name);
    const bool isLetter = reportpdf::UsualPaper() == reportpdf::Paper::kLetter;
    printer.setPageSize(QPageSize(isLetter ? QPageSize::Letter : QPageSize::A4));
    // The pages have margins of their own.
    printer.setFullPage(true);
    QPrintPreviewDialog dialog(&printer, parent);
    Parts::Name(dialog, "dlgPreview", QObject::tr("Print preview"));
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     Trapped("PrintReport.Paint", [&document](QPrinter* device) {
                         reportpdf::Print(document, *device);
                     }));
    NameParts(dialog);
    dialog.resize(parent->screen()->availableSize() * kPartOfScreen);
    platform::RunModal(dialog);
}

}  // namespace PrintReport
