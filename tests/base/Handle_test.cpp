#include "base/Handle.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QString>
#include <QStringList>

#include <stdexcept>

#include "support/LogFolder.h"

namespace deep {

class frmInner : public QObject {
public:
    void cmdGo_Click() {}
};

}  // namespace deep

namespace {

class frmTried : public QObject {
public:
    void cmdAdd_Click() { ++calls; }
    void mnuStep_Click(bool isChecked) { checked = isChecked; }
    void cmdFail_Click() { throw std::runtime_error("no"); }

    int calls = 0;
    bool checked = false;
};

// Rings once more when all that was derived from it is gone.
class RingsAtLast : public QObject {
public:
    explicit RingsAtLast(QAction& bell) : bell_(bell) {}
    ~RingsAtLast() override { bell_.trigger(); }
    RingsAtLast(const RingsAtLast&) = delete;
    RingsAtLast& operator=(const RingsAtLast&) = delete;

private:
    QAction& bell_;
};

class frmGoing : public RingsAtLast {
public:
    frmGoing(QAction& bell, int& calls) : RingsAtLast(bell), calls_(calls) {
        base::Handle<&frmGoing::bell_Ring>(&bell, &QAction::triggered, this);
    }
    void bell_Ring() { ++calls_; }

private:
    int& calls_;
};

class Handle : public testing::Test {
protected:
    ~Handle() override { platform::EventTrap::Install({}); }

    LogFolder folder_;
    frmTried form_;
    QAction signal_;
};

TEST_F(Handle, Name_IsThatOfFormAndFunction) {
    EXPECT_STREQ(base::HandlerName<&frmTried::cmdAdd_Click>(), "frmTried.cmdAdd_Click");
    EXPECT_STREQ(base::HandlerName<&frmTried::mnuStep_Click>(), "frmTried.mnuStep_Click");
    EXPECT_STREQ(base::HandlerName<&deep::frmInner::cmdGo_Click>(), "frmInner.cmdGo_Click");
}

TEST_F(Handle, Signal_WritesTheEntryAndCallsTheHandler) {
    base::Handle<&frmTried::cmdAdd_Click>(&signal_, &QAction::triggered, &form_);
    signal_.trigger();
    EXPECT_EQ(form_.calls, 1);
    EXPECT_EQ(folder_.Trace(), QStringList({QStringLiteral("   frmTried.cmdAdd_Click")}));
}

TEST_F(Handle, SignalWithArguments_HandsOverThoseThatTheHandlerTakes) {
    signal_.setCheckable(true);
    base::Handle<&frmTried::mnuStep_Click, base::Entry::kBare>(&signal_, &QAction::triggered,
                                                               &form_);
    signal_.trigger();
    EXPECT_TRUE(form_.checked);
    EXPECT_EQ(folder_.Trace(), QStringList({QStringLiteral("   mnuStep_Click")}));
}

TEST_F(Handle, SignalWhileTheFormGoes_CallsNothing) {
    int calls = 0;
    {
        const frmGoing form(signal_, calls);
        signal_.trigger();
    }
    EXPECT_EQ(calls, 1);
}

TEST_F(Handle, HandlerThatThrows_IsReportedByName) {
    QStringList failed;
    platform::EventTrap::Hooks hooks;
    hooks.report = [&failed](const platform::EventTrap::Report& report) {
        failed += report.handler;
    };
    platform::EventTrap::Install(hooks);
    base::Handle<&frmTried::cmdFail_Click, base::Entry::kOwn>(&signal_, &QAction::triggered,
                                                              &form_);
    signal_.trigger();
    EXPECT_EQ(failed, QStringList({QStringLiteral("frmTried.cmdFail_Click")}));
    EXPECT_EQ(folder_.Bytes(QStringLiteral("TARN.LOG")), QByteArray());
}

}  // namespace
