#include "platform/controls/LegibleStyle.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QStyleOption>
#include <algorithm>
#include <cmath>

#include "platform/controls/FontScale.h"
#include "platform/controls/LateIcon.h"

namespace platform {

namespace {

constexpr double kLeastContrast = 3;  // of what need not be read letter by letter
constexpr int kSameColor = 12;        // in each of red, green and blue
constexpr QRgb kLightBlue = qRgb(130, 180, 255);

double Luminance(const QColor& color) {
    const auto part = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) +
           0.0722 * part(color.blueF());
}

// From 1, for the same color, to 21, for black on white.
double Contrast(const QColor& one, const QColor& other) {
    const auto [darker, lighter] = std::minmax({Luminance(one), Luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

QColor Between(const QColor& one, const QColor& other) {
    return {(one.red() + other.red()) / 2, (one.green() + other.green()) / 2,
            (one.blue() + other.blue()) / 2};
}

bool LacksOutlines(const QPalette& palette) {
    const QColor box = palette.color(QPalette::Base);
    const QColor ground = palette.color(QPalette::Window);
    return std::max({std::abs(box.red() - ground.red()), std::abs(box.green() - ground.green()),
                     std::abs(box.blue() - ground.blue())}) < kSameColor;
}

bool IsDark(const QColor& color) {
    return color.lightness() < 128;
}

// Like what is chosen, that is.
bool IsStrong(const QColor& color) {
    return color.hsvSaturation() > 128;
}

void MakeDisabledReadable(QPalette& palette, QPalette::ColorRole text, QPalette::ColorRole ground) {
    const QColor below = palette.color(QPalette::Disabled, ground);
    if (Contrast(palette.color(QPalette::Disabled, text), below) < kLeastContrast) {
        palette.setColor(QPalette::Disabled, text,
                         Between(palette.color(QPalette::Active, text), below));
    }
}

class Outline {
public:
    Outline(QPainter& painter, const QPalette& palette) : painter_(painter) {
        painter_.save();
        painter_.setPen(
            Between(palette.color(QPalette::Window), palette.color(QPalette::WindowText)));
        painter_.setBrush(Qt::NoBrush);
    }
    ~Outline() { painter_.restore(); }
    Outline(const Outline&) = delete;
    Outline& operator=(const Outline&) = delete;

    void Box(const QRect& rect) { painter_.drawRect(rect.adjusted(0, 0, -1, -1)); }
    // Thick and in the color of the text, so that it shows without colors too.
    void Thick(const QRect& rect, const QColor& color) {
        painter_.setPen(QPen(color, kThick, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
        painter_.drawRect(rect.adjusted(kThick / 2, kThick / 2, -kThick / 2 - 1, -kThick / 2 - 1));
    }
    void Circle(const QRect& rect) {
        painter_.setRenderHint(QPainter::Antialiasing);
        painter_.drawEllipse(rect.adjusted(0, 0, -1, -1));
    }

private:
    static constexpr int kThick = 3;
    QPainter& painter_;
};

// The button that Enter presses, of which the style makes only a shade.
bool IsDefaultButton(const QStyleOption& option) {
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(&option);
    return button != nullptr && (button->features & QStyleOptionButton::DefaultButton) != 0;
}

// The style marks a box that has the keyboard in its own way, other controls only when it came by
// keyboard.
bool IsMarked(const QStyleOption& option, bool isBox) {
    const bool byKeyboard = (option.state & QStyle::State_KeyboardFocusChange) != 0;
    return (option.state & QStyle::State_HasFocus) != 0 && (isBox || byKeyboard);
}

// Lists and boxes of several lines have no mark of their own for the keyboard.
void FrameKeyboard(QPainter& painter, const QStyleOption& option) {
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(&option);
    if (frame == nullptr || frame->frameShape == QFrame::NoFrame) {
        return;
    }
    painter.save();
    painter.setPen(option.palette.color(QPalette::Highlight));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(option.rect.adjusted(0, 0, -1, -1));
    painter.restore();
}

// A line along the outer edge of the current tab, in the color of all that is current.
void MarkCurrentTab(QPainter& painter, const QStyleOption& option) {
    constexpr int kThickness = 3;
    const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(&option);
    QRect mark = option.rect;
    if (tab != nullptr && tab->shape == QTabBar::RoundedSouth) {
        mark.setTop(mark.bottom() - kThickness + 1);
    } else {
        mark.setHeight(kThickness);
    }
    painter.fillRect(mark, option.palette.color(QPalette::Highlight));
}

}  // namespace

void LegibleStyle::polish(QPalette& palette) {
    QProxyStyle::polish(palette);
    MakeDisabledReadable(palette, QPalette::WindowText, QPalette::Window);
    MakeDisabledReadable(palette, QPalette::Text, QPalette::Base);
    MakeDisabledReadable(palette, QPalette::ButtonText, QPalette::Button);
    // Palettes made from a few colors keep a blue of links that is too dark on a dark ground.
    const QColor page = palette.color(QPalette::Base);
    const bool dark = IsDark(page);
    if (dark && Contrast(palette.color(QPalette::Link), page) < 2 * kLeastContrast) {
        palette.setColor(QPalette::Link, QColor(kLightBlue));
        palette.setColor(QPalette::LinkVisited, QColor(kLightBlue));
    }
    // Every second row of a list would look chosen.
    if (dark && IsStrong(palette.color(QPalette::AlternateBase))) {
        palette.setColor(QPalette::AlternateBase, page.lighter(125));
    }
}

// Dark colors of Windows give these the color of what is chosen as their ground, chosen or not. The
// usual one needs an outline there.
void LegibleStyle::DrawIndicator(PrimitiveElement element, const QStyleOptionButton& option,
                                 QPainter& painter, const QWidget* widget) const {
    QStyleOptionButton plain = option;
    plain.palette.setColor(QPalette::Base, QGuiApplication::palette().color(QPalette::Base));
    QProxyStyle::drawPrimitive(element, &plain, &painter, widget);
    Outline outline(painter, plain.palette);
    if (element == PE_IndicatorRadioButton) {
        outline.Circle(option.rect);
    } else {
        outline.Box(option.rect);
    }
}

void LegibleStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                 QPainter* painter, const QWidget* widget) const {
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    if ((element == PE_IndicatorRadioButton || element == PE_IndicatorCheckBox) &&
        button != nullptr && IsDark(button->palette.color(QPalette::Window)) &&
        IsStrong(button->palette.color(QPalette::Base))) {
        DrawIndicator(element, *button, *painter, widget);
        return;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool isBox = element == PE_FrameLineEdit || element == PE_Frame;
    if (!LacksOutlines(option->palette)) {
        return;
    }
    if (IsMarked(*option, isBox)) {
        return;
    }
    switch (element) {
        case PE_FrameLineEdit:
        case PE_IndicatorCheckBox:
        case PE_FrameMenu:
        case PE_Frame:
            Outline(*painter, option->palette).Box(option->rect);
            break;
        case PE_IndicatorRadioButton:
            Outline(*painter, option->palette).Circle(option->rect);
            break;
        default:
            break;
    }
}

void LegibleStyle::drawControl(ControlElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawControl(element, option, painter, widget);
    if (element == CE_ShapedFrame && (option->state & State_HasFocus) != 0 &&
        qobject_cast<const QAbstractScrollArea*>(widget) != nullptr) {
        FrameKeyboard(*painter, *option);
        return;
    }
    const bool outlined = LacksOutlines(option->palette);
    const bool current = (option->state & State_Selected) != 0;
    if (element == CE_TabBarTabShape && outlined) {
        Outline(*painter, option->palette).Box(option->rect);
    }
    if (element == CE_TabBarTabShape && current) {
        MarkCurrentTab(*painter, *option);
    }
    if (!outlined) {
        return;
    }
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    switch (element) {
        case CE_ShapedFrame:
            if (frame != nullptr && frame->frameShape != QFrame::NoFrame) {
                Outline(*painter, option->palette).Box(option->rect);
            }
            break;
        case CE_ProgressBarGroove:
            Outline(*painter, option->palette).Box(option->rect);
            break;
        // Not every style draws a button's panel as a part of its own.
        case CE_PushButtonBevel:
            if (IsDefaultButton(*option)) {
                Outline(*painter, option->palette)
                    .Thick(option->rect, option->palette.color(QPalette::ButtonText));
            } else if (!IsMarked(*option, false)) {
                Outline(*painter, option->palette).Box(option->rect);
            }
            break;
        default:
            break;
    }
}

void LegibleStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                      QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (!LacksOutlines(option->palette)) {
        return;
    }
    if (control == CC_ComboBox && !IsMarked(*option, false)) {
        Outline(*painter, option->palette).Box(option->rect);
    }
    if (control == CC_ScrollBar) {
        Outline outline(*painter, option->palette);
        outline.Box(option->rect);
        outline.Box(subControlRect(control, option, SC_ScrollBarSlider, widget));
    }
}

int LegibleStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                              const QWidget* widget) const {
    const int pixels = QProxyStyle::pixelMetric(metric, option, widget);
    switch (metric) {
        case PM_IndicatorWidth:
        case PM_IndicatorHeight:
        case PM_ExclusiveIndicatorWidth:
        case PM_ExclusiveIndicatorHeight:
            return platform::ScaledPixels(
                pixels, widget == nullptr ? QApplication::font() : widget->font());
        default:
            return pixels;
    }
}

// Each menu bar asks for the arrow that it shows once it is too narrow for its menus. Reading that
// picture loads all the toolkit's readers of pictures, which the program does not need otherwise.
int LegibleStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                            QStyleHintReturn* data) const {
    return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
}

QIcon LegibleStyle::standardIcon(StandardPixmap which, const QStyleOption* option,
                                 const QWidget* widget) const {
    if (which != SP_ToolBarHorizontalExtensionButton) {
        return QProxyStyle::standardIcon(which, option, widget);
    }
    const QPointer<const LegibleStyle> style(this);
    return platform::LateIcon([style] {
        return style == nullptr ? QIcon()
                                : style->QProxyStyle::standardIcon(
                                      SP_ToolBarHorizontalExtensionButton, nullptr, nullptr);
    });
}

}  // namespace platform
