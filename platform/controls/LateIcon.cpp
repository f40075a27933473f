#include "platform/controls/LateIcon.h"

#include <QIconEngine>
#include <QPainter>
#include <optional>
#include <utility>

namespace {

class LateEngine : public QIconEngine {
public:
    explicit LateEngine(std::function<QIcon()> make) : make_(std::move(make)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        Made().paint(painter, rect, Qt::AlignCenter, mode, state);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return Made().pixmap(size, mode, state);
    }
    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return Made().actualSize(size, mode, state);
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                         qreal scale) override {
        return Made().pixmap(size / scale, scale, mode, state);
    }
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override {
        return Made().availableSizes(mode, state);
    }
    bool isNull() override { return Made().isNull(); }
    [[nodiscard]] QIconEngine* clone() const override { return new LateEngine(*this); }

private:
    const QIcon& Made() {
        if (!icon_) {
            icon_ = make_();
        }
        return *icon_;
    }

    std::function<QIcon()> make_;
    std::optional<QIcon> icon_;
};

}  // namespace

namespace platform {

QIcon LateIcon(std::function<QIcon()> make) {
    return QIcon(new LateEngine(std::move(make)));
}

}  // namespace platform
