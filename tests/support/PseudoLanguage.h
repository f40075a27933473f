// The programs in a language of longer words and accents, whose texts all have a bracket: what has
// none was never translated, and what is longer than its place is cut.
//
// What stands in data files must have a bracket too, or no letter.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>
#include <QTabBar>
#include <QToolTip>
#include <QTranslator>
#include <QWidget>

#include "platform/controls/FLabel.h"
#include "platform/controls/SSPanel.h"
#include "platform/controls/vsFlexGrid.h"
#include "support/paths.h"

namespace support {

// In use while it exists; keeps what was looked up and not found.
class PseudoLanguage : public QTranslator {
public:
    PseudoLanguage() {
        EXPECT_TRUE(load(QString::fromStdString(File().string())));
        QCoreApplication::installTranslator(this);
    }
    ~PseudoLanguage() override { QCoreApplication::removeTranslator(this); }

    static std::filesystem::path File() {
        return BuildFolder() / "translations/pseudo/tarnprep_eo.qm";
    }

    QString translate(const char* context, const char* text, const char* comment,
                      int count) const override {
        const QString found = QTranslator::translate(context, text, comment, count);
        // The toolkit's classes begin with a Q, as none of the programs' does.
        if (found.isNull() && *context != 'Q') {
            missing_ +=
                QStringLiteral("%1: %2").arg(QLatin1String(context), QString::fromUtf8(text));
        }
        return found;
    }
    // Translators that the list of texts does not know, or that it has under another name.
    [[nodiscard]] QStringList Missing() const { return {missing_.begin(), missing_.end()}; }

private:
    mutable QSet<QString> missing_;
};

inline bool IsTranslated(QString text) {
    // Names of programs and of keys are the same in each language.
    static const QRegularExpression names(
        QStringLiteral("TARN (Prep|Review)( 05\\.1)?|Ctrl\\+\\w+|F1|\\.FCD"));
    static const QRegularExpression letter(QStringLiteral("\\p{L}"));
    return text.contains(u'[') || !text.remove(names).contains(letter);
}

// Calls `look` with each text that a window shows or says.
template <typename Look>
void ForEachText(const QWidget& window, Look look) {
    look(window, window.windowTitle());
    QList<const QWidget*> all = window.findChildren<const QWidget*>();
    all.prepend(&window);
    for (const QWidget* widget : all) {
        // The toolkit's own parts are its own affair.
        const bool own = !widget->objectName().startsWith(QLatin1String("qt_"));
        if (!own || !widget->isVisibleTo(&window)) {
            continue;
        }
        look(*widget, widget->accessibleName());
        look(*widget, widget->toolTip());
        if (const auto* formatted = qobject_cast<const FLabel*>(widget)) {
            look(*widget, FLabel::ToPlainText(formatted->Caption()));
        } else if (const auto* label = qobject_cast<const QLabel*>(widget)) {
            look(*widget, label->text());
        } else if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
            look(*widget, button->text());
        } else if (const auto* panel = qobject_cast<const SSPanel*>(widget)) {
            look(*widget, panel->Caption());
        } else if (const auto* box = qobject_cast<const QGroupBox*>(widget)) {
            look(*widget, box->title());
        } else if (const auto* line = qobject_cast<const QLineEdit*>(widget)) {
            look(*widget, line->placeholderText());
        } else if (const auto* tabs = qobject_cast<const QTabBar*>(widget)) {
            for (int tab = 0; tab < tabs->count(); ++tab) {
                look(*widget, tabs->tabText(tab));
            }
        } else if (const auto* grid = qobject_cast<const vsFlexGrid*>(widget)) {
            for (int col = 0; col < grid->Cols(); ++col) {
                for (int row = 0; row < grid->FixedRows(); ++row) {
                    look(*widget, grid->TextMatrix(row, col));
                }
            }
        }
        for (const QAction* item : widget->actions()) {
            look(*widget, item->text());
        }
    }
}

