#include "platform/helpwindow/HelpBrowser.h"

#include <QEvent>
#include <QImage>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>

#include "platform/helpwindow/HelpFile.h"

namespace platform {

namespace {

constexpr int kSmallest = -4;
constexpr int kLargest = 12;
constexpr QRgb kLightBlue = qRgb(130, 180, 255);
constexpr int kOwnWidth = QTextFormat::UserProperty + 1;  // of a picture, before it is fitted
constexpr int kRoundedUp = 1;
// What the pages of the file, and nothing else, begin with.
constexpr QLatin1String kScheme("help");

}  // namespace

HelpBrowser::HelpBrowser(const HelpFile& file, QWidget* parent)
    : QTextBrowser(parent), file_(file) {
    MakeLinksReadable();
}

void HelpBrowser::ShowPage(const QString& page) {
    setSource(QUrl(kScheme + QStringLiteral(":/") + page));
}

QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
    const QUrl url = name.isRelative() ? source().resolved(name) : name;
    if (url.scheme() != kScheme) {
        return {};
    }
    const QByteArray bytes = file_.Bytes(PageAt(url));
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

// Palettes made from a few colors keep the blue of links, which is too dark on a dark ground.
void HelpBrowser::MakeLinksReadable() {
    QPalette colors = palette();
    const bool dark = colors.color(QPalette::Base).lightness() < 128;
    if (dark && colors.color(QPalette::Link).lightness() < 160) {
        colors.setColor(QPalette::Link, QColor(kLightBlue));
        colors.setColor(QPalette::LinkVisited, QColor(kLightBlue));
        setPalette(colors);
    }
}

void HelpBrowser::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
    QTextBrowser::doSetSource(name, type);
    FitPictures();
}

void HelpBrowser::resizeEvent(QResizeEvent* event) {
    QTextBrowser::resizeEvent(event);
    FitPictures();
}

// No picture makes the page scroll sideways; with more room it gets its own width back.
void HelpBrowser::FitPictures() {
    const double page = viewport()->width() - 2 * document()->documentMargin() - kRoundedUp;
    const QString mark(QChar::ObjectReplacementCharacter);
    for (QTextCursor place = document()->find(mark); !place.isNull();
         place = document()->find(mark, place)) {
        QTextImageFormat picture = place.charFormat().toImageFormat();
        const bool isNew = !picture.hasProperty(kOwnWidth);
        const double own = isNew ? picture.width() : picture.doubleProperty(kOwnWidth);
        const QTextBlockFormat block = place.blockFormat();
        const double fitting = std::min(own, page - block.leftMargin() - block.rightMargin());
        if (fitting > 0 && (isNew || fitting != picture.width())) {
            picture.setProperty(kOwnWidth, own);
            picture.setWidth(fitting);
            SetScaled(QUrl(picture.name()), fitting);
            place.setCharFormat(picture);
        }
    }
}

// The document's own way of scaling leaves letters ragged.
void HelpBrowser::SetScaled(const QUrl& name, double width) {
    const double pixels = devicePixelRatioF();
    QImage image = QImage::fromData(loadResource(QTextDocument::ImageResource, name).toByteArray());
    if (!image.isNull()) {
        image = image.scaledToWidth(qRound(width * pixels), Qt::SmoothTransformation);
        image.setDevicePixelRatio(pixels);
        // Whichever way the document asks for it.
        document()->addResource(QTextDocument::ImageResource, name, image);
        document()->addResource(QTextDocument::ImageResource, source().resolved(name), image);
    }
}

}  // namespace platform
