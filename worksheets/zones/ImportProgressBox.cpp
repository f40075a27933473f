#include "worksheets/zones/ImportProgressBox.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

#include "platform/system/Screen.h"

namespace worksheets {

namespace {

// What a person reads, in the language of the screen.
struct Texts {
    Q_DECLARE_TR_FUNCTIONS(ImportProgressBox)
};

constexpr int kRepaintMilliseconds = 40;

}  // namespace

class ImportProgressBox::Box : public QDialog {
public:
    explicit Box(QWidget* frame)
        : QDialog(frame, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
          label_(new QLabel(this)),
          bar_(new QProgressBar(this)) {
        setObjectName(QStringLiteral("frmImportProgress"));
        setWindowTitle(Texts::tr("Import from BRAM"));
        setAccessibleName(windowTitle());
        setModal(true);
        label_->setObjectName(QStringLiteral("lblProgress"));
        bar_->setObjectName(QStringLiteral("barProgress"));
        bar_->setAccessibleName(Texts::tr("Zones copied"));
        bar_->setMinimumWidth(320);
        bar_->setTextVisible(false);
        auto* column = new QVBoxLayout(this);
        column->addWidget(label_);
        column->addWidget(bar_);
    }

    void Show(int zone, int zones) {
        label_->setText(Texts::tr("Copying zone %1 of %2").arg(zone).arg(zones));
        bar_->setRange(0, zones);
        bar_->setValue(zone - 1);
        setAccessibleDescription(label_->text());
    }

    // Neither Esc nor the window manager ends an import half-way.
    void reject() override {}

protected:
    void closeEvent(QCloseEvent* event) override { event->ignore(); }

private:
    QLabel* label_;
    QProgressBar* bar_;
};

ImportProgressBox::ImportProgressBox(QWidget* frame) : frame_(frame) {}

ImportProgressBox::~ImportProgressBox() {
    if (box_) {
        // What was typed or clicked last goes to the box, not to the windows below it.
        QCoreApplication::processEvents();
        box_->hide();
    }
}

void ImportProgressBox::ZoneStarted(int zone, int zones) {
    if (!sinceStart_.isValid()) {
        sinceStart_.start();
    }
    if (sinceStart_.elapsed() < delay_) {
        return;
    }
    const bool isFirst = !box_;
    if (isFirst) {
        box_ = std::make_unique<Box>(frame_);
        box_->Show(zone, zones);
        if (frame_ != nullptr) {
            platform::PlaceOver(*box_, *frame_->window());
        }
        box_->show();
    } else if (sincePaint_.elapsed() < kRepaintMilliseconds) {
        return;
    }
    sincePaint_.start();
    box_->Show(zone, zones);
    QCoreApplication::processEvents();
}

}  // namespace worksheets
