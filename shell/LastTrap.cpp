#include "shell/LastTrap.h"

#include <QCoreApplication>
#include <QTimer>

#include <functional>

#include "base/UIMode.h"
#include "base/u91Trace.h"
#include "datafile/PrepDatafile.h"
#include "platform/EventTrap.h"
#include "platform/RuntimeError.h"
#include "platform/dialogs/MsgBox.h"
#include "shell/frm0_Prep.h"

namespace {

// What a person reads, in the language of the screen.
struct Texts {
    Q_DECLARE_TR_FUNCTIONS(LastTrap)
};

using platform::EventTrap::Report;

QString Advice(int number) {
    if (number != platform::kFileSystemFull && number != platform::kDiskFull) {
        return {};
    }
    return Texts::tr("Make room on the disk; what is on the screen can be stored then.");
}

void ShowReport(const Report& report) {
    try {
        u91Trace::Error(QStringLiteral("%1: Error %2, ").arg(report.handler).arg(report.number) +
                        report.Sentence());
        platform::MsgOptions options;
        options.icon = platform::MsgIcon::kExclamation;
        options.informative = Advice(report.number);
        options.details = Texts::tr("Error %1 in %2").arg(report.number).arg(report.handler);
        platform::MsgBox(report.Sentence(), options);
    } catch (...) {
        // Out of memory or the like: there is no way left to report it.
        return;
    }
}

// Once the handlers have ended: a message box waits, and nothing should wait with it.
void Later(const char* handler, const std::function<void()>& show) {
    QTimer::singleShot(0, &frm0_Prep::Loaded(), platform::EventTrap::Trapped(handler, show));
}

void NoticeNews() {
    if (PrepDatafile::HasNews()) {
        Later("PrepDatafile.ShowNews", PrepDatafile::ShowNews);
    }
    if (!u91Trace::PassedOverFailure().isEmpty() && !frm0_Prep::Loaded().HasShownLogFailure()) {
        Later("frm0_Prep.ShowLogFailure", [] { frm0_Prep::Loaded().ShowLogFailure(); });
    }
}

}  // namespace

namespace LastTrap {

void Install() {
    platform::EventTrap::Hooks hooks;
    hooks.report = ShowReport;
    hooks.remember = []() -> std::function<void()> {
        return [state = UIMode::Remember()] { UIMode::Restore(state); };
    };
    hooks.idle = [] {
        PrepDatafile::MakeDurable();
        NoticeNews();
    };
    platform::EventTrap::Install(std::move(hooks));
}

}  // namespace LastTrap
