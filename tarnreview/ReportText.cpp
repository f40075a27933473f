#include "tarnreview/ReportText.h"

#include <QImage>

#include <algorithm>

#include "tarnreview/Charts.h"
#include "tarnreview/Parts.h"

using plots::ChartContent;

namespace tarnreview {

using Parts::Text;

namespace {

constexpr int kPictureWidth = 640;
const QString kScheme = QStringLiteral("chart");

QString Escaped(const std::string& text) {
    return Text(text).toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br/>"));
}

QString CellOf(const review::Cell& cell, const char* tag) {
    QString text = Escaped(cell.text);
    if (cell.isChanged) {
        text =
            QStringLiteral("<b>%1</b> <i>(%2)</i>")
                .arg(text, cell.before.empty() ? QObject::tr("new")
                                               : QObject::tr("was %1").arg(Escaped(cell.before)));
    }
    return QStringLiteral("<%1 align=\"%2\" colspan=\"%3\">%4</%1>")
        .arg(QLatin1String(tag), cell.isNumber ? QStringLiteral("right") : QStringLiteral("left"))
        .arg(cell.columns)
        .arg(text);
}

void AddRow(QString& html, const std::vector<review::Cell>& row, const char* tag) {
    html += QStringLiteral("<tr>");
    for (const review::Cell& cell : row) {
        html += CellOf(cell, cell.isHead ? "th" : tag);
    }
    html += QStringLiteral("</tr>");
}

}  // namespace

ReportText::ReportText(QWidget* parent) : QTextBrowser(parent) {
    setOpenLinks(false);
    setAcceptDrops(false);
}

void ReportText::ShowDocument(const review::Document& document, int section) {
    charts_.clear();
    QString html;
    if (section <= 0) {
        html += QStringLiteral("<h1>%1</h1><table cellpadding=\"2\">").arg(Escaped(document.title));
        for (const auto& [name, value] : document.facts) {
            html += QStringLiteral("<tr><th align=\"left\">%1</th><td>%2</td></tr>")
                        .arg(Escaped(name), Escaped(value));
        }
        html += QStringLiteral("</table>");
    }
    for (std::size_t i = 0; i < document.sections.size(); ++i) {
        if (section < 0 || static_cast<int>(i) == section) {
            AddSection(html, document.sections[i]);
        }
    }
    setHtml(html);
}

void ReportText::AddSection(QString& html, const review::Section& section) {
    html += QStringLiteral("<h%1>%2</h%1>").arg(section.level).arg(Escaped(section.heading));
    struct Add {
        ReportText& to;
        QString& html;
        void operator()(const review::Paragraph& paragraph) {
            html += QStringLiteral("<p>%1</p>").arg(Escaped(paragraph.text));
        }
        void operator()(const review::Table& table) { to.AddTable(html, table); }
        void operator()(const review::CostChart& chart) { to.AddChart(html, chart, chart.words); }
        void operator()(const review::TotalsChart& chart) { to.AddChart(html, chart, chart.words); }
        void operator()(const review::HeatMap& chart) { to.AddChart(html, chart, chart.words); }
        void operator()(const review::BarChart& chart) { to.AddChart(html, chart, chart.words); }
    };
    for (const review::Block& block : section.blocks) {
        std::visit(Add{*this, html}, block);
    }
}

void ReportText::AddTable(QString& html, const review::Table& table) {
    if (!table.caption.empty()) {
        html += QStringLiteral("<p><b>%1</b></p>").arg(Escaped(table.caption));
    }
    html += QStringLiteral(
        "<table border=\"1\" cellspacing=\"0\" cellpadding=\"3\" style=\"border-collapse: "
        "collapse\">"
        "<thead>");
    AddRow(html, table.head, "th");
    html += QStringLiteral("</thead>");
    for (const auto& row : table.rows) {
        AddRow(html, row, "td");
    }
    for (const auto& row : table.totals) {
        AddRow(html, row, "th");
    }
    html += QStringLiteral("</table>");
}

// With its size said, a picture is not made before it comes into view.
void ReportText::AddChart(QString& html, const ChartContent& chart,
                          const review::ChartWords& words) {
    const int height = Charts::HeightOf(chart, kPictureWidth);
    if (height > 0) {
        html += QStringLiteral(
                    "<p><b>%1</b><br/><img src=\"%2:%3\" width=\"%4\" height=\"%5\" "
                    "alt=\"%6\"/></p>")
                    .arg(Escaped(words.caption), kScheme)
                    .arg(charts_.size())
                    .arg(kPictureWidth)
                    .arg(height)
                    .arg(Escaped(words.alternative));
        charts_.push_back(chart);
    } else {
        html += QStringLiteral("<p>%1</p>").arg(Escaped(words.alternative));
    }
}

QVariant ReportText::loadResource(int type, const QUrl& name) {
    const auto at = static_cast<std::size_t>(name.path().toULongLong());
    if (name.scheme() != kScheme || at >= charts_.size()) {
        return QTextBrowser::loadResource(type, name);
    }
    return Charts::Picture(charts_[at], kPictureWidth, {font(), palette(), devicePixelRatioF()});
}

}  // namespace tarnreview
