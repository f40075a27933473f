// The text boxes of the naming dialog: each lets through only the characters of its rule, however
// they come (typed, pasted, dropped or from an input method). Texts set by the program pass as they
// are.
#pragma once

#include <QLineEdit>
#include <QString>

class UnitBox : public QLineEdit {
    Q_OBJECT

public:
    enum class Rule {
        kUnitID,  // digits and letters, turned into upper case
        kState,   // letters, turned into upper case
        kYear,    // digits
    };

    UnitBox(Rule rule, int length, QWidget* parent);

    // What the rule makes of a typed character: itself, its upper case, or null when discarded.
    static QChar Filtered(Rule rule, QChar character);

    void SetProgramText(const QString& text);
    // Selects the first two characters whenever the box gets the focus.
    void SelectTwoOnFocus() { selectsTwo_ = true; }

signals:
    void DownPressed();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    class Filter;
    QString former_;  // the text before the change that is being made
    bool selectsTwo_ = false;
    bool clickedIn_ = false;
    bool byProgram_ = false;
};
