#include "worksheets/WorksheetPage.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "platform/help/HelpViewer.h"
#include "shell/u91Trace.h"

namespace {

constexpr int kMargin = 12;
constexpr int kSpacing = 8;
constexpr double kTitleScale = 1.35;

// Lets the wheel pass to what lies behind, so that scrolling a page never chooses another item.
class WheelHolder : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Wheel) {
            return QObject::eventFilter(watched, event);
        }
        event->ignore();
        return true;
    }
};

}  // namespace

WorksheetPage::WorksheetPage(WorksheetHost& host, QWidget* parent, Identity identity)
    : QWidget(parent), host_(host), identity_(std::move(identity)), body_(new QVBoxLayout(this)) {
    const char* loadName = identity_.loadName ? identity_.loadName : identity_.name;
    u91Trace::FormLoad(QString::fromLatin1(loadName));
    setObjectName(QString::fromLatin1(identity_.name));
    setWindowTitle(identity_.caption);
    setAccessibleName(identity_.caption);
    setAutoFillBackground(true);
    platform::SetHelpContextId(*this, identity_.helpContextId);
    body_->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    body_->setSpacing(kSpacing);
}

void WorksheetPage::BecomeCurrent() {
    host_.PositionWorksheet(*this);
    host_.StepMenu_Check(identity_.index);
    host_.SetWorksheetID(QString::fromLatin1(identity_.id));
}

void WorksheetPage::AddTitle(const QString& text) {
    QLabel* title = PageParts::Label(this, "lblTitle", text);
    QFont font = title->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * kTitleScale);
    title->setFont(font);
    body_->addWidget(title);
}

namespace PageParts {

QLabel* Label(QWidget* parent, const char* name, const QString& text) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    label->setProperty("Caption", text);
    Name(*label, name, QString(text).remove(QLatin1Char('&')));
    return label;
}

QLabel* Instruction(QWidget* parent, const char* name, const QString& text) {
    QLabel* label = Label(parent, name, text);
    label->setWordWrap(true);
    return label;
}

void Name(QWidget& control, const char* name, const QString& accessibleName) {
    control.setObjectName(QString::fromLatin1(name));
    control.setAccessibleName(accessibleName);
}

void HoldWheel(QComboBox& box) {
    box.setFocusPolicy(Qt::StrongFocus);
    box.installEventFilter(new WheelHolder(&box));
}

void SelectSilently(QComboBox& box, int index) {
    const QSignalBlocker blocker(box);
    box.setCurrentIndex(index);
}

}  // namespace PageParts
