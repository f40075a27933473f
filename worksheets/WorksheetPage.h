// What all worksheet forms have in common: one look (title, margins, spacing, label styles), and
// their dealings with the worksheet manager.
#pragma once

#include <QString>
#include <QWidget>

#include <functional>
#include <utility>

#include "platform/controls/Named.h"
#include "worksheets/Worksheet.h"
#include "worksheets/undo/UndoHistory.h"

class QComboBox;
class QKeySequence;
class QLabel;
class QVBoxLayout;
class vsFlexGrid;

namespace worksheets {

class ChoiceBox;

class WorksheetPage : public QWidget, public Worksheet {
    Q_OBJECT

public:
    QWidget& Form() override { return *this; }

    // What Ctrl+Z, and Ctrl+Y and Ctrl+Shift+Z, do wherever the keyboard is on the worksheet. An
    // edit that is open is ended first: what was changed in it is the action that is taken back.
    // Where typing led to what was there before, or was refused, that is all that is taken back.
    void Undo();
    void Redo();

protected:
    struct Identity {
        const char* name;  // of the form
        QString caption;   // of its window
        const char* id;    // of the worksheet
        int helpContextId;
        const char* loadName = nullptr;  // in its load entry, where that is another
    };

    WorksheetPage(WorksheetHost& host, QWidget* parent, Identity identity);

    // The first steps of every set-up: place, check mark, worksheet id.
    void BecomeCurrent();
    [[nodiscard]] WorksheetHost& Host() const { return host_; }
    // Where the page's rows go; the title stands in the first one.
    [[nodiscard]] QVBoxLayout& Body() const { return *body_; }
    // For pages whose contents grow with the window; the others end where reading ends.
    void UseWholeWidth();
    // The page's title.
    void AddTitle(const QString& text);

    // Gives a grid's columns, which have just been set up, the widths that the user gave them while
    // this file was open, also on an earlier form, and keeps what the user sets from now on.
    void KeepWidths(vsFlexGrid& grid);

    // The actions that were done on this worksheet since the file was opened.
    [[nodiscard]] undo::History& History() const;
    // Adds an action that has just been done (worksheets/undo/UndoHistory.h says what its two steps
    // may hold). `Form` is the class of the form itself: only forms of this class are ever given to
    // the steps, since each class of form has a worksheet id, and so a history, of its own.
    template <typename Form>
    void Did(const QString& name, std::function<void(Form&)> takeBack,
             std::function<void(Form&)> repeat) {
        History().Add({name, OnForm(std::move(takeBack)), OnForm(std::move(repeat))});
    }
    // Keys that choose the item before or behind in a box, wherever the keyboard is on the page.
    // While the box has it, `next` opens its list, as keys of a box do.
    void AddStepKeys(ChoiceBox& box, const QKeySequence& previous, const QKeySequence& next);
    // Ends an edit that is still open in a cell or a text box, as leaving it would: what was
    // changed is added to the history. True when something was typed into it.
    virtual bool EndOpenEdit() { return false; }

    void changeEvent(QEvent* event) override;

private:
    template <typename Form>
    static undo::Step OnForm(std::function<void(Form&)> step) {
        return [step = std::move(step)](WorksheetPage& page) { step(static_cast<Form&>(page)); };
    }
    void SizeTitle();
    void SizeColumn();
    void AddUndoKeys();

    WorksheetHost& host_;
    Identity identity_;
    QVBoxLayout* body_;
    QWidget* column_ = nullptr;
    bool usesWholeWidth_ = false;
    QLabel* title_ = nullptr;
};

}  // namespace worksheets

// The parts that pages and dialogs are made of.
namespace PageParts {

// The characters of a zone's name that its boxes have room for.
inline constexpr int kShownOfZone = 28;

// A label whose property "Caption" holds the text as given. `text` may mark one letter with "&"
// when the label is going to be somebody's buddy.
QLabel* Label(QWidget* parent, const char* name, const QString& text);
// The same for longer explanations: wraps its lines.
QLabel* Instruction(QWidget* parent, const char* name, const QString& text);
using platform::Name;
// A combo box that belongs to a label and is named like it; `characters`: how many it has room for.
worksheets::ChoiceBox* Choice(QWidget* parent, const char* name, QLabel& label, int characters);
// Makes an item current without a signal.
void SelectSilently(QComboBox& box, int index);

}  // namespace PageParts
