// Plays a script of key presses and clicks in the running program and takes pictures on the way.
//
// A script has one step on a line:
//   wait NAME                  until the control of this object name can be seen
//   gone NAME                  until it can no longer be seen
//   focus NAME                 until it has the keyboard
//   type TEXT                  the keys of this text, one after the other
//   key KEYS                   one key with its modifiers, as in "Alt+N"
//   click NAME [ROW COLUMN]    a click in the middle of the control, or on a cell of a grid
//   expect NAME ROW COLUMN TEXT    the cell of a grid shows this text
//   picture FILE [NAME]        the whole screen, or one control, as a PNG
//   outside WORDS              who reads the standard output does what these words say
// Blank lines and lines that begin with # are passed over. The first step that fails ends the
// program with exit status 3.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

#include "Outside.h"

class QWidget;

namespace tour {

class Player : public QObject {
    Q_OBJECT

public:
    Player(const QString& script, const QString& pictures);
    void Start();

private:
    enum class Outcome { kDone, kNotYet, kWrong };

    // Each step is taken from a fresh timer, since the step before may have opened a dialog whose
    // event loop is still running.
    void Next();
    Outcome Take(const QString& verb, const QString& rest);
    Outcome Click(const QStringList& words);
    Outcome Expect(const QString& rest);
    Outcome Picture(const QStringList& words);
    void Fail(const QString& why) const;

    Outside outside_;
    bool asked_ = false;  // and not yet answered
    bool isTyping_ = false;
    QStringList steps_;
    QString pictures_;
    qsizetype step_ = 0;
    QElapsedTimer sinceStep_;
};

}  // namespace tour
