// The style of the machine's desktop, made legible under palettes that leave it too little
// contrast: where boxes have the color of what they lie on (high contrast themes), they and the
// buttons get an outline, the button that Enter presses a thick one; disabled texts and links get a
// color that can be read, and what is not chosen never has the color of what is. The current tab is
// marked in the color of all that is current, and a list or a box of several lines shows by its
// frame that it has the keyboard. The list of a combo box opens as a list with a scroll bar, never
// like a menu over the whole screen. The circles of options and the squares of check boxes grow
// with large letters.
#pragma once

#include <QIcon>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleOptionButton>

namespace platform {

class LegibleStyle : public QProxyStyle {
    Q_OBJECT

public:
    using QProxyStyle::polish;
    using QProxyStyle::QProxyStyle;
    void polish(QPalette& palette) override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override;
    [[nodiscard]] QIcon standardIcon(StandardPixmap standardIcon, const QStyleOption* option,
                                     const QWidget* widget) const override;

private:
    void DrawIndicator(PrimitiveElement element, const QStyleOptionButton& option,
                       QPainter& painter, const QWidget* widget) const;
};

}  // namespace platform
