#include "worksheets/zones/ImportProgressBox.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

#include "platform/help/HelpViewer.h"
#include "platform/system/Host.h"
#include "worksheets/WorksheetPage.h"

namespace {

constexpr int kPatience = 500;  // milliseconds before it is worth a window
constexpr int kMinimumWidth = 320;
constexpr int kHelpContextId = 80;

}  // namespace

ImportProgressBox::ImportProgressBox(QWidget* frame)
    : QDialog(frame, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      lblProgress_(PageParts::Label(this, "lblProgress", QString())),
      barProgress_(new QProgressBar(this)) {
    setObjectName(QStringLiteral("frmImportProgress"));
    setWindowTitle(tr("Import from BRAM"));
    setWindowModality(Qt::ApplicationModal);
    setMinimumWidth(kMinimumWidth);
    platform::SetHelpContextId(*this, kHelpContextId);
    PageParts::Name(*barProgress_, "barProgress", tr("Zones copied"));
    auto* rows = new QVBoxLayout(this);
    rows->addWidget(lblProgress_);
    rows->addWidget(barProgress_);
}

void ImportProgressBox::ZoneStarted(int zone, int zones) {
    if (!elapsed_.isValid()) {
        elapsed_.start();
    }
    if (elapsed_.elapsed() < kPatience) {
        return;
    }
    lblProgress_->setText(tr("Copying zone %1 of %2").arg(zone).arg(zones));
    lblProgress_->setAccessibleName(lblProgress_->text());
    barProgress_->setRange(0, zones);
    barProgress_->setValue(zone - 1);
    if (!isVisible()) {
        show();
        platform::PlaceOver(*this, *parentWidget());
    }
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void ImportProgressBox::closeEvent(QCloseEvent* event) {
    event->ignore();
}
