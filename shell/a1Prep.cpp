#include "shell/a1Prep.h"

#include <QCoreApplication>
#include <QSize>

#include "base/u91Trace.h"
#include "datafile/DatafileHost.h"
#include "datafile/PrepDatafile.h"
#include "datafile/PrepDatatables.h"
#include "platform/FirstError.h"
#include "platform/controls/vsIndexTab.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/system/Screen.h"
#include "platform/system/Twips.h"
#include "shell/ProgramTexts.h"
#include "shell/a3PrepForms.h"
#include "shell/frm0Start.h"
#include "shell/frm0_Prep.h"
#include "shell/frmTabs.h"

using datafile::DatafileHost;

namespace {

// What a person reads, in the language of the screen.
struct Texts {
    Q_DECLARE_TR_FUNCTIONS(a1Prep)
};

// Screen heights in twips: below 600 pixels, and the frame's working height.
constexpr int kTooLow = 8000;
constexpr int kFrameHeight = 9120;
constexpr int kFrameWidth = 12120;

constexpr std::int16_t kIntroduction = 1;
constexpr int kWorksheetMenu = 2;
constexpr int kEditMenu = 3;

class Host : public DatafileHost {
public:
    void FCD_Restart() override { a1Prep::FCD_Restart(); }
    void ReleaseWorksheet() override { a3PrepForms::UnloadCurrentWorksheet(); }
    QWidget* Frame() override { return &frm0_Prep::Loaded(); }
};

void EnableMenus(bool enabled) {
    frm0_Prep::Loaded().EnableMenu(kWorksheetMenu, enabled);
    frm0_Prep::Loaded().EnableMenu(kEditMenu, enabled);
}

// No file is open, and the start screen fills the frame.
void BackToStart() {
    platform::FirstError known;  // the error that led here is the one to report
    known.Try(a3PrepForms::UnloadForm);
    known.Try(PrepDatafile::GiveUp);
    known.Try(a1Prep::FCD_Restart);
}

// Shows the file that has just been opened. Where a step fails, the file is closed again: the
// screen has two states and no third.
void ShowOpenedFile(const QString& title = QString()) {
    try {
        a1Prep::LoadFromFile();
        if (!title.isEmpty()) {
            frm0_Prep::Loaded().SetTitleBar(title);
        }
    } catch (...) {
        BackToStart();
        throw;
    }
}

// An error before the former file was closed leaves it and its worksheet as they are.
PrepDatafile::Result Query(PrepDatafile::Result (*query)()) {
    try {
        return query();
    } catch (...) {
        if (!PrepDatafile::IsDatafileOpen()) {
            BackToStart();
        }
        throw;
    }
}

}  // namespace

namespace a1Prep {

FirstSize FirstSizeFor(int screenHeight) {
    if (screenHeight <= kTooLow) {
        return FirstSize::kAsItIs;
    }
    return screenHeight <= kFrameHeight ? FirstSize::kMaximized : FirstSize::kWorkingSize;
}

void DisplayCheck(frm0_Prep& frame) {
    u91Trace::Procedure(QStringLiteral("a1Prep.DisplayCheck"));
    switch (FirstSizeFor(platform::ScreenSize().height())) {
        case FirstSize::kAsItIs:
            platform::MsgBox(
                Texts::tr(
                    "This program is designed for display at 800 x 600 resolution or higher.") +
                platform::kNewLine +
                Texts::tr("You may have difficulty using the program with your current "
                          "display settings."));
            break;
        case FirstSize::kMaximized:
            frame.Maximize();
            break;
        case FirstSize::kWorkingSize:
            frame.move(0, 0);
            frame.resize(platform::ToPixels(kFrameWidth), platform::ToPixels(kFrameHeight));
            break;
    }
}

void StartWithoutFile() {
    u91Trace::Procedure(QStringLiteral("a1Prep.StartWithoutFile"));
    a3PrepForms::SetWorksheetID(QString());
    frm0_Prep::Loaded().FillWithStartScreen();
}

void StartWithFile(const QString& fileName) {
    u91Trace::Procedure(QStringLiteral("a1Prep.StartWithFile ") + fileName);
    if (PrepDatafile::OpenDatatables(fileName) && PrepDatatables::OpenRecordsets()) {
        ShowOpenedFile();
    }
}

void LoadFromFile() {
    u91Trace::Start(QStringLiteral("a1Prep.LoadFromFile"));
    frm0_Prep& frame = frm0_Prep::Loaded();
    frame.StartScreen().SetBackground();
    frame.SetTitleBar(PrepDatafile::CurrentFileName());
    EnableMenus(true);
    frame.ShowTabs().Tab().SetCurrTab(kIntroduction);
    a3PrepForms::SetUpIntroduction();
    u91Trace::Finished(QStringLiteral("a1Prep.LoadFromFile"));
}

void FCD_Restart() {
    u91Trace::Procedure(QStringLiteral("FCD_Restart"));
    frm0_Prep& frame = frm0_Prep::Loaded();
    frame.StartScreen().SetForeground();
    frame.setWindowTitle(ProgramTexts::kName);
    frame.UnloadTabs();
    EnableMenus(false);
}

void NewDatafile() {
    u91Trace::Procedure(QStringLiteral("a1Prep.NewDatafile"));
    switch (Query(PrepDatafile::QueryNewDatafile)) {
        case PrepDatafile::kOpened:
            if (PrepDatatables::OpenRecordsets()) {
                ShowOpenedFile(QStringLiteral("New"));
            } else {
                a3PrepForms::UnloadCurrentWorksheet();
            }
            break;
        case PrepDatafile::kFailed:
            a3PrepForms::UnloadCurrentWorksheet();
            break;
        case PrepDatafile::kCancelled:
            break;
    }
}

void OpenDatafile() {
    u91Trace::Procedure(QStringLiteral("a1Prep.OpenDatafile"));
    switch (Query(PrepDatafile::QueryOpenDatafile)) {
        case PrepDatafile::kOpened:
            if (PrepDatatables::OpenRecordsets()) {
                ShowOpenedFile();
            } else {
                a3PrepForms::UnloadCurrentWorksheet();
                FCD_Restart();
            }
            break;
        case PrepDatafile::kFailed:
            a3PrepForms::UnloadCurrentWorksheet();
            break;
        case PrepDatafile::kCancelled:
            break;
    }
}

void ConnectDatafile() {
    static Host host;
    PrepDatafile::SetHost(&host);
}

}  // namespace a1Prep