inline QStringList Untranslated(const QWidget& window) {
    QStringList found;
    ForEachText(window, [&found](const QWidget& widget, const QString& text) {
        if (!IsTranslated(text)) {
            found += QStringLiteral("%1 %2: %3")
                         .arg(QLatin1String(widget.metaObject()->className()), widget.objectName(),
                              text);
        }
    });
    return found;
}

inline int WidestWord(const QFontMetrics& metrics, const QString& text) {
    int widest = 0;
    for (const QString& word : text.split(QRegularExpression(QStringLiteral("\\s+")))) {
        widest = std::max(widest, metrics.horizontalAdvance(word));
    }
    return widest;
}

// What a label's text takes, at the width that it has where it is wrapped.
inline QSize Needed(const QLabel& label) {
    if (qobject_cast<const FLabel*>(&label) != nullptr) {
        return {label.minimumSizeHint().width(), label.heightForWidth(label.width())};
    }
    if (!label.wordWrap()) {
        return label.sizeHint();
    }
    return {WidestWord(label.fontMetrics(), label.text()), label.heightForWidth(label.width())};
}

// A heading that is cut offers the whole of it as a tip.
inline bool HeadingIsCut(QHeaderView& header, int col) {
    const QPoint place(header.sectionViewportPosition(col) + header.sectionSize(col) / 2,
                       header.height() - 4);
    QToolTip::hideText();
    QHelpEvent tip(QEvent::ToolTip, place, header.viewport()->mapToGlobal(place));
    QCoreApplication::sendEvent(header.viewport(), &tip);
    const bool cut = QToolTip::isVisible() && !QToolTip::text().isEmpty();
    QToolTip::hideText();
    return cut;
}

inline bool IsCut(const QWidget& widget) {
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        const QSize needed = Needed(*label);
        return !label->text().isEmpty() &&
               (needed.width() > label->width() || needed.height() > label->height());
    }
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
        const QString text = button->text();
        return !text.isEmpty() && button->width() < button->minimumSizeHint().width();
    }
    if (const auto* panel = qobject_cast<const SSPanel*>(&widget)) {
        const QRect room = panel->contentsRect();
        const QSize needed =
            panel->fontMetrics().boundingRect(room, Qt::TextWordWrap, panel->Caption()).size();
        return panel->layout() == nullptr &&
               (needed.width() > room.width() || needed.height() > room.height());
    }
    if (const auto* box = qobject_cast<const QGroupBox*>(&widget)) {
        return box->fontMetrics().horizontalAdvance(box->title()) > box->width();
    }
    if (const auto* tabs = qobject_cast<const QTabBar*>(&widget)) {
        for (int tab = 0; tab < tabs->count(); ++tab) {
            const int text = tabs->fontMetrics().horizontalAdvance(tabs->tabText(tab));
            if (tabs->isTabVisible(tab) && text > tabs->tabRect(tab).width()) {
                return true;
            }
        }
    }
    return false;
}

// What is cut, and what lies partly outside of what holds it.
inline QStringList Cut(const QWidget& window) {
    QStringList found;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisibleTo(&window) ||
            widget->objectName().startsWith(QLatin1String("qt_"))) {
            continue;
        }
        const QString name = QStringLiteral("%1 %2").arg(
            QLatin1String(widget->metaObject()->className()), widget->objectName());
        if (IsCut(*widget)) {
            found +=
                QStringLiteral("%1: %2 x %3").arg(name).arg(widget->width()).arg(widget->height());
        }
        auto* grid = qobject_cast<vsFlexGrid*>(widget);
        for (int col = 0; grid != nullptr && grid->FixedRows() > 0 && col < grid->Cols(); ++col) {
            if (!grid->ColHidden(col) && HeadingIsCut(*grid->horizontalHeader(), col)) {
                found += QStringLiteral("%1: %2").arg(name, grid->TextMatrix(0, col));
            }
        }
    }
    return found;
}

}  // namespace support
