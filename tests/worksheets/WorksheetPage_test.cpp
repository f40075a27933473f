// What all worksheet forms promise together: names, keyboard, room.
#include <QAbstractItemView>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>
#include <functional>
#include <set>

#include "platform/controls/ScrolledPage.h"
#include "support/Keyboard.h"
#include "worksheet_fixture.h"
#include "worksheets/NoteLine.h"
#include "worksheets/cost/frm6SuppressAcre.h"
#include "worksheets/goals/frm2RMAs.h"
#include "worksheets/nvc/frm5NVCTable.h"
#include "worksheets/resources/frm3SRMaster.h"
#include "worksheets/resources/frm3SRMasterAdd.h"
#include "worksheets/zones/ZoneRecords.h"
#include "worksheets/zones/frm4FMZs.h"

using platform::ScrolledPage;
using worksheets::NoteLine;
using worksheets::ResourceList;

namespace {

class FamilyTest : public WorksheetTest {
protected:
    void SetUp() override {
        WorksheetTest::SetUp();
        font_ = QApplication::font();
        ZoneRecords::Create(QStringLiteral("A zone with a long name, as long as it goes.."), 3);
    }
    void TearDown() override { QApplication::setFont(font_); }

    // Each form in turn, loaded, and the dialog.
    void ForEachForm(const std::function<void(QWidget&)>& look) {
        const std::vector<std::function<void()>> loads{
            [this] { Load<frm2RMAs>(); }, [this] { Load<frm3SRMaster>(); },
            [this] { Load<frm4FMZs>(); }, [this] { Load<frm5NVCTable>(); },
            [this] { Load<frm6SuppressAcre>(); }};
        for (const auto& load : loads) {
            load();
            SCOPED_TRACE(form_->Form().objectName().toStdString());
            look(form_->Form());
            Leave();
        }
        ResourceList list;
        frm3SRMasterAdd dialog(list, manager_.frame);
        dialog.show();
        QApplication::processEvents();
        SCOPED_TRACE("frm3SRMasterAdd");
        look(dialog);
    }

