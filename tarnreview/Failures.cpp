#include "tarnreview/Failures.h"

#include <QCoreApplication>
#include <QDateTime>

#include "platform/EventTrap.h"
#include "platform/RuntimeError.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/system/Files.h"
#include "platform/system/Pointer.h"
#include "platform/system/ProgramFolder.h"
#include "platform/system/TextFile.h"

namespace {

using platform::EventTrap::Report;

// A folder that cannot be written is no second error.
void Log(const Report& report) {
    const QDateTime now = QDateTime::currentDateTime();
    try {
        platform::WriteLines(
            platform::JoinPath(platform::ProgramFolder(), QStringLiteral("ERROR.LOG")),
            platform::TextMode::kAppend,
            {QString(), QStringLiteral("* * * ERROR * * *"),
             now.toString(QStringLiteral("MM/dd/yyyy")),
             now.toString(QStringLiteral("hh:mm:ss")) +
                 QStringLiteral("   TARN Review, %1: Error %2, %3")
                     .arg(report.handler)
                     .arg(report.number)
                     .arg(report.Sentence()),
             QString()});
    } catch (const platform::RuntimeError&) {
        return;
    }
}

void ShowReport(const Report& report) {
    Log(report);
    platform::MsgOptions options;
    options.icon = platform::MsgIcon::kExclamation;
    options.details = QCoreApplication::translate("Failures", "Error %1 in %2")
                          .arg(report.number)
                          .arg(report.handler);
    platform::MsgBox(report.Sentence(), options);
}

}  // namespace

namespace Failures {

void Install() {
    platform::EventTrap::Hooks hooks;
    hooks.report = ShowReport;
    hooks.remember = []() -> std::function<void()> {
        return [pointer = platform::MousePointer()] { platform::SetMousePointer(pointer); };
    };
    platform::EventTrap::Install(std::move(hooks));
}

}  // namespace Failures
