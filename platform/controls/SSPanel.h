// A panel: a frame that may carry a caption and hold other controls. A caption that is a figure is
// shown whole or as ####, with the figure in a tip; another text
// is broken between words, or ends in an ellipsis.
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
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QString Shown() const;
    [[nodiscard]] bool WrapsInto(const QRect& room) const;

    QString caption_;
    Qt::Alignment alignment_ = Qt::AlignCenter;
};
