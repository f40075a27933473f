// A document on pages, as printers and previews draw it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>
#include <QPageRanges>
#include <QPainter>
#include <QPdfWriter>
#include <stdexcept>

#include "reportpdf/bookmarks.h"
#include "reportpdf/report_pages.h"

namespace {

using reportpdf::Paper;
using review::Document;
using review::HeadCell;
using review::NumberCell;
using review::Section;
using review::Table;

Table LongTable(int rows) {
    Table table;
    table.caption = "A long table";
    table.head = {HeadCell("Name"), HeadCell("Figure")};
    for (int i = 0; i < rows; ++i) {
        table.rows.push_back({HeadCell("Row " + std::to_string(i)), NumberCell("1,234.50")});
    }
    table.totals = {{HeadCell("All"), NumberCell("99")}};
    return table;
}

Section SectionOf(const std::string& heading, bool onNewPage, review::Block block) {
    Section section;
    section.heading = heading;
    section.onNewPage = onNewPage;
    section.blocks.push_back(std::move(block));
    return section;
}

Document Made() {
    Document document;
    document.title = "TARN Prep: A unit";
    document.facts = {{"Unit", "A unit"}};
    document.sections.push_back(SectionOf("First", false, review::Paragraph{"Some words."}));
    document.sections.push_back(SectionOf("Second", true, LongTable(120)));
    review::CostChart costs;
    costs.steps = {{0, 10, 2000}, {10, 0, 500}};
    document.sections.push_back(SectionOf("Third", true, costs));
    review::TotalsChart totals;
    totals.panels.resize(60);
    document.sections.push_back(SectionOf("Fourth", false, totals));
    review::HeatMap map;
    map.rows = {"Forage", "Timber"};
    map.values = {{1, 2, 3, -4, -5, -6}, {}};
    map.largest = 6;
    document.sections.push_back(SectionOf("Fifth", false, map));
    return document;
}

// The values of a location, and the map that shades them.
void AddLocation(Section& section) {
    Table table;
    table.caption = "Wet Prairie, location 1: net value change per acre";
    table.head = {HeadCell("Resource")};
    review::HeatMap map;
    map.largest = 100;
    for (int fil = 1; fil <= 6; ++fil) {
        table.head.push_back(NumberCell("FIL " + std::to_string(fil)));
    }
    for (int row = 0; row < 14; ++row) {
        table.rows.push_back({HeadCell("Timber - Sawtimber")});
        table.rows.back().resize(7, NumberCell("-1250.00"));
        map.rows.emplace_back("Timber - Sawtimber");
        map.values.push_back({-1, -2, -3, -4, -5, -6});
    }
    table.totals = {{HeadCell("Total per acre")}};
    table.totals.back().resize(7, NumberCell("-$1,250"));
    section.blocks.emplace_back(std::move(table));
    section.blocks.emplace_back(std::move(map));
}

// How many pixels of a page are not white.
int InkOn(const QImage& image) {
    int ink = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            ink += image.pixel(x, y) != qRgb(255, 255, 255) ? 1 : 0;
        }
    }
    return ink;
}

QImage Drawn(const reportpdf::Pages& pages, int page, QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    pages.Draw(painter, page);
    return image;
}

TEST(Pages, OfADocument_BeginSectionsWhereTheyShould) {
    const Document document = Made();
    const reportpdf::Pages pages(document, reportpdf::SizeOf(Paper::kA4));
    EXPECT_EQ(pages.PageOf(0), 0);
    EXPECT_EQ(pages.PageOf(1), 1);
    EXPECT_GE(pages.PageOf(2), 3) << "120 rows do not fit on a page";
    EXPECT_EQ(pages.PageOf(3), pages.PageOf(2));
    EXPECT_EQ(pages.PageOf(4), pages.Count() - 1);
}

TEST(Pages, OfEachSizeOfPaper_AllShowSomethingAndStayWithinTheMargins) {
    const Document document = Made();
    for (const QSizeF paper : {reportpdf::SizeOf(Paper::kA4), reportpdf::SizeOf(Paper::kLetter),
                               QSizeF(298, 420), QSizeF(842, 595)}) {
        const reportpdf::Pages pages(document, paper);
        ASSERT_GT(pages.Count(), 3);
        for (int page = 0; page < pages.Count(); ++page) {
            QImage image = Drawn(pages, page, paper.toSize());
            EXPECT_GT(InkOn(image), 100) << page;
            QPainter(&image).fillRect(QRect(48, 20, image.width() - 96, image.height() - 40),
                                      Qt::white);
            EXPECT_EQ(InkOn(image), 0) << "page " << page << " of paper " << paper.width();
        }
    }
}

TEST(Pages, OnPaperThatIsTooSmall_AreThoseOfTheSmallest) {
    const Document document = Made();
    EXPECT_EQ(reportpdf::Pages(document, QSizeF(1, 1)).Count(),
              reportpdf::Pages(document, QSizeF(298, 420)).Count());
}

TEST(Pages, OfAnEmptyDocument_AreOne) {
    const Document document;
    EXPECT_EQ(reportpdf::Pages(document, reportpdf::SizeOf(Paper::kLetter)).Count(), 1);
}

int PagesIn(const QByteArray& pdf) {
    const qsizetype count = pdf.indexOf("/Count ");
    return pdf.mid(count + 7, 6).split('\n').front().split(' ').front().toInt();
}

TEST(Print, OfPageRanges_PrintsTheseOnly) {
    const Document document = Made();
    for (const auto& [ranges, expected] :
         {std::pair(QStringLiteral("2-3"), 2), std::pair(QStringLiteral("1"), 1)}) {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        {
            QPdfWriter writer(&buffer);
            writer.setPageSize(QPageSize(QPageSize::A4));
            writer.setPageRanges(QPageRanges::fromString(ranges));
            reportpdf::Print(document, writer);
        }
        EXPECT_EQ(PagesIn(buffer.data()), expected);
    }
}

TEST(Bookmarks, OfWhatIsNoPdf_AreRefused) {
    for (const char* const bytes :
         {"", "no PDF", "startxref\n5\ntrailer << /Size 3 >>",
          "trailer << /Size 3 /Root 1 0 R /Info 2 0 R >>\nstartxref\n0\n"}) {
        EXPECT_THROW(reportpdf::WithBookmarks(bytes, {{QStringLiteral("A"), 2, 0}}),
                     std::runtime_error);
    }
}

TEST(Pages, BothPapers_HoldTheTablesOfThreeLocations) {
    Document document = Made();
    document.sections.resize(1);
    Section zone = SectionOf("A zone", true, review::Paragraph{"Its tables."});
    zone.blocks.clear();
    for (int i = 0; i < 7; ++i) {
        AddLocation(zone);
    }
    document.sections.push_back(zone);
    for (const Paper paper : {Paper::kA4, Paper::kLetter}) {
        const reportpdf::Pages pages(document, reportpdf::SizeOf(paper));
        EXPECT_EQ(pages.Count(), 4) << "two under the zone's heading, then three and two";
    }
}

}  // namespace
