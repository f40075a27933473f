#include "reportpdf/report_pages.h"

#include <QBuffer>
#include <QLocale>
#include <QPageRanges>
#include <QPainter>
#include <QPdfWriter>
#include <algorithm>
#include <stdexcept>

#include "reportpdf/bookmarks.h"
#include "reportpdf/layout.h"

namespace reportpdf {

namespace {

constexpr QSizeF kLeastPaper(298, 420);

}  // namespace

Paper UsualPaper() {
    return QLocale().measurementSystem() == QLocale::ImperialUSSystem ? Paper::kLetter : Paper::kA4;
}

QSizeF SizeOf(Paper paper) {
    return paper == Paper::kA4 ? QSizeF(595, 842) : QSizeF(612, 792);
}

class Pages::Body {
public:
    Body(const review::Document& document, QSizeF paper) : layout(document, paper) {}
    Layout layout;
};

Pages::Pages(const review::Document& document, QSizeF paper) {
    RequireFonts();
    body_ = std::make_unique<const Body>(document, paper.expandedTo(kLeastPaper));
}

Pages::~Pages() = default;

int Pages::Count() const {
    return static_cast<int>(body_->layout.Pages().size());
}

int Pages::PageOf(std::size_t section) const {
    return body_->layout.PageOfSection().at(section);
}

void Pages::Draw(QPainter& painter, int page) const {
    const auto index = static_cast<std::size_t>(page);
    painter.save();
    painter.setPen(kInk);
    Sheet sheet(painter);
    body_->layout.DrawEdges(sheet, index);
    for (const auto& part : body_->layout.Pages().at(index).parts) {
        part(sheet);
    }
    sheet.Finish();
    painter.restore();
}

void Print(const review::Document& document, QPagedPaintDevice& device) {
    const QPageLayout layout = device.pageLayout();
    const Pages pages(document, layout.fullRectPoints().size());
    QPainter painter;
    if (!painter.begin(&device)) {
        throw std::runtime_error("The printer cannot be used.");
    }
    // A painter's origin is where the device begins to print.
    const QPointF origin = layout.mode() == QPageLayout::FullPageMode
                               ? QPointF()
                               : -layout.paintRect(QPageLayout::Point).topLeft();
    const QPageRanges ranges = device.pageRanges();
    bool isFirst = true;
    for (int page = 0; page < pages.Count(); ++page) {
        if (!ranges.isEmpty() && !ranges.contains(page + 1)) {
            continue;
        }
        if (!isFirst && !device.newPage()) {
            throw std::runtime_error("The printer takes no more pages.");
        }
        isFirst = false;
        painter.save();
        painter.scale(device.logicalDpiX() / 72.0, device.logicalDpiY() / 72.0);
        painter.translate(origin);
        pages.Draw(painter, page);
        painter.restore();
    }
    painter.end();
}

QByteArray PdfOf(const review::Document& document, Paper paper) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    const Pages pages(document, SizeOf(paper));
    {
        QPdfWriter writer(&buffer);
        writer.setTitle(QString::fromStdString(document.title));
        writer.setCreator(QStringLiteral("TARN Prep"));
        writer.setPageSize(QPageSize(SizeOf(paper), QPageSize::Point));
        writer.setPageMargins(QMarginsF());
        writer.setResolution(72);
        QPainter painter(&writer);
        for (int page = 0; page < pages.Count(); ++page) {
            if (page > 0) {
                writer.newPage();
            }
            pages.Draw(painter, page);
        }
    }
    std::vector<Bookmark> bookmarks;
    for (std::size_t i = 0; i < document.sections.size(); ++i) {
        bookmarks.push_back({QString::fromStdString(document.sections[i].heading),
                             document.sections[i].level, pages.PageOf(i)});
    }
    return WithBookmarks(buffer.data(), bookmarks);
}

}  // namespace reportpdf
