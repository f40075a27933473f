// The text boxes of the naming dialog: each lets through only the characters of its rule, however
// they come (typed, pasted, dropped or from an input method). What is filtered is what comes in,
// before it replaces anything: a key or a text of which nothing is kept leaves the box and its
// selection as they are. Texts set by the program pass as they are.
#pragma once

#include <QString>

#include "platform/controls/PasteBox.h"

namespace datafile {

class UnitBox : public platform::PasteBox {
    Q_OBJECT

public:
    enum class Rule {
        kUnitID,  // digits and letters, turned into upper case
        kState,   // letters, turned into upper case
        kYear,    // digits
    };

    // A box for `length` characters at most.
    UnitBox(Rule rule, int length, QWidget* parent);

    // What the rule makes of a typed character: itself, its upper case, or null when discarded.
    static QChar Filtered(Rule rule, QChar character);

    void SetProgramText(const QString& text);
    // Selects the first two characters whenever the box gets the focus.
    void SelectTwoOnFocus() { selectsTwo_ = true; }

signals:
    void DownPressed();

protected:
    // Puts what the rule keeps of a text, as far as there is room, in the place of the selection.
    void TakePasted(const QString& text) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    class Filter;

    Rule rule_;
    int length_;
    bool selectsTwo_ = false;
    bool clickedIn_ = false;
    bool byProgram_ = false;
};

}  // namespace datafile
