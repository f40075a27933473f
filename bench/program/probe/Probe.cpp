#include "Probe.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRect>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <QWindow>

namespace probe {

namespace {

constexpr int kIntroduction = 1;
constexpr int kZones = 4;
constexpr int kValues = 5;
constexpr int kCosts = 6;
constexpr int kRounds = 5;
constexpr int kKeys = 20;
constexpr double kNanosecond = 1e-6;

}  // namespace

Probe::Probe(QString scenario, const QString& resultFile)
    : scenario_(std::move(scenario)), resultFile_(resultFile) {
    QTimer::singleShot(0, this, &Probe::Run);
}

// The plug-in is loaded before the program has a window.
void Probe::Run() {
    frame_ = Find(QStringLiteral("frm0_Prep"));
    if (frame_ == nullptr || frame_->windowHandle() == nullptr || !frame_->isActiveWindow()) {
        if (frame_ != nullptr) {
            frame_->activateWindow();
        }
        QTimer::singleShot(1, this, &Probe::Run);
        return;
    }
    frame_->installEventFilter(this);
    if (scenario_ == QStringLiteral("switch")) {
        Switch();
    } else {
        Type();
    }
    QFile file(resultFile_);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(results_.toUtf8());
    }
    frame_->close();
}

bool Probe::eventFilter(QObject* watched, QEvent* event) {
    painted_ = painted_ || event->type() == QEvent::UpdateRequest;
    return QObject::eventFilter(watched, event);
}

void Probe::Switch() {
    OpenTab(kValues);  // the first use of each form loads fonts and the like
    OpenTab(kCosts);
    OpenTab(kZones);
    OpenTab(kIntroduction);
    for (int round = 0; round < kRounds; ++round) {
        Measure(QStringLiteral("introduction_to_zones"), [this] { OpenTab(kZones); });
        Measure(QStringLiteral("zones_to_values"), [this] { OpenTab(kValues); });
        Measure(QStringLiteral("values_to_costs"), [this] { OpenTab(kCosts); });
        Measure(QStringLiteral("costs_to_introduction"), [this] { OpenTab(kIntroduction); });
    }
}

void Probe::Type() {
    OpenTab(kZones);
    TypeInto(QStringLiteral("grdFMZs"), QStringLiteral("zones"));
    OpenTab(kValues);
    TypeInto(QStringLiteral("grdNVC"), QStringLiteral("values"));
}

// One digit into each of the cells below one another, as a table is copied from paper.
void Probe::TypeInto(const QString& grid, const QString& step) {
    QWidget* const control = Find(grid);
    auto* const viewport = control->findChild<QWidget*>(QStringLiteral("qt_scrollarea_viewport"));
    QRect cell;
    QMetaObject::invokeMethod(control, "CellRect", Q_RETURN_ARG(QRect, cell), Q_ARG(int, 1),
                              Q_ARG(int, 1));
    QWindow* const window = frame_->windowHandle();
    const QPoint at = viewport->mapTo(frame_, cell.center());
    MillisecondsFor([&] { QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, at); });
    for (int key = 0; key < kKeys; ++key) {
        const auto digit = static_cast<Qt::Key>(Qt::Key_1 + key % 9);
        Measure(step + QStringLiteral("_press"), [&] { QTest::keyPress(window, digit); });
        Measure(step + QStringLiteral("_release"), [&] { QTest::keyRelease(window, digit); });
        if (key % 2 == 1) {
            Measure(step + QStringLiteral("_next_cell"),
                    [&] { QTest::keyPress(window, Qt::Key_Down); });
            QTest::keyRelease(window, Qt::Key_Down);
        }
    }
}

void Probe::OpenTab(int tab) {
    auto* const tabs = qobject_cast<QTabBar*>(Find(QStringLiteral("vsTab1")));
    QTest::mouseClick(frame_->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                      tabs->mapTo(frame_, tabs->tabRect(tab).center()));
}

double Probe::MillisecondsFor(const std::function<void()>& act) {
    QElapsedTimer timer;
    painted_ = false;
    timer.start();
    act();
    do {
        while (QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents)) {
        }
    } while (!painted_);
    QGuiApplication::sync();
    return static_cast<double>(timer.nsecsElapsed()) * kNanosecond;
}

void Probe::Measure(const QString& step, const std::function<void()>& act) {
    results_ += QStringLiteral("%1 %2\n").arg(step).arg(MillisecondsFor(act), 0, 'f', 6);
}

QWidget* Probe::Find(const QString& name) const {
    const QWidgetList widgets = QApplication::allWidgets();
    for (QWidget* widget : widgets) {
        if (widget->objectName() == name && widget->isVisible()) {
            return widget;
        }
    }
    return nullptr;
}

}  // namespace probe
