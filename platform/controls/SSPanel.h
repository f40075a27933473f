// A panel: a frame that may carry a caption and hold other controls.
#pragma once

#include <QFrame>

class SSPanel : public QFrame {
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)

public:
    explicit SSPanel(QWidget* parent = nullptr);
    [[nodiscard]] QString Caption() const;
    void SetCaption(const QString& caption);
    void SetCaptionAlignment(Qt::Alignment alignment);
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString caption_;
    Qt::Alignment alignment_ = Qt::AlignCenter;
};
