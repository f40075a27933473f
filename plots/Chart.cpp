#include "plots/Chart.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QToolTip>

#include <algorithm>

namespace plots {

namespace {

constexpr double kMarkWidth = 2.5;
constexpr int kBesideTitle = 6;

QColor Mixed(const QColor& one, const QColor& other, double part) {
    const auto mix = [part](int a, int b) { return static_cast<int>(a + (b - a) * part); };
    return {mix(one.red(), other.red()), mix(one.green(), other.green()),
            mix(one.blue(), other.blue())};
}

// Broken where a line has no room for the next word.
QString InLines(const QString& title, const QFont& font, int width) {
    const QFontMetrics metrics(font);
    QStringList lines;
    for (const QString& word : title.split(u' ')) {
        const QString longer = lines.isEmpty() ? word : lines.back() + u' ' + word;
        if (lines.isEmpty() || metrics.horizontalAdvance(longer) > width - 2 * kBesideTitle) {
            lines += word;
        } else {
            lines.back() = longer;
        }
    }
    return lines.join(u'\n');
}

}  // namespace

// Brown and blue: the two that everybody tells apart.
Ink InkOf(const QPalette& palette) {
    Ink ink;
    ink.ground = palette.color(QPalette::Base);
    ink.text = palette.color(QPalette::Text);
    const bool isDark = ink.ground.lightness() < ink.text.lightness();
    ink.axis = Mixed(ink.text, ink.ground, 0.15);
    ink.grid = Mixed(ink.ground, ink.text, 0.16);
    ink.loss = isDark ? QColor(0xf0, 0x9a, 0x4c) : QColor(0xb3, 0x58, 0x06);
    ink.gain = isDark ? QColor(0x86, 0xb0, 0xff) : QColor(0x3a, 0x5a, 0x9b);
    ink.mark = palette.color(QPalette::Highlight);
    return ink;
}

Chart::Chart(QWidget* parent) : QCustomPlot(parent), sides_(new QCPMarginGroup(this)) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    Redraw();
}

void Chart::Show(const ChartContent& content, const QString& title, const QString& place) {
    content_ = content;
    title_ = title;
    place_ = place;
    current_.reset();
    Redraw();
}

void Chart::Mark(std::optional<ChartSpot> spot) {
    if (spot != marked_) {
        marked_ = spot;
        Redraw();
    }
}

void Chart::Redraw() {
    ink_ = InkOf(palette());
    figures_ = FiguresOf(content_, place_);
    spots_.clear();
    clearItems();
    clearPlottables();
    plotLayout()->clear();
    setBackground(ink_.ground);
    int row = 0;
    if (!title_.isEmpty()) {
        QFont bold = font();
        bold.setBold(true);
        auto* heading = new QCPTextElement(this, InLines(title_, bold, width()), bold);
        heading->setTextColor(ink_.text);
        heading->setTextFlags(Qt::AlignLeft | Qt::AlignVCenter);
        heading->setMargins(QMargins(kBesideTitle, 4, kBesideTitle, 2));
        plotLayout()->addElement(row++, 0, heading);
    }
    body_ = new QCPLayoutGrid;
    plotLayout()->addElement(row, 0, body_);
    plotLayout()->setRowSpacing(0);
    drawnSize_ = size();
    {
        const QScopedValueRollback<bool> drawing(isDrawing_, true);
        std::visit([this](const auto& content) { Draw(*this, content); }, content_);
    }
    if (size() != drawnSize_) {
        Redraw();
        return;
    }
    DrawFrames();
    setAccessibleName(title_);
    setAccessibleDescription(Describe(content_));
    replot(QCustomPlot::rpQueuedReplot);
}

void Chart::DrawFrames() {
    for (std::size_t i = 0; i < std::min(spots_.size(), figures_.size()); ++i) {
        const ChartSpot& at = figures_[i].spot;
        const bool isMarked = marked_ && marked_->series == at.series && (marked_->item == at.item);
        if (isMarked) {
            AddFrame(*spots_[i].axes, spots_[i].area, QPen(ink_.mark, kMarkWidth));
        }
        if (current_ == i && hasFocus()) {
            AddFrame(*spots_[i].axes, spots_[i].area, QPen(ink_.text, 1, Qt::DotLine));
        }
    }
}

void Chart::LayOut() {
    for (const auto phase : {QCPLayoutElement::upPreparation, QCPLayoutElement::upMargins,
                             QCPLayoutElement::upLayout}) {
        plotLayout()->update(phase);
    }
}

QCPAxisRect& Chart::AddAxes(int row, int column) {
    auto* axes = new QCPAxisRect(this);
    body_->addElement(row, column, axes);
    for (QCPAxis* axis : axes->axes()) {
        axis->setLayer(QStringLiteral("axes"));
        axis->grid()->setLayer(QStringLiteral("grid"));
        axis->setTickLabelFont(font());
        axis->setLabelFont(font());
        axis->setTickLabelColor(ink_.text);
        axis->setLabelColor(ink_.text);
        for (const auto set :
             {&QCPAxis::setBasePen, &QCPAxis::setTickPen, &QCPAxis::setSubTickPen}) {
            (axis->*set)(QPen(ink_.axis));
        }
        axis->grid()->setPen(QPen(ink_.grid));
        axis->grid()->setZeroLinePen(QPen(ink_.axis));
        axis->setTickLabelPadding(4);
    }
    return *axes;
}

void Chart::AddText(QCPAxisRect& axes, QPointF at, const QString& text, Qt::Alignment alignment,
                    const QColor& color) {
    auto* item = new QCPItemText(this);
    item->position->setAxisRect(&axes);
    item->position->setAxes(axes.axis(QCPAxis::atBottom), axes.axis(QCPAxis::atLeft));
    item->position->setType(QCPItemPosition::ptPlotCoords);
    item->position->setCoords(at);
    item->setPositionAlignment(alignment);
    item->setText(text);
    item->setFont(font());
    item->setColor(color);
    item->setPadding(QMargins(2, 1, 2, 1));
    item->setClipToAxisRect(false);
}

