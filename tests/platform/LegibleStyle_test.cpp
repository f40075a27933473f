// What keeps texts legible: fonts and dialogs that fit, palettes with enough contrast.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollBar>
#include <QTabBar>
#include <QTest>
#include <QVBoxLayout>
#include <memory>
#include <utility>
#include <vector>

#include "platform/controls/LegibleStyle.h"
#include "platform/controls/SSPanel.h"
#include "platform/controls/ScrolledPage.h"
#include "platform/controls/StyleChoice.h"
#include "platform/controls/vsIndexTab.h"

using platform::LegibleStyle;
using platform::ScrolledPage;

namespace {

QPalette AllOf(const QColor& ground, const QColor& text) {
    QPalette palette(text, ground, ground, ground, ground, text, ground);
    palette.setColor(QPalette::Base, ground);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, ground);
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, ground);
    palette.setColor(QPalette::Disabled, QPalette::Text, ground);
    palette.setColor(QPalette::Highlight, Qt::yellow);
    return palette;
}

// How many pixels along the left edge, from corner to corner, are not of the ground's color.
int MarkedAtLeft(QWidget& widget, const QColor& ground) {
    const QImage picture = widget.grab().toImage();
    int marked = 0;
    for (int y = 0; y < picture.height(); ++y) {
        bool differs = false;
        for (int x = 0; x < 6; ++x) {
            differs = differs || picture.pixelColor(x, y) != ground;
        }
        marked += differs ? 1 : 0;
    }
    return marked;
}

TEST(LegibleStyleTest, InvisibleDisabledTexts_GetAColorBetween) {
    LegibleStyle style;
    QPalette palette = AllOf(Qt::black, Qt::white);
    style.polish(palette);
    for (const auto role : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text}) {
        const int shown = palette.color(QPalette::Disabled, role).lightness();
        EXPECT_GT(shown, 90);
        EXPECT_LT(shown, 200);
    }
    EXPECT_GT(palette.color(QPalette::Link).lightness(), 128);
}

TEST(LegibleStyleTest, BoxesOfTheGroundsColor_AreOutlined) {
    LegibleStyle style;
    QWidget page;
    page.setPalette(AllOf(Qt::black, Qt::white));
    QVBoxLayout layout(&page);
    QLineEdit line;
    QComboBox choice;
    QPushButton button(QStringLiteral("OK"));
    for (QWidget* box : std::initializer_list<QWidget*>{&line, &choice, &button}) {
        box->setStyle(&style);
        layout.addWidget(box);
    }
    page.show();
    for (QWidget* box : std::initializer_list<QWidget*>{&line, &choice, &button}) {
        EXPECT_GE(MarkedAtLeft(*box, Qt::black), box->height() - 6)
            << box->metaObject()->className();
    }
}

TEST(LegibleStyleTest, DefaultButtonOfHighContrast_HasAFrameThatNeedsNoColor) {
    for (const auto& [ground, text] :
         {std::pair(Qt::black, Qt::white), std::pair(Qt::white, Qt::black)}) {
        const QPalette colors = AllOf(ground, text);
        const QString fitting = platform::FittingStyle(QGuiApplication::platformName(), colors);
        LegibleStyle style(fitting.isEmpty() ? QApplication::style()->name() : fitting);
        QDialog dialog;
        dialog.setPalette(colors);
        QVBoxLayout layout(&dialog);
        QPushButton ok(QStringLiteral("OK"));
        QPushButton cancel(QStringLiteral("Cancel"));
        for (QPushButton* button : {&ok, &cancel}) {
            button->setStyle(&style);
            button->setAutoDefault(false);
            layout.addWidget(button);
        }
        ok.setDefault(true);
        dialog.show();
        QApplication::processEvents();
        const auto inside = [](QPushButton& button) {
            return button.grab().toImage().pixelColor(1, button.height() / 2);
        };
        EXPECT_EQ(inside(ok), QColor(text));
        EXPECT_NE(inside(cancel), QColor(text));
    }
}

