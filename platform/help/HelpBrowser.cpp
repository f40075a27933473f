#include "platform/help/HelpBrowser.h"

#include <QDesktopServices>
#include <QHelpEngineCore>
#include <algorithm>

namespace {

constexpr int kSmallest = -4;
constexpr int kLargest = 12;

bool IsOutside(const QUrl& url) {
    const QString scheme = url.scheme();
    return scheme == QLatin1String("http") || scheme == QLatin1String("https") ||
           scheme == QLatin1String("mailto");
}

}  // namespace

HelpBrowser::HelpBrowser(const QHelpEngineCore& engine, QWidget* parent)
    : QTextBrowser(parent), engine_(engine) {}

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

void HelpBrowser::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
    if (IsOutside(name)) {
        QDesktopServices::openUrl(name);
        return;
    }
    QTextBrowser::doSetSource(name, type);
}
