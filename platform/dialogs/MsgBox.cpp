#include "platform/dialogs/MsgBox.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QTextEdit>

#include "platform/dialogs/RunModal.h"
#include "platform/system/Pointer.h"

namespace platform {
namespace {

QString& UsualTitle() {
    static QString title = kApplicationTitle;
    return title;
}

QMessageBox::Icon ToIcon(MsgIcon icon) {
    switch (icon) {
        case MsgIcon::kStop:
            return QMessageBox::Critical;
        case MsgIcon::kQuestion:
            return QMessageBox::Question;
        case MsgIcon::kExclamation:
            return QMessageBox::Warning;
        case MsgIcon::kInformation:
            return QMessageBox::Information;
        case MsgIcon::kNone:
            break;
    }
    return QMessageBox::NoIcon;
}

void SetButtons(QMessageBox& box, const MsgOptions& options) {
    if (options.buttons == MsgButtons::kOk) {
        box.setStandardButtons(QMessageBox::Ok);
        box.setDefaultButton(QMessageBox::Ok);
        return;
    }
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(options.secondIsDefault ? QMessageBox::No : QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::No);
}

// The toolkit guesses at markup in these two, whatever is said of the text.
void AddReason(QMessageBox& box, const MsgOptions& options) {
    if (!options.informative.isEmpty()) {
        box.setInformativeText(options.informative);
        if (auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"))) {
            label->setTextFormat(Qt::PlainText);
        }
    }
    if (!options.details.isEmpty()) {
        box.setDetailedText(options.details);
        if (auto* details = box.findChild<QTextEdit*>()) {
            details->setObjectName(QStringLiteral("txtDetails"));
            details->setAccessibleName(QMessageBox::tr("Details"));
            details->setTabChangesFocus(true);
        }
    }
}

// The window that a box belongs to. Right after a box has closed, the window below it has been
// asked to become active but need not be so yet; a second box belongs to it all the same.
QWidget* ActiveWindow() {
    static QPointer<QWidget> last;
    if (QWidget* active = QApplication::activeWindow()) {
        last = active;
    }
    return last != nullptr && last->isVisible() ? last : nullptr;
}

// The name that programs find it by, in whatever language its caption is.
QString ButtonName(QMessageBox::StandardButton button) {
    switch (button) {
        case QMessageBox::Yes:
            return QStringLiteral("cmdYes");
        case QMessageBox::No:
            return QStringLiteral("cmdNo");
        default:
            return QStringLiteral("cmdOK");
    }
}

void NameButtons(QMessageBox& box) {
    for (QAbstractButton* button : box.buttons()) {
        if (box.buttonRole(button) == QMessageBox::ActionRole) {
            // Its caption changes with what it does next.
            button->setObjectName(QStringLiteral("cmdDetails"));
            continue;
        }
        button->setObjectName(ButtonName(box.standardButton(button)));
        button->setAccessibleName(button->text().remove(u'&'));
    }
}

}  // namespace

void SetMsgBoxTitle(const QString& title) {
    UsualTitle() = title;
}

MsgAnswer MsgBox(const QString& text, const MsgOptions& options) {
    // The ordinary pointer while the program waits for an answer.
    const PointerScope pointer(Pointer::kDefault);
    QMessageBox box(ActiveWindow());
    box.setObjectName(QStringLiteral("MsgBox"));
    box.setWindowTitle(options.title.isEmpty() ? UsualTitle() : options.title);
    // Data texts may look like markup; as plain text they are shown as they are.
    box.setTextFormat(Qt::PlainText);
    box.setText(text);
    box.setIcon(ToIcon(options.icon));
    SetButtons(box, options);
    AddReason(box, options);
    NameButtons(box);
    switch (RunModal(box)) {
        case QMessageBox::Yes:
            return MsgAnswer::kYes;
        case QMessageBox::No:
            return MsgAnswer::kNo;
        default:
            return options.buttons == MsgButtons::kOk ? MsgAnswer::kOk : MsgAnswer::kNo;
    }
}

}  // namespace platform