// As the dark colors of Windows do.
TEST(LegibleStyleTest, DarkColorsThatMarkWhatIsNotChosen_AreTakenFromIt) {
    LegibleStyle style(QStringLiteral("Fusion"));
    const QColor accent(0, 120, 215);
    QPalette palette = AllOf(QColor(30, 30, 30), Qt::white);
    palette.setColor(QPalette::AlternateBase, accent);
    style.polish(palette);
    EXPECT_LT(palette.color(QPalette::AlternateBase).hsvSaturation(), 20);
    palette.setColor(QPalette::Base, accent);
    const auto pixelsOf = [&](QAbstractButton& button, const QColor& color) {
        button.setStyle(&style);
        button.setPalette(palette);
        button.setAutoExclusive(false);
        button.resize(button.sizeHint());
        const QImage picture = button.grab().toImage();
        int found = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                found += picture.pixelColor(x, y) == color ? 1 : 0;
            }
        }
        return found;
    };
    QRadioButton option;
    QCheckBox box;
    for (QAbstractButton* button : std::initializer_list<QAbstractButton*>{&option, &box}) {
        EXPECT_EQ(pixelsOf(*button, accent), 0) << button->metaObject()->className();
    }
    const QColor outline((30 + 255) / 2, (30 + 255) / 2, (30 + 255) / 2);
    EXPECT_GT(pixelsOf(box, outline), 4 * 8);
}

TEST(LegibleStyleTest, CirclesOfOptions_GrowWithLargeLetters) {
    LegibleStyle style;
    QRadioButton option(QStringLiteral("Per item"));
    option.setStyle(&style);
    const auto side = [&] {
        return style.pixelMetric(QStyle::PM_ExclusiveIndicatorWidth, nullptr, &option);
    };
    const auto with = [&](double points) {
        QFont font = option.font();
        font.setPointSizeF(points);
        option.setFont(font);
        return side();
    };
    const int standard = with(9);
    EXPECT_EQ(with(10), standard);
    EXPECT_GT(with(18), standard * 3 / 2);
}

// On a light and on a dark ground alike.
class CurrentTabTest : public testing::TestWithParam<std::pair<QRgb, QRgb>> {};

TEST_P(CurrentTabTest, IsMarkedInTheHighlightColor) {
    LegibleStyle style;
    QPalette colors(QColor(GetParam().first), QColor(GetParam().second));
    colors.setColor(QPalette::Highlight, QColor(61, 174, 233));
    QTabBar tabs;
    tabs.setStyle(&style);
    tabs.setPalette(colors);
    tabs.setShape(QTabBar::RoundedSouth);
    tabs.addTab(QStringLiteral("FMZs"));
    tabs.addTab(QStringLiteral("NVC Table"));
    tabs.show();
    const auto edge = [&tabs](int tab) {
        const QRect place = tabs.tabRect(tab);
        return tabs.grab().toImage().pixelColor(place.center().x(), place.bottom());
    };
    EXPECT_EQ(edge(0), colors.color(QPalette::Highlight));
    EXPECT_NE(edge(1), colors.color(QPalette::Highlight));
    tabs.setCurrentIndex(1);
    EXPECT_NE(edge(0), colors.color(QPalette::Highlight));
    EXPECT_EQ(edge(1), colors.color(QPalette::Highlight));
}

INSTANTIATE_TEST_SUITE_P(Grounds, CurrentTabTest,
                         testing::Values(std::pair(qRgb(239, 240, 241), qRgb(49, 54, 59)),
                                         std::pair(qRgb(20, 20, 20), qRgb(239, 239, 239))));

TEST(LegibleStyleTest, ListWithTheKeyboard_IsFramedInTheHighlightColor) {
    LegibleStyle style;
    QWidget page;
    QVBoxLayout layout(&page);
    QListWidget list;
    QPlainTextEdit box;
    for (QWidget* control : std::initializer_list<QWidget*>{&list, &box}) {
        control->setStyle(&style);
        layout.addWidget(control);
    }
    page.show();
    page.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&page));
    const auto edge = [](QWidget& control) {
        return control.grab().toImage().pixelColor(0, control.height() / 2);
    };
    list.setFocus();
    const QColor highlight = page.palette().color(QPalette::Highlight);
    EXPECT_EQ(edge(list), highlight);
    EXPECT_NE(edge(box), highlight);
    box.setFocus();
    EXPECT_NE(edge(list), highlight);
    EXPECT_EQ(edge(box), highlight);
}

