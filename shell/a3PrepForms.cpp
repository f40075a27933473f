#include "shell/a3PrepForms.h"

#include <QApplication>

#include <memory>

#include "base/u91Trace.h"
#include "datafile/PrepDatafile.h"
#include "shell/Worksheets.h"
#include "shell/frm0_Prep.h"
#include "shell/frmTabs.h"
#include "worksheets/Worksheet.h"

using worksheets::Worksheet;
using worksheets::WorksheetHost;

namespace {

constexpr int kIntroduction = 1;

QString worksheetID;
// Not destroyed with the static objects: where something ends the process while a form is loaded,
// Qt's own state is gone by then.
auto& current = *new std::unique_ptr<Worksheet>;
int currentIndex = 0;

// What the shell offers to the worksheets.
class Manager : public WorksheetHost {
public:
    void PositionWorksheet(QWidget& form) override { a3PrepForms::PositionWorksheet(form); }
    void BecomeCurrent(const QString& id) override {
        frm0_Prep::Loaded().StepMenu_Check(static_cast<std::int16_t>(Worksheets::NumberOf(id)));
        a3PrepForms::SetWorksheetID(id);
    }
    QWidget& Frame() override { return frm0_Prep::Loaded(); }
    QWidget& ClientArea() override { return frm0_Prep::Loaded().ClientArea(); }
};

Manager manager;

std::unique_ptr<Worksheet> MakeForm(int number) {
    return Worksheets::At(number).make(manager, &manager.ClientArea());
}

// The keyboard goes to the new worksheet unless the user walks along the tabs with it.
void FocusWorksheet() {
    frmTabs* tabs = frm0_Prep::Loaded().Tabs();
    if (current && (tabs == nullptr || !tabs->HasKeyboard())) {
        frm0_Prep::Loaded().FocusForm(current->Form());
    }
}

void SetUpForm(int index) {
    if (currentIndex != index) {
        a3PrepForms::UnloadForm();
        current = MakeForm(index);
        currentIndex = index;
    }
    try {
        current->SetUp();
    } catch (...) {
        a3PrepForms::UnloadForm();
        throw;
    }
    FocusWorksheet();
}

}  // namespace

namespace a3PrepForms {

const QString& WorksheetID() {
    return worksheetID;
}

void SetWorksheetID(const QString& id) {
    worksheetID = id;
}

void DisplayWorksheet(std::int16_t index) {
    u91Trace::Procedure(QStringLiteral("DisplayWorksheet %1").arg(index));
    if (index < 1 || index > Worksheets::Count()) {
        return;
    }
    if (index != kIntroduction) {
        // Nothing can be changed in the introduction, so that a start need not wait for this.
        PrepDatafile::SecureLog();
    }
    SetUpForm(index);
}

void SetUpIntroduction() {
    SetUpForm(kIntroduction);
}

void PositionWorksheet(QWidget& form) {
    u91Trace::Procedure(QStringLiteral("PositionWorksheet"));
    const QSize client = frm0_Prep::Loaded().ClientSize();
    const frmTabs* tabs = frm0_Prep::Loaded().Tabs();
    const int strip = tabs != nullptr ? tabs->height() : frmTabs::HeightFor(form.font());
    const int height = client.height() > strip ? client.height() - strip : form.height();
    form.setGeometry(0, 0, client.width(), height);
    form.show();
}

void UpdateCurrentWorksheet() {
    u91Trace::Procedure(QStringLiteral("a3PrepForms.UpdateCurrentWorksheet ") + worksheetID);
    if (current && PrepDatafile::IsDatafileOpen()) {
        current->Save();
    }
}

void UnloadCurrentWorksheet() {
    u91Trace::Procedure(QStringLiteral("a3PrepForms.UnloadCurrentWorksheet; WorksheetID = ") +
                        worksheetID);
    UnloadForm();
    // After a New that failed the strip stays, though no file is open.
    frmTabs* const tabs = frm0_Prep::Loaded().Tabs();
    if (tabs != nullptr && !PrepDatafile::IsDatafileOpen()) {
        tabs->ShowFile(QString());
    }
}

void ArrangeWorksheets() {
    if (worksheetID.isEmpty()) {
        return;
    }
    if (frmTabs* tabs = frm0_Prep::Loaded().Tabs()) {
        const QSize client = frm0_Prep::Loaded().ClientSize();
        const int top =
            client.height() > tabs->height() ? client.height() - tabs->height() : tabs->y();
        tabs->setGeometry(tabs->x(), top, client.width(), tabs->height());
    }
    if (current) {
        PositionWorksheet(current->Form());
    }
}

void UnloadForm() {
    if (!current) {
        return;
    }
    // Out of the manager's hands first: whatever the unload handler meets, the form is gone then.
    const std::unique_ptr<Worksheet> leaving = std::move(current);
    currentIndex = 0;
    // The keyboard would go to the tabs by itself, as if the user had taken it there.
    QWidget* const focus = QApplication::focusWidget();
    if (focus != nullptr && leaving->Form().isAncestorOf(focus)) {
        focus->clearFocus();
    }
    leaving->Form().hide();
    leaving->Unload();
}

QWidget* CurrentForm() {
    return current ? &current->Form() : nullptr;
}

}  // namespace a3PrepForms
