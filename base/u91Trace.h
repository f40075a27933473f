// The two logs beside the program: TARN.LOG, made anew at every start, and ERROR.LOG, which grows.
//
// Each routine writes its lines in one piece, and they are in the file when it returns, so that a
// log is complete up to the last line before a failure. Failures (a read-only program folder) are
// passed on as platform::RuntimeError, except while `SetTolerant` is on: then the first one is
// remembered and the rest passed over, so that a program that cannot log still runs.
#pragma once

#include <QString>

namespace u91Trace {

void ProgramStart(const QString& title);
void ProgramEnd(const QString& text);
void Procedure(const QString& text);   // "hh:mm:ss   text"
void FormLoad(const QString& text);    // "hh:mm:ss   Load text"
void FormUnload(const QString& text);  // "hh:mm:ss   Unloaded text"
void Start(const QString& text);       // blank line, "hh:mm:ss Start text"
void Finished(const QString& text);    // "hh:mm:ss Finished text", blank line
void Warning(const QString& text);     // blank line, "hh:mm:ss  Warning! text", blank line
void Error(const QString& text);       // a block in each log

void SetTolerant(bool tolerant);
// Description of the first failure that was passed over, empty when there was none; its number.
QString PassedOverFailure();
int PassedOverNumber();

}  // namespace u91Trace
