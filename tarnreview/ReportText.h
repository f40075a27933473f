// A document as rich text: headings, tables and charts that are painted when they come into view.
#pragma once

#include <QTextBrowser>

#include <vector>

#include "plots/ChartLibrary.h"
#include "review/document.h"

namespace tarnreview {

class ReportText : public QTextBrowser {
    Q_OBJECT

public:
    explicit ReportText(QWidget* parent);

    // All sections, or the one of this number.
    void ShowDocument(const review::Document& document, int section);
    QVariant loadResource(int type, const QUrl& name) override;

private:
    void AddSection(QString& html, const review::Section& section);
    void AddTable(QString& html, const review::Table& table);
    void AddChart(QString& html, const plots::ChartContent& chart, const review::ChartWords& words);

    std::vector<plots::ChartContent> charts_;
};

}  // namespace tarnreview
