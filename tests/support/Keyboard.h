// What the keyboard finds in a form: the order in which Tab goes round, and the letters of Alt.
#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QList>
#include <QRect>
#include <QStringList>
#include <QTabBar>
#include <QWidget>

namespace support {

inline QRect PlaceIn(const QWidget& form, const QWidget& control) {
    return {control.mapTo(&form, QPoint(0, 0)), control.size()};
}

inline QList<const QWidget*> ReachedByTab(const QWidget& form) {
    QList<const QWidget*> reached;
    for (const QWidget* next = form.nextInFocusChain(); next != &form;
         next = next->nextInFocusChain()) {
        const bool stops =
            (next->focusPolicy() & Qt::TabFocus) != 0 && next->focusProxy() == nullptr;
        if (stops && form.isAncestorOf(next) && next->isVisibleTo(&form) && next->isEnabled()) {
            reached += next;
        }
    }
    return reached;
}

inline bool MustComeFirst(const QRect& one, const QRect& other) {
    const bool sideBySide = one.top() <= other.bottom() && other.top() <= one.bottom();
    const bool stacked = one.left() <= other.right() && other.left() <= one.right();
    return (sideBySide && one.right() < other.left()) || (stacked && one.bottom() < other.top());
}

inline QString Letter(const QString& text) {
    QString plain = text;
    plain.remove(QStringLiteral("&&"));
    const qsizetype mark = plain.indexOf(u'&');
    return mark < 0 ? QString() : plain.mid(mark + 1, 1).toUpper();
}

// The pairs of controls that Tab reaches against the order of reading: from left to right where
// both stand in one line, from top to bottom where one stands above the other.
inline QStringList AgainstReadingOrder(const QWidget& form) {
    const QList<const QWidget*> reached = ReachedByTab(form);
    QStringList offenders;
    for (qsizetype later = 1; later < reached.size(); ++later) {
        for (qsizetype sooner = 0; sooner < later; ++sooner) {
            if (MustComeFirst(PlaceIn(form, *reached[later]), PlaceIn(form, *reached[sooner]))) {
                offenders += reached[sooner]->objectName() + QStringLiteral(" before ") +
                             reached[later]->objectName();
            }
        }
    }
    return offenders;
}

// The letters that Alt presses or reaches in what is visible, upper case, one for each control.
inline QString Mnemonics(const QWidget& form) {
    QString letters;
    for (const auto* button : form.findChildren<QAbstractButton*>()) {
        if (button->isVisibleTo(&form)) {
            letters += Letter(button->text());
        }
    }
    for (const auto* label : form.findChildren<QLabel*>()) {
        if (label->buddy() != nullptr && label->isVisibleTo(&form)) {
            letters += Letter(label->text());
        }
    }
    for (const auto* tabs : form.findChildren<QTabBar*>()) {
        for (int tab = 0; tab < tabs->count() && tabs->isVisibleTo(&form); ++tab) {
            letters += Letter(tabs->tabText(tab));
        }
    }
    return letters;
}

}  // namespace support
