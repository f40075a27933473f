#include <QApplication>

#include "platform/EventTrap.h"
#include "platform/controls/ButtonMnemonics.h"
#include "platform/controls/ClipboardShortcuts.h"
#include "platform/controls/StyleChoice.h"
#include "platform/system/NativePath.h"
#include "platform/system/OwnFonts.h"
#include "platform/system/StartHelpers.h"
#include "platform/system/Termination.h"
#include "platform/system/Translations.h"
#include "shell/LastTrap.h"
#include "shell/Scenery.h"
#include "shell/frm0_Prep.h"

int main(int argc, char* argv[]) {
    const QString commandLine = platform::CommandLine(argc, argv);
    int programNameOnly = 1;
    platform::Beside fonts(platform::ReadFonts);
    platform::FollowSystemColors();
    QApplication application(programNameOnly, argv);
    const platform::Beside bus(platform::ConnectToSessionBus);
    platform::LoadTranslations();
    // A message box may be the only window for a while; the program ends with the main frame.
    QApplication::setQuitOnLastWindowClosed(false);
    platform::InstallLegibleStyle();
    QApplication::setWindowIcon(Scenery::Icon(QApplication::palette()));
    platform::InstallClipboardShortcutFilter();
    platform::InstallImmediateMnemonics();
    LastTrap::Install();
    fonts.Wait();
    platform::BringFontsWhereThereAreNone();

    frm0_Prep frame(commandLine);
    QObject::connect(
        &frame, &frm0_Prep::Unloaded, &application,
        platform::EventTrap::Trapped("frm0_Prep.Unloaded", [] { QApplication::exit(0); }),
        Qt::QueuedConnection);
    platform::OnTermination(
        platform::EventTrap::Trapped("frm0_Prep.EndAtOnce", [&frame] { frame.EndAtOnce(); }));
    frame.MDIForm_Load();
    const platform::ExitWatch exitWatch([&frame] { frame.SaveAtExit(); });
    return frame.IsUnloaded() ? 0 : QApplication::exec();
}