    QFont font_;
};

bool IsOurs(const QWidget& widget) {
    return !widget.objectName().startsWith(QStringLiteral("qt_")) &&
           qobject_cast<const QAbstractItemView*>(widget.parentWidget()) == nullptr &&
           qobject_cast<const QAbstractScrollArea*>(widget.parentWidget()) == nullptr &&
           qobject_cast<const QComboBox*>(widget.parentWidget()) == nullptr;
}

TEST_F(FamilyTest, EveryControl_HasANameAndAnAccessibleName) {
    ForEachForm([](QWidget& form) {
        EXPECT_FALSE(form.windowTitle().isEmpty());
        EXPECT_TRUE(form.property("HelpContextID").toInt() > 0);
        for (const QWidget* widget : form.findChildren<QWidget*>()) {
            if (widget->isVisibleTo(&form) && IsOurs(*widget)) {
                EXPECT_FALSE(widget->objectName().isEmpty()) << widget->metaObject()->className();
                EXPECT_FALSE(widget->accessibleName().isEmpty())
                    << widget->objectName().toStdString();
            }
        }
    });
}

TEST_F(FamilyTest, Mnemonics_AreUniqueTogetherWithTheMenuBars) {
    ForEachForm([](QWidget& form) {
        std::set<QChar> taken;
        if (!form.isWindow()) {
            taken = {u'F', u'W', u'E', u'H'};
        }
        const auto take = [&taken](const QString& text) {
            const qsizetype mark = text.indexOf(u'&');
            if (mark >= 0 && mark + 1 < text.size() && text[mark + 1] != u'&') {
                EXPECT_TRUE(taken.insert(text[mark + 1].toUpper()).second) << text.toStdString();
            }
        };
        for (const auto* button : form.findChildren<QAbstractButton*>()) {
            take(button->text());
        }
        for (const auto* label : form.findChildren<QLabel*>()) {
            if (label->buddy() != nullptr) {
                take(label->text());
            }
        }
    });
}

TEST_F(FamilyTest, TabKey_ReachesEveryControl) {
    ForEachForm([](QWidget& form) {
        for (QWidget* widget : form.findChildren<QWidget*>()) {
            const bool input = qobject_cast<QAbstractButton*>(widget) != nullptr ||
                               qobject_cast<QComboBox*>(widget) != nullptr ||
                               qobject_cast<QLineEdit*>(widget) != nullptr ||
                               qobject_cast<QPlainTextEdit*>(widget) != nullptr ||
                               qobject_cast<QListWidget*>(widget) != nullptr ||
                               qobject_cast<vsFlexGrid*>(widget) != nullptr;
            if (input && widget->isVisibleTo(&form) && IsOurs(*widget)) {
                EXPECT_TRUE(widget->focusPolicy() & Qt::TabFocus)
                    << widget->objectName().toStdString();
            }
        }
    });
}

TEST_F(FamilyTest, TabKey_FollowsTheOrderOfReading) {
    ForEachForm([](QWidget& form) {
        EXPECT_EQ(support::AgainstReadingOrder(form).join(u'\n').toStdString(), "");
    });
}

TEST_F(FamilyTest, LargeLettersInASmallWindow_ScrollAndStayLarge) {
    QFont font = font_;
    font.setPointSize(18);
    QApplication::setFont(font);
    int scrolling = 0;
    ForEachForm([&scrolling](QWidget& form) {
        if (form.isWindow()) {
            return;
        }
        const auto expectRoom = [&form] {
            EXPECT_EQ(form.font().pointSize(), 18);
            for (const auto* label : form.findChildren<QLabel*>()) {
                if (label->isVisibleTo(&form)) {
                    const int needed = label->wordWrap() ? label->heightForWidth(label->width())
                                                         : label->sizeHint().height();
                    EXPECT_GE(label->height(), needed) << label->objectName().toStdString();
                }
            }
            for (const auto* grid : form.findChildren<vsFlexGrid*>()) {
                const int rows = std::min(grid->model()->rowCount(), 2);
                EXPECT_GE(grid->viewport()->height(), rows * grid->rowHeight(0));
            }
        };
        const auto* page = form.findChild<ScrolledPage*>();
        ASSERT_NE(page, nullptr);
        form.resize(630, 420);
        QApplication::processEvents();
        expectRoom();
        scrolling += page->verticalScrollBar()->maximum() > 0 ? 1 : 0;
        form.resize(1300, 900);
        QApplication::processEvents();
        expectRoom();
        EXPECT_EQ(page->verticalScrollBar()->maximum(), 0);
        EXPECT_EQ(page->horizontalScrollBar()->maximum(), 0);
    });
    EXPECT_GE(scrolling, 2);
}

TEST_F(FamilyTest, EveryFontSize_FitsTheSmallestWindow) {
    for (const int points : {8, 9, 11, 14, 18}) {
        SCOPED_TRACE(points);
        QFont font = font_;
        font.setPointSize(points);
        QApplication::setFont(font);
        ForEachForm([](QWidget& form) {
            // The client area of an 800 x 600 screen.
            EXPECT_LE(form.minimumSizeHint().width(), 800);
            EXPECT_LE(form.minimumSizeHint().height(), 530);
            for (const auto* label : form.findChildren<QLabel*>()) {
                if (!label->isVisibleTo(&form) || label->wordWrap()) {
                    continue;
                }
                EXPECT_GE(label->width(), label->sizeHint().width())
                    << label->objectName().toStdString();
            }
            for (const auto* button : form.findChildren<QAbstractButton*>()) {
                if (button->isVisibleTo(&form) && IsOurs(*button)) {
                    EXPECT_GE(button->width(), button->minimumSizeHint().width())
                        << button->objectName().toStdString();
                }
            }
        });
    }
}

TEST_F(FamilyTest, WideWindow_LeavesPlainWhatNothingNeeds) {
    ForEachForm([](QWidget& form) {
        if (form.isWindow()) {
            return;
        }
        form.resize(1900, 1000);
        QApplication::processEvents();
        for (auto* grid : form.findChildren<vsFlexGrid*>()) {
            EXPECT_EQ(grid->viewport()->width(), grid->horizontalHeader()->length());
        }
        for (const auto* box : form.findChildren<QLineEdit*>()) {
            EXPECT_LT(box->mapTo(&form, box->rect().topRight()).x(), 1000)
                << box->objectName().toStdString();
        }
    });
}

TEST_F(FamilyTest, WidenedColumn_WidensTheFrameOfItsGrid) {
    ForEachForm([](QWidget& form) {
        if (form.isWindow()) {
            return;
        }
        form.resize(1900, 1000);
        QApplication::processEvents();
        for (auto* grid : form.findChildren<vsFlexGrid*>()) {
            grid->setColumnWidth(1, grid->columnWidth(1) + 40);
            EXPECT_TRUE(QTest::qWaitFor([grid] {
                return grid->viewport()->width() == grid->horizontalHeader()->length();
            })) << grid->objectName().toStdString();
        }
    });
}

TEST_F(FamilyTest, RowsOfListsAndTables_AreOfOneHeight) {
    Load<frm2RMAs>();
    ClickButton("cmdAdd");
    const auto* list = form_->Form().findChild<QListWidget*>();
    ASSERT_EQ(list->count(), 1);
    const int ofList = list->visualItemRect(list->item(0)).height();
    Leave();
    Load<frm4FMZs>();
    EXPECT_EQ(ofList, form_->Form().findChild<vsFlexGrid*>()->rowHeight(0));
}

TEST_F(FamilyTest, FormsWithATable_SayHowToCopyAllOfIt) {
    ForEachForm([](QWidget& form) {
        if (!form.isWindow()) {
            const auto* hint = form.findChild<QLabel*>(QStringLiteral("lblCopyHint"));
            EXPECT_EQ(hint != nullptr && hint->isVisibleTo(&form),
                      form.findChild<vsFlexGrid*>() != nullptr);
        }
    });
}

TEST_F(FamilyTest, CopyHint_StandsBelowItsTable_HoweverWideTheFrame) {
    ForEachForm([](QWidget& form) {
        const auto* grid = form.findChild<vsFlexGrid*>();
        if (form.isWindow() || grid == nullptr) {
            return;
        }
        form.resize(1900, 1000);
        QApplication::processEvents();
        const auto* hint = form.findChild<QLabel*>(QStringLiteral("lblCopyHint"));
        EXPECT_EQ(hint->mapTo(&form, QPoint()).x(), grid->mapTo(&form, QPoint()).x());
        EXPECT_GE(hint->mapTo(&form, QPoint()).y(),
                  grid->mapTo(&form, QPoint(0, grid->height())).y());
    });
}

TEST_F(FamilyTest, CopyHint_MakesRoomForTheNote_WithoutMovingAnything) {
    ForEachForm([](QWidget& form) {
        auto* note = form.findChild<NoteLine*>();
        if (note == nullptr) {
            return;
        }
        const auto* hint = form.findChild<QLabel*>(QStringLiteral("lblCopyHint"));
        const auto* grid = form.findChild<vsFlexGrid*>();
        const QRect before = grid->geometry();
        note->Say(QStringLiteral("Something worth a look."));
        QApplication::processEvents();
        EXPECT_FALSE(hint->isVisibleTo(&form));
        EXPECT_EQ(grid->geometry(), before);
        note->Say(QString());
        EXPECT_TRUE(hint->isVisibleTo(&form));
    });
}

TEST_F(FamilyTest, Captions_AreTheTextsAsGiven) {
    ForEachForm([](QWidget& form) {
        for (const auto* label : form.findChildren<QLabel*>()) {
            if (IsOurs(*label)) {
                EXPECT_EQ(label->property("Caption").toString(), label->text());
            }
        }
    });
}

}  // namespace