void Chart::AddNothing(const QString& why) {
    auto* text = new QCPTextElement(this, why, font());
    text->setTextColor(ink_.text);
    text->setTextFlags(Qt::AlignCenter | Qt::TextWordWrap);
    body_->addElement(0, 0, text);
}

QBrush Chart::Fill(double value) const {
    return value < 0 ? QBrush(ink_.loss, Qt::BDiagPattern) : QBrush(ink_.gain);
}

void Chart::AddFrame(QCPAxisRect& axes, const QRectF& area, const QPen& pen) {
    auto* frame = new QCPItemRect(this);
    for (const auto& [position, at] : {std::pair(frame->topLeft, area.topLeft()),
                                       std::pair(frame->bottomRight, area.bottomRight())}) {
        position->setAxisRect(&axes);
        position->setAxes(axes.axis(QCPAxis::atBottom), axes.axis(QCPAxis::atLeft));
        position->setType(QCPItemPosition::ptPlotCoords);
        position->setCoords(at);
    }
    frame->setPen(pen);
    frame->setClipToAxisRect(false);
}

void Chart::SetLeast(QSize least) {
    least_ = least;
    if (minimumSize() != least) {
        setMinimumSize(least);
    }
}

QRectF Chart::OnScreen(const Spot& spot) const {
    const QCPAxis* across = spot.axes->axis(QCPAxis::atBottom);
    const QCPAxis* up = spot.axes->axis(QCPAxis::atLeft);
    return QRectF(
               QPointF(across->coordToPixel(spot.area.left()), up->coordToPixel(spot.area.top())),
               QPointF(across->coordToPixel(spot.area.right()),
                       up->coordToPixel(spot.area.bottom())))
        .normalized();
}

std::optional<std::size_t> Chart::SpotAt(QPointF point) const {
    for (std::size_t i = 0; i < std::min(spots_.size(), figures_.size()); ++i) {
        if (OnScreen(spots_[i]).contains(point)) {
            return i;
        }
    }
    return std::nullopt;
}

const Figure* Chart::FigureAt(QPointF point) const {
    const std::optional<std::size_t> found = SpotAt(point);
    return found ? &figures_[*found] : nullptr;
}

void Chart::Say(const QString& words) {
    if (words != said_) {
        said_ = words;
        if (listener_) {
            listener_(words);
        }
    }
}

void Chart::GoTo(std::optional<std::size_t> figure) {
    current_ = figure;
    Redraw();
    if (!figure) {
        Say({});
        return;
    }
    const QString& words = figures_[*figure].words;
    setAccessibleDescription(words);
    QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
    Say(words);
    if (*figure < spots_.size()) {
        const QRect area = OnScreen(spots_[*figure]).toRect();
        QToolTip::showText(mapToGlobal(area.bottomLeft()), words, this);
    }
}

// Left and right go along a series, up and down to the same item of the one before or behind.
std::optional<std::size_t> Chart::Neighbor(int key) const {
    if (!current_ || *current_ >= figures_.size()) {
        return figures_.empty() ? std::nullopt : std::optional<std::size_t>(0);
    }
    ChartSpot wanted = figures_[*current_].spot;
    const bool isOneSeries = figures_.back().spot.series == 0;
    const bool isBack = key == Qt::Key_Left || key == Qt::Key_Up;
    const bool isAlong = key == Qt::Key_Left || key == Qt::Key_Right || isOneSeries;
    (isAlong ? wanted.item : wanted.series) += isBack ? -1 : 1;
    const auto found = std::find_if(figures_.begin(), figures_.end(),
                                    [&](const Figure& figure) { return figure.spot == wanted; });
    return found == figures_.end() ? current_
                                   : std::optional<std::size_t>(found - figures_.begin());
}

bool Chart::event(QEvent* event) {
    // A chart says what is under the pointer at once and everywhere; no tip of a tool.
    return event->type() == QEvent::ToolTip ? true : QCustomPlot::event(event);
}

void Chart::changeEvent(QEvent* event) {
    QCustomPlot::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        Redraw();
    }
}

void Chart::resizeEvent(QResizeEvent* event) {
    QCustomPlot::resizeEvent(event);
    // What is drawn may ask for more room, and so be told of its new size while it is drawn.
    if (size() != drawnSize_ && !isDrawing_) {
        Redraw();
    }
}

void Chart::mouseMoveEvent(QMouseEvent* event) {
    QCustomPlot::mouseMoveEvent(event);
    const Figure* const figure = FigureAt(event->position());
    Say(figure != nullptr ? figure->words : QString());
    if (figure != nullptr) {
        QToolTip::showText(event->globalPosition().toPoint(), figure->words, this);
    } else {
        QToolTip::hideText();
    }
}

void Chart::leaveEvent(QEvent* event) {
    QCustomPlot::leaveEvent(event);
    Say({});
}

void Chart::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Right:
        case Qt::Key_Up:
        case Qt::Key_Down:
            GoTo(Neighbor(event->key()));
            break;
        default:
            QCustomPlot::keyPressEvent(event);
    }
}

void Chart::focusInEvent(QFocusEvent* event) {
    QCustomPlot::focusInEvent(event);
    Redraw();
}

void Chart::focusOutEvent(QFocusEvent* event) {
    QCustomPlot::focusOutEvent(event);
    Say({});
    Redraw();
}

void Draw(Chart& chart, std::monostate /*nothing*/) {
    chart.AddNothing({});
}

}  // namespace plots
