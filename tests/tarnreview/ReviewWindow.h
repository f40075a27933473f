// TARN Review, running: its window on files of the test's own, used by key and click.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

#include <filesystem>
#include <memory>
#include <stdexcept>

#include "platform/controls/vsFlexGrid.h"
#include "platform/dialogs/MsgBox.h"
#include "platform/system/NativePath.h"
#include "season/data_file.h"
#include "support/Answers.h"
#include "support/BuiltProgramFolder.h"
#include "support/made_season.h"
#include "tarnreview/frmReview.h"

class ReviewWindow : public testing::Test {
protected:
    ReviewWindow() { platform::SetMsgBoxTitle(QStringLiteral("TARN Review")); }
    // Starts the program and waits until its pages are there.
    void Run(const std::filesystem::path& file = {}) {
        window_ = std::make_unique<tarnreview::frmReview>(platform::FromNativePath(file));
        window_->resize(1200, 760);
        window_->show();
        window_->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        ASSERT_TRUE(QTest::qWaitFor([this] { return Pages().count() == 4; }));
    }
    std::filesystem::path Write(const std::string& name, const season::Season& season) const {
        const std::filesystem::path path =
            platform::ToNativePath(folder_.CostsPath(QString::fromStdString(name)));
        season::WriteNew(season, path);
        return path;
    }
    template <typename Type = QWidget>
    Type& Get(const char* name) const {
        auto* const found = window_->findChild<Type*>(QString::fromLatin1(name));
        if (found == nullptr) {
            throw std::runtime_error(std::string("there is no ") + name);
        }
        return *found;
    }
    [[nodiscard]] QTabWidget& Pages() const { return Get<QTabWidget>("tabReview"); }
    void Click(const char* button) { QTest::mouseClick(&Get<QPushButton>(button), Qt::LeftButton); }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        window_->activateWindow();
        QTest::keyClick(window_->windowHandle(), key, modifiers);
    }
    [[nodiscard]] vsFlexGrid& Findings() const { return Get<vsFlexGrid>("grdFindings"); }
    // The texts of a grid's column, without its heading.
    static QStringList Column(const vsFlexGrid& grid, int col) {
        QStringList texts;
        for (int row = grid.FixedRows(); row < grid.Rows(); ++row) {
            texts += grid.TextMatrix(row, col);
        }
        return texts;
    }
    static void TypeName(QWidget& dialog, const QString& path) {
        auto* const name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(name, nullptr);
        name->setText(path);
        QMetaObject::invokeMethod(&dialog, "accept");
    }

    support::ProgramFolder folder_;
    std::unique_ptr<tarnreview::frmReview> window_;
};
