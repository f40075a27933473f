#include "tarnreview/SaveAs.h"

#include <QDate>
#include <QStringList>

#include <stdexcept>
#include <system_error>
#include <utility>

#include "reportpdf/report_pages.h"
#include "review/difference_page.h"
#include "review/html.h"
#include "review/new_files.h"
#include "review/plain_tables.h"
#include "review/wording.h"
#include "review/workbook.h"
#include "season/text.h"
#include "tarnreview/ReviewCase.h"

using tarnreview::ReviewCase;

namespace fs = std::filesystem;

namespace {

void RequireOther(const fs::path& path, const season::Season* source) {
    std::error_code absent;
    if (source != nullptr && fs::equivalent(path, source->path, absent)) {
        throw std::runtime_error("This is the data file that is looked at. Choose another name.");
    }
}

void SaveText(const fs::path& path, std::string text) {
    try {
        review::SaveFiles({{path, std::move(text)}});
    } catch (const std::system_error& error) {
        throw std::runtime_error(review::WhyNotWritten(error.code()));
    }
}

void SaveWorkbook(const fs::path& path, const season::Season& season) {
    try {
        review::WriteWorkbook(season, path);
    } catch (const std::system_error& error) {
        throw std::runtime_error(review::WhyNotWritten(error.code()));
    }
}

}  // namespace

namespace SaveAs {

std::string Today() {
    return QDate::currentDate().toString(Qt::ISODate).toStdString();
}

QStringList Filters(const ReviewCase& reviewed) {
    QStringList filters{QObject::tr("Report (*.pdf)"), QObject::tr("Report as a web page (*.html)"),
                        QObject::tr("Workbook (*.xlsx)"),
                        QObject::tr("All figures as JSON (*.json)")};
    if (reviewed.Previous() != nullptr) {
        filters += QObject::tr("Differences as a web page (*.html)");
    }
    return filters;
}

void Save(const ReviewCase& reviewed, What what, const fs::path& path) {
    RequireOther(path, reviewed.Season());
    RequireOther(path, reviewed.Previous());
    const std::string ending = season::Folded(path.extension().string());
    const bool isPage = ending == ".html" || ending == ".htm";
    if (what == What::kDifferences && isPage) {
        SaveText(path,
                 review::HtmlOf(review::DifferencePage(*reviewed.Previous(), *reviewed.Season())));
    } else if (ending == ".pdf") {
        SaveText(path,
                 reportpdf::PdfOf(reviewed.Report(Today()), reportpdf::UsualPaper()).toStdString());
    } else if (isPage) {
        SaveText(path, review::HtmlOf(reviewed.Report(Today())));
    } else if (ending == ".xlsx") {
        SaveWorkbook(path, *reviewed.Season());
    } else if (ending == ".json") {
        SaveText(path, review::JsonOfTables(review::PlainTables(*reviewed.Season())));
    } else {
        throw std::runtime_error("The name must end in .pdf, .html, .xlsx or .json.");
    }
}

}  // namespace SaveAs
