// The whole program, running in a folder of its own: the frame with everything in it, found and
// used as a user would, by name, key and click.
#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>

#include <memory>
#include <stdexcept>
#include <string>

#include "datafile/PrepDatafile.h"
#include "platform/controls/vsIndexTab.h"
#include "shell/a3PrepForms.h"
#include "shell/frm0_Prep.h"
#include "support/Answers.h"
#include "support/BuiltProgramFolder.h"

// Lines as one text, which reads better than a list when a test fails.
inline std::string Text(const QStringList& lines) {
    return lines.join(u'\n').toStdString();
}

class RunningProgram : public testing::Test {
protected:
    ~RunningProgram() override {
        frame_.reset();
        if (PrepDatafile::IsDatafileOpen()) {
            PrepDatafile::CloseDatafile();
        }
    }

    void Run(const QString& commandLine = QString()) {
        frame_ = std::make_unique<frm0_Prep>(commandLine);
        frame_->MDIForm_Load();
        frame_->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(frame_.get()));
    }
    // A copy of the template in the costs folder, of the name given.
    QString NewFile(const QString& name = QStringLiteral("Unit.fcd")) {
        return folder_.NewFile(name);
    }
    void RunWithFile() { Run(NewFile()); }

    template <typename Type = QWidget>
    Type* Find(const QString& name) const {
        return frame_->findChild<Type*>(name);
    }
    template <typename Type = QWidget>
    Type& Get(const QString& name) const {
        Type* found = Find<Type>(name);
        if (found == nullptr) {
            throw std::runtime_error("there is no " + name.toStdString());
        }
        return *found;
    }
    vsIndexTab& Tab() const { return Get<vsIndexTab>(QStringLiteral("vsTab1")); }
    void ClickTab(int tab) {
        QTest::mouseClick(&Tab(), Qt::LeftButton, {}, Tab().tabRect(tab).center());
    }
    void Choose(const QString& item) { Get<QAction>(item).trigger(); }
    void Click(const QString& button) {
        QTest::mouseClick(&Get<QPushButton>(button), Qt::LeftButton);
    }
    // The keys of the frame's window, going wherever the keyboard is.
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        frame_->activateWindow();
        QTest::keyClick(frame_->windowHandle(), key, modifiers);
    }
    [[nodiscard]] bool MenuEnabled(int top) const {
        return Get<QAction>(QStringLiteral("mnuTop_%1").arg(top)).isEnabled();
    }
    // Types the path into the file dialog and presses Open.
    static void ChooseFile(QWidget& dialog, const QString& path) {
        auto* name = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(name, nullptr);
        name->setText(path);
        QMetaObject::invokeMethod(&dialog, "accept");
    }
    // The items of the Worksheet menu that carry a check mark.
    [[nodiscard]] QList<int> CheckedSteps() const {
        QList<int> steps;
        for (int step = 1; step <= 6; ++step) {
            if (Get<QAction>(QStringLiteral("mnuStep_%1").arg(step)).isChecked()) {
                steps += step;
            }
        }
        return steps;
    }
    [[nodiscard]] QString ShownForm() const {
        const QWidget* form = a3PrepForms::CurrentForm();
        return form == nullptr ? QString() : form->objectName();
    }
    [[nodiscard]] bool StartScreenShows() const {
        return Get(QStringLiteral("pnlOverview")).isVisible() &&
               Get(QStringLiteral("pnlButtons")).isVisible();
    }
    // One of the two states of the interface, entirely: no file is open.
    [[nodiscard]] bool NoFileState() const {
        return StartScreenShows() && !PrepDatafile::IsDatafileOpen() && ShownForm().isEmpty() &&
               Find(QStringLiteral("frmTabs")) == nullptr && !MenuEnabled(2) && !MenuEnabled(3) &&
               frame_->windowTitle() == QStringLiteral("TARN Prep");
    }
    // What the log holds beyond what it held when this was called last.
    QStringList NewTrace() {
        const QStringList all = folder_.Trace();
        const QStringList fresh = all.mid(traced_);
        traced_ = all.size();
        return fresh;
    }

    support::ProgramFolder folder_;
    std::unique_ptr<frm0_Prep> frame_;
    qsizetype traced_ = 0;
};
