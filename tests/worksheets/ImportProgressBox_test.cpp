#include "worksheets/zones/ImportProgressBox.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>

using worksheets::ImportProgressBox;

namespace {

TEST(ImportProgressBox, LongImport_ShowsAndHoldsInputOff) {
    QWidget frame;
    frame.setObjectName(QStringLiteral("frame"));
    frame.show();
    QString shown;
    {
        ImportProgressBox progress(&frame);
        progress.SetDelay(0);
        progress.ZoneStarted(12, 300);
        const QWidget* box = QApplication::activeModalWidget();
        ASSERT_NE(box, nullptr);
        shown = box->findChild<QLabel*>(QStringLiteral("lblProgress"))->text();
        EXPECT_FALSE(const_cast<QWidget*>(box)->close()) << "an import is not broken off";
        EXPECT_TRUE(box->isVisible());
    }
    EXPECT_EQ(shown, QStringLiteral("Copying zone 12 of 300"));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST(ImportProgressBox, ShortImport_ShowsNothing) {
    ImportProgressBox progress(nullptr);
    progress.ZoneStarted(1, 2);
    progress.ZoneStarted(2, 2);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

}  // namespace
