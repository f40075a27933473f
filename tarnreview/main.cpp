// TARN Review: what was entered for a season, looked at.
#include <QApplication>

#include <cstdio>
#include <cstring>

#include "platform/controls/ButtonMnemonics.h"
#include "platform/controls/StyleChoice.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/help/HelpViewer.h"
#include "platform/system/Files.h"
#include "platform/system/NativePath.h"
#include "platform/system/OwnFonts.h"
#include "platform/system/ProgramFolder.h"
#include "platform/system/StartHelpers.h"
#include "platform/system/Termination.h"
#include "platform/system/Translations.h"
#include "tarnreview/Failures.h"
#include "tarnreview/ReviewIcon.h"
#include "tarnreview/frmReview.h"

using tarnreview::frmReview;

namespace {

constexpr const char* kHelp =
    "usage: tarnreview [FILE]\n\n"
    "Shows what seems wrong or missing in a TARN Prep data file, its charts, its report and what\n"
    "differs from last year's. Data files are only read. F1 in the window tells more.\n";

// True when the command line asked for words, not for a window.
bool Answered(int argc, char* argv[]) {
    const char* const word = argc == 2 ? argv[1] : "";
    if (std::strcmp(word, "--help") == 0 || std::strcmp(word, "-h") == 0) {
        std::fputs(kHelp, stdout);
        return true;
    }
    if (std::strcmp(word, "--version") == 0) {
        std::puts("tarnreview " TARN_VERSION);
        return true;
    }
    return false;
}

}  // namespace

int main(int argc, char* argv[]) {
    if (Answered(argc, argv)) {
        return 0;
    }
    const QString path = platform::CommandLine(argc, argv);
    int programNameOnly = 1;
    platform::Beside fonts(platform::ReadFonts);
    platform::FollowSystemColors();
    QApplication application(programNameOnly, argv);
    const platform::Beside bus(platform::ConnectToSessionBus);
    platform::LoadTranslations();
    QGuiApplication::setDesktopFileName(QStringLiteral("tarnreview"));
    platform::InstallLegibleStyle();
    QApplication::setWindowIcon(ReviewIcon());
    platform::SetMsgBoxTitle(QStringLiteral("TARN Review"));
    platform::InstallImmediateMnemonics();
    platform::HelpViewer::SetHelpFile(
        platform::FindFile(platform::ProgramFolder(), QStringLiteral("TARNPlus.hlp")));
    Failures::Install();
    fonts.Wait();
    platform::BringFontsWhereThereAreNone();
    frmReview window(path);
    platform::OnTermination([] { QApplication::quit(); });
    window.show();
    return QApplication::exec();
}
