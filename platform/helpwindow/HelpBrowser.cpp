#include "platform/helpwindow/HelpBrowser.h"

#include <QEvent>
#include <QHelpEngineCore>
#include <algorithm>

namespace {

constexpr int kSmallest = -4;
constexpr int kLargest = 12;
constexpr QRgb kLightBlue = qRgb(130, 180, 255);

}  // namespace

HelpBrowser::HelpBrowser(const QHelpEngineCore& engine, QWidget* parent)
    : QTextBrowser(parent), engine_(engine) {
    MakeLinksReadable();
}

QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
    const QUrl url = name.isRelative() ? source().resolved(name) : name;
    if (url.scheme() != QLatin1String("qthelp")) {
        return {};
    }
    const QByteArray bytes = engine_.fileData(url);
    if (type == QTextDocument::HtmlResource || type == QTextDocument::StyleSheetResource) {
        return QString::fromUtf8(bytes);
    }
    return bytes;
}

void HelpBrowser::SetTextSize(int step) {
    const int wanted = std::clamp(step, kSmallest, kLargest);
    zoomIn(wanted - textSize_);
    textSize_ = wanted;
}

void HelpBrowser::changeEvent(QEvent* event) {
    QTextBrowser::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        MakeLinksReadable();
    }
}

// Palettes made from a few colours keep the blue of links, which is too dark on a dark ground.
void HelpBrowser::MakeLinksReadable() {
    QPalette colours = palette();
    const bool dark = colours.color(QPalette::Base).lightness() < 128;
    if (dark && colours.color(QPalette::Link).lightness() < 160) {
        colours.setColor(QPalette::Link, QColor(kLightBlue));
        colours.setColor(QPalette::LinkVisited, QColor(kLightBlue));
        setPalette(colours);
    }
}
