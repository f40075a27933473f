#include "shell/frmTabs.h"

#include <QApplication>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QLabel>
#include <QShortcut>

#include <algorithm>

#include "base/Handle.h"
#include "base/u91Trace.h"
#include "datafile/PrepDatafile.h"
#include "datafile/PrepDatatables.h"
#include "platform/EventTrap.h"
#include "platform/controls/FontScale.h"
#include "platform/controls/vsIndexTab.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/system/Twips.h"
#include "shell/Worksheets.h"
#include "shell/a3PrepForms.h"

using base::Entry;
using base::Handle;

namespace {

constexpr int kGap = 6;
constexpr int kLeastOfFile = 12;  // characters, with which a path says something

bool HasZones() {
    return PrepDatatables::tblFMZList->RecordCount() > 0;
}

}  // namespace

int frmTabs::HeightFor(const QFont& font) {
    return platform::ScaledPixels(platform::ToPixels(kHeightInTwips), font);
}

frmTabs::frmTabs(QWidget* clientArea)
    : QWidget(clientArea), vsTab1_(new vsIndexTab(this)), lblFile_(new QLabel(this)) {
    setObjectName(QStringLiteral("frmTabs"));
    setAccessibleName(tr("Worksheet tabs"));
    setAutoFillBackground(true);
    vsTab1_->setObjectName(QStringLiteral("vsTab1"));
    vsTab1_->setAccessibleName(tr("Worksheets"));
    QString captions;
    for (const Worksheets::Line& line : Worksheets::Lines()) {
        captions += u'|' + Worksheets::Text(line.tabCaption);
    }
    vsTab1_->SetCaption(captions);
    lblFile_->setObjectName(QStringLiteral("lblFile"));
    lblFile_->setTextFormat(Qt::PlainText);
    lblFile_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    lblFile_->hide();
    AddStepKey(Qt::CTRL | Qt::Key_PageUp, -1);
    AddStepKey(Qt::CTRL | Qt::Key_PageDown, 1);
    Handle<&frmTabs::vsTab1_Switch, Entry::kOwn>(vsTab1_, &vsIndexTab::Switch, this);
    Handle<&frmTabs::vsTab1_CurrentChosen, Entry::kOwn>(vsTab1_, &vsIndexTab::CurrentChosen, this);
    Handle<&frmTabs::vsTab1_Click, Entry::kOwn>(vsTab1_, &vsIndexTab::Click, this);
}

// From any control, one in an open cell editor too; the worksheet is left as by a click on a tab.
void frmTabs::AddStepKey(const QKeySequence& key, int step) {
    auto* shortcut = new QShortcut(key, this);
    connect(shortcut, &QShortcut::activated, this,
            platform::EventTrap::Trapped("frmTabs.StepWorksheet", [this, step] {
                const int next = vsTab1_->CurrTab() + step;
                if (next >= 1 && next <= Worksheets::Count()) {
                    vsTab1_->SetCurrTab(next);
                }
            }));
}

void frmTabs::Form_Load() {
    u91Trace::FormLoad(QStringLiteral("frmTabs"));
    const QSize client = parentWidget()->size();
    const int height = HeightFor(font());
    const int top = client.height() > height ? client.height() - height : y();
    vsTab1_->SetTabVisibleByIndex(0, false);
    setGeometry(0, top, client.width(), height);
}

void frmTabs::Form_Resize() {
    u91Trace::Procedure(QStringLiteral("frmTabs.Form_Resize"));
    vsTab1_->setGeometry(0, 0, width(), height());
    PlaceFile();
}

void frmTabs::ShowFile(const QString& path) {
    path_ = QDir::toNativeSeparators(path);
    const QString tip = tr("Data file: %1").arg(path_);
    lblFile_->setAccessibleName(tip);
    lblFile_->setToolTip(Qt::mightBeRichText(tip) ? tip.toHtmlEscaped() : tip);
    PlaceFile();
}

void frmTabs::PlaceFile() {
    const int left = vsTab1_->TabsEnd() + kGap;
    const int room = width() - kGap - left;
    lblFile_->setVisible(!path_.isEmpty() &&
                         room >= fontMetrics().averageCharWidth() * kLeastOfFile);
    lblFile_->setGeometry(left, 0, room, height());
    const QString& name = PrepDatafile::CurrentFileName();
    const QStringList texts{path_, name, QFileInfo(name).completeBaseName()};
    const auto whole = std::find_if(texts.begin(), texts.end(), [&](const QString& text) {
        return fontMetrics().horizontalAdvance(text) <= room;
    });
    lblFile_->setText(whole != texts.end()
                          ? *whole
                          : fontMetrics().elidedText(texts.last(), Qt::ElideRight, room));
}

void frmTabs::Form_Unload() {
    u91Trace::FormUnload(QStringLiteral("frmTabs"));
}

bool frmTabs::HasKeyboard() const {
    return isAncestorOf(QApplication::focusWidget());
}

void frmTabs::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    platform::EventTrap::Run("frmTabs.Form_Resize", [this] { Form_Resize(); });
}

void frmTabs::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && height() != HeightFor(font())) {
        resize(width(), HeightFor(font()));
        platform::EventTrap::Run("a3PrepForms.ArrangeWorksheets",
                                 [] { a3PrepForms::ArrangeWorksheets(); });
    }
}

// The zones are counted before the current worksheet is saved: a first zone that has only just been
// typed does not count yet.
//
// A worksheet that cannot be saved stays, with what was typed into it. Once it has gone, the next
// one must come, even if the disk fails after that.
void frmTabs::vsTab1_Switch(int /*oldTab*/, int newTab, bool* cancel) {
    *cancel = true;
    u91Trace::Start(QStringLiteral("switch to section %1").arg(newTab));
    const Worksheets::Line& line = Worksheets::At(newTab);
    if (line.refusalWithoutZone != nullptr && !HasZones()) {
        platform::MsgBox(Worksheets::Text(line.refusalWithoutZone));
        u91Trace::Procedure(
            QStringLiteral("Unable to switch to %1 without FMZ").arg(QLatin1String(line.id)));
        return;
    }
    a3PrepForms::UpdateCurrentWorksheet();
    a3PrepForms::UnloadCurrentWorksheet();
    *cancel = false;
}

// No worksheet shows after a New that failed, or one whose set-up failed: the tab that is current
// brings it back, or says why not.
void frmTabs::vsTab1_CurrentChosen() {
    if (a3PrepForms::CurrentForm() == nullptr) {
        vsTab1_Click();
    }
}

void frmTabs::vsTab1_Click() {
    u91Trace::Procedure(QStringLiteral("frmTabs.vsTab1_Click"));
    a3PrepForms::DisplayWorksheet(static_cast<std::int16_t>(vsTab1_->CurrTab()));
    u91Trace::Finished(QStringLiteral("switching sections"));
}
