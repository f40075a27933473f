#include "platform/controls/StyleChoice.h"

#include <QApplication>
#include <QEvent>

#include "platform/controls/LegibleStyle.h"

namespace platform {

namespace {

class StyleFollower : public QObject {
public:
    explicit StyleFollower(QObject* application) : QObject(application) {
        application->installEventFilter(this);
        Follow();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == parent() && event->type() == QEvent::ApplicationPaletteChange) {
            // The application is still telling its windows of the colors.
            QMetaObject::invokeMethod(this, &StyleFollower::Follow, Qt::QueuedConnection);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void Follow() {
        const QString fitting =
            FittingStyle(QGuiApplication::platformName(), QGuiApplication::palette());
        if (!isSet_ || fitting != style_) {
            isSet_ = true;
            style_ = fitting;
            QApplication::setStyle(style_.isEmpty() ? new LegibleStyle : new LegibleStyle(style_));
        }
    }

    bool isSet_ = false;
    QString style_;
};

}  // namespace

QString FittingStyle(const QString& platform, const QPalette& colors) {
    constexpr int kMiddle = 128;
    const bool isDark = colors.color(QPalette::Window).lightness() < kMiddle;
    return platform == QLatin1String("windows") && isDark ? QStringLiteral("Fusion") : QString();
}

void InstallLegibleStyle() {
    new StyleFollower(QCoreApplication::instance());
}

}  // namespace platform
