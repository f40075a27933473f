// Who plays along outside of the program: keys are asked for on the standard output and pressed by
// a script, so that they come as a user's do.
#pragma once

#include <QObject>
#include <QString>

namespace tour {

class Outside : public QObject {
public:
    explicit Outside(const QString& pictures);

    // Whether somebody reads the standard output (TARN_TOUR_OUTSIDE is set).
    [[nodiscard]] static bool IsThere();
    // Asks for `presses` keys by a line, "key alt+n" or "type word", in the words of xdotool.
    void AskForKeys(const QString& line, qsizetype presses);
    // Whether all of them have arrived.
    [[nodiscard]] bool AreKeysHere() const { return arrived_ >= asked_; }

    // Asks by a line for something to be done, which ends with a file `answered` beside the
    // pictures.
    static void Ask(const QString& line);
    // Whether it is done; takes the file away.
    [[nodiscard]] bool IsAnswered() const;

    // "Alt+Down" as xdotool calls it.
    static QString NameOfKeys(const QString& keys);

protected:
    // Each key begins as a question whether it is to be no shortcut, which goes to one control
    // after the other with the same time.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QString answer_;
    qsizetype asked_ = 0;
    qsizetype arrived_ = 0;
    quint64 lastTime_ = 0;
};

}  // namespace tour
