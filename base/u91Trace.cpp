#include "base/u91Trace.h"

#include <QDateTime>
#include <QStringList>

#include <ctime>

#include "platform/RuntimeError.h"
#include "platform/system/Files.h"
#include "platform/system/ProgramFolder.h"
#include "platform/system/Screen.h"
#include "platform/system/TextFile.h"

namespace {

using platform::TextMode;

bool isTolerant = false;
QString passedOverFailure;
int passedOverNumber = 0;

QString Date() {
    return QDate::currentDate().toString(QStringLiteral("MM/dd/yyyy"));
}

// Many lines are written in one second; its text is made once.
QString Time() {
    static std::time_t second = -1;
    static QString text;
    const std::time_t now = std::time(nullptr);
    if (now != second) {
        second = now;
        text = QTime::currentTime().toString(QStringLiteral("hh:mm:ss"));
    }
    return text;
}

void Write(const QString& file, TextMode mode, const QStringList& lines) {
    try {
        platform::WriteLines(platform::JoinPath(platform::ProgramFolder(), file), mode, lines);
    } catch (const platform::RuntimeError& error) {
        if (!isTolerant) {
            throw;
        }
        if (passedOverFailure.isEmpty()) {
            passedOverFailure = error.Description();
            passedOverNumber = error.Number();
        }
    }
}

void AppendTrace(const QStringList& lines) {
    Write(QStringLiteral("TARN.LOG"), TextMode::kAppend, lines);
}

}  // namespace

namespace u91Trace {

void ProgramStart(const QString& title) {
    const QSize screen = platform::ScreenSize();
    Write(QStringLiteral("TARN.LOG"), TextMode::kOutput,
          {QString(), QStringLiteral("* * * * * Program Start * * * * *"), Date(),
           QStringLiteral("App.Path = ") + platform::ProgramFolder(),
           QStringLiteral("Screen: %1 x %2").arg(screen.width()).arg(screen.height()),
           Time() + QStringLiteral(" Start ") + title, QString()});
}

void ProgramEnd(const QString& text) {
    AppendTrace({QString(), Time() + QStringLiteral(" ") + text,
                 QStringLiteral("* * * * * Program End * * * * *"), QString()});
}

void Procedure(const QString& text) {
    AppendTrace({Time() + QStringLiteral("   ") + text});
}

void FormLoad(const QString& text) {
    AppendTrace({Time() + QStringLiteral("   Load ") + text});
}

void FormUnload(const QString& text) {
    AppendTrace({Time() + QStringLiteral("   Unloaded ") + text});
}

void Start(const QString& text) {
    AppendTrace({QString(), Time() + QStringLiteral(" Start ") + text});
}

void Finished(const QString& text) {
    AppendTrace({Time() + QStringLiteral(" Finished ") + text, QString()});
}

void Warning(const QString& text) {
    AppendTrace({QString(), Time() + QStringLiteral("  Warning! ") + text, QString()});
}

void Error(const QString& text) {
    const QString heading = QStringLiteral("* * * ERROR * * *");
    const QString entry = Time() + QStringLiteral("   ") + text;
    AppendTrace({QString(), heading, entry, QString()});
    Write(QStringLiteral("ERROR.LOG"), TextMode::kAppend,
          {QString(), heading, Date(), entry, QString()});
}

void SetTolerant(bool tolerant) {
    isTolerant = tolerant;
    passedOverFailure.clear();
    passedOverNumber = 0;
}

QString PassedOverFailure() {
    return passedOverFailure;
}

int PassedOverNumber() {
    return passedOverNumber;
}

}  // namespace u91Trace