TEST(ScrolledPageTest, DialogTooLargeForTheScreen_ScrollsAndKeepsItsLetters) {
    const QSize screen = QGuiApplication::primaryScreen()->availableSize();
    QDialog dialog;
    QFont huge = dialog.font();
    huge.setPointSize(30);
    dialog.setFont(huge);
    QVBoxLayout layout(&dialog);
    auto* page = new ScrolledPage(&dialog, "pnlLines", "Lines");
    layout.addWidget(page);
    auto* lines = new QVBoxLayout(&page->Page());
    std::vector<QLineEdit*> boxes;
    for (int line = 0; line < 40; ++line) {
        boxes.push_back(new QLineEdit);
        lines->addWidget(boxes.back());
    }
    platform::FitToScreen(dialog, {300, 200});
    EXPECT_EQ(dialog.font().pointSize(), 30);
    EXPECT_LE(dialog.height(), screen.height());
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    EXPECT_GT(page->verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(page->horizontalScrollBar()->maximum(), 0);
    boxes.front()->setFocus();
    for (int line = 1; line < 40; ++line) {
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    }
    ASSERT_TRUE(boxes.back()->hasFocus());
    EXPECT_TRUE(page->viewport()->rect().contains(
        boxes.back()->mapTo(page->viewport(), boxes.back()->rect().center())));
}

TEST(ScrolledPageTest, DialogWithRoom_ShowsAllOfItsPage) {
    QDialog dialog;
    QVBoxLayout layout(&dialog);
    auto* page = new ScrolledPage(&dialog, "pnlText", "Text");
    layout.addWidget(page);
    auto* text = new QLabel(QStringLiteral("Some words that take a few lines. ").repeated(12));
    text->setWordWrap(true);
    (new QVBoxLayout(&page->Page()))->addWidget(text);
    platform::FitToScreen(dialog, {300, 50});
    dialog.show();
    QApplication::processEvents();
    EXPECT_EQ(page->verticalScrollBar()->maximum(), 0);
    EXPECT_GE(text->height(), text->heightForWidth(text->width()));
}

TEST(StyleChoiceTest, DarkColors_AreDrawnByAStyleThatKnowsThem) {
    const QPalette dark = AllOf(Qt::black, Qt::white);
    const QPalette light = AllOf(Qt::white, Qt::black);
    EXPECT_EQ(platform::FittingStyle("windows", dark), "Fusion");
    EXPECT_EQ(platform::FittingStyle("windows", light), "") << "the desktop's own";
    EXPECT_EQ(platform::FittingStyle("xcb", dark), "");
}

TEST(StyleChoiceTest, InstalledStyle_IsLegible) {
    platform::InstallLegibleStyle();
    EXPECT_NE(qobject_cast<LegibleStyle*>(QApplication::style()), nullptr);
}

TEST(IndexTabFontTest, LargeFontInANarrowStrip_ScrollsAndKeepsItsLetters) {
    const QFont old = QApplication::font();
    QFont large = old;
    large.setPointSize(18);
    QApplication::setFont(large);
    {
        vsIndexTab tab;
        tab.SetCaption(
            QStringLiteral("|Introduction|Management Goals|Suppression Resources|FMZs|"
                           "NVC Table|Suppression Cost / Acre"));
        tab.SetTabVisibleByIndex(0, false);
        tab.resize(800, vsIndexTab::StripHeight(large));
        tab.show();
        QApplication::processEvents();
        EXPECT_EQ(tab.font().pointSize(), 18);
        EXPECT_TRUE(tab.usesScrollButtons());
        tab.SetCurrTab(6);
        EXPECT_LE(tab.tabRect(6).right(), 800) << "the current tab is scrolled into view";
    }
    QApplication::setFont(old);
}

}  // namespace
