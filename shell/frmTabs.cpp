#include "shell/frmTabs.h"

#include <QApplication>

#include "datafile/PrepDatatables.h"
#include "platform/EventTrap.h"
#include "platform/controls/vsIndexTab.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/system/Host.h"
#include "shell/a3PrepForms.h"
#include "shell/u91Trace.h"

namespace {

constexpr int kNVCTab = 5;
constexpr int kSCATab = 6;

bool HasZones() {
    return PrepDatatables::tblFMZList->RecordCount() > 0;
}

void Refuse(const QString& message, const QString& traceText, bool& cancel) {
    platform::MsgBox(message);
    u91Trace::Procedure(traceText);
    cancel = true;
}

}  // namespace

static_assert(platform::ToPixels(frmTabs::kHeightInTwips) == frmTabs::kHeight);

frmTabs::frmTabs(QWidget* clientArea) : QWidget(clientArea), vsTab1_(new vsIndexTab(this)) {
    setObjectName(QStringLiteral("frmTabs"));
    setAccessibleName(tr("Worksheet tabs"));
    setAutoFillBackground(true);
    vsTab1_->setObjectName(QStringLiteral("vsTab1"));
    vsTab1_->setAccessibleName(tr("Worksheets"));
    vsTab1_->SetCaption(
        QStringLiteral("|Introduction|Management Goals|Suppression Resources|FMZs|NVC Table|"
                       "Suppression Cost / Acre"));
    connect(vsTab1_, &vsIndexTab::Switch, this, [this](int oldTab, int newTab, bool* cancel) {
        // A worksheet that cannot be saved stays, with what was typed into it. Once it has gone,
        // the next one must come, even if the disk fails after that.
        bool hasSwitched = false;
        platform::EventTrap::Run("frmTabs.vsTab1_Switch", [&] {
            vsTab1_Switch(oldTab, newTab, *cancel);
            hasSwitched = true;
        });
        if (!hasSwitched) {
            *cancel = true;
        }
    });
    // No worksheet shows after a New that failed, or one whose set-up failed: the tab that is
    // current brings it back, or says why not.
    connect(vsTab1_, &vsIndexTab::CurrentChosen, this,
            platform::EventTrap::Trapped("frmTabs.vsTab1_Click", [this] {
                if (a3PrepForms::CurrentForm() == nullptr) {
                    vsTab1_Click();
                }
            }));
    connect(vsTab1_, &vsIndexTab::Click, this,
            platform::EventTrap::Trapped("frmTabs.vsTab1_Click", [this] { vsTab1_Click(); }));
}

void frmTabs::Form_Load() {
    u91Trace::FormLoad(QStringLiteral("frmTabs"));
    const QSize client = parentWidget()->size();
    const int top = client.height() > kHeight ? client.height() - kHeight : y();
    vsTab1_->SetTabVisibleByIndex(0, false);
    setGeometry(0, top, client.width(), kHeight);
}

void frmTabs::Form_Resize() {
    u91Trace::Procedure(QStringLiteral("frmTabs.Form_Resize"));
    vsTab1_->setGeometry(0, 0, width(), height());
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

// The zones are counted before the current worksheet is saved: a first zone that has only just been
// typed does not count yet.
void frmTabs::vsTab1_Switch(int /*oldTab*/, int newTab, bool& cancel) {
    u91Trace::Start(QStringLiteral("switch to section %1").arg(newTab));
    if (newTab == kNVCTab && !HasZones()) {
        Refuse(tr("Must have at least one FMZ to edit impacts."),
               QStringLiteral("Unable to switch to NVC without FMZ"), cancel);
        return;
    }
    if (newTab == kSCATab && !HasZones()) {
        Refuse(tr("Must have at least one FMZ to edit suppression cost per acre."),
               QStringLiteral("Unable to switch to SCA without FMZ"), cancel);
        return;
    }
    a3PrepForms::UpdateCurrentWorksheet();
    a3PrepForms::UnloadCurrentWorksheet();
}

void frmTabs::vsTab1_Click() {
    a3PrepForms::DisplayWorksheet(static_cast<std::int16_t>(vsTab1_->CurrTab()));
    u91Trace::Finished(QStringLiteral("switching sections"));
}
