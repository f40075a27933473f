#include "tarnreview/FindingsPage.h"

#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>

#include "platform/EventTrap.h"
#include "platform/controls/ScrolledPage.h"
#include "platform/controls/vsFlexGrid.h"
#include "tarnreview/Charts.h"
#include "tarnreview/Parts.h"
#include "tarnreview/ReviewCase.h"

using platform::ScrolledPage;
using plots::ChartView;

namespace tarnreview {

using Parts::Text;
using platform::EventTrap::Trapped;

namespace {

constexpr int kBesideFrom = 100;  // average characters: narrower windows have the place below
constexpr int kMostOfPlace = 50;
constexpr int kMostOfCell = 60;
constexpr int kMostRows = 18;  // of the place's table; more of them scroll

QString SeverityText(review::Severity severity) {
    switch (severity) {
        case review::Severity::kError:
            return QObject::tr("Error");
        case review::Severity::kWarning:
            return QObject::tr("Warning");
        case review::Severity::kNote:
            break;
    }
    return QObject::tr("Note");
}

QString PlaceText(const review::Finding& finding) {
    const QString place = Text(finding.place.Words());
    return place.isEmpty() ? QObject::tr("The unit") : place;
}

// The sentence, in a row that names the place already.
QString WithoutPlace(const review::Finding& finding) {
    const QString text = Text(finding.text);
    const QString place = Text(finding.place.Words()) + QStringLiteral(": ");
    return text.startsWith(place) ? text.mid(place.size()) : text;
}

}  // namespace

FindingsPage::FindingsPage(const ReviewCase& reviewed, const ChartView::Listener& listener,
                           QWidget* parent)
    : QWidget(parent), case_(reviewed), splitter_(new QSplitter(this)) {
    Parts::Name(*this, "pageFindings", tr("Findings"));
    Parts::Name(*splitter_, "splFindings", tr("Findings and their place"));
    splitter_->setChildrenCollapsible(false);
    splitter_->addWidget(BuildList());
    splitter_->addWidget(BuildPlace(listener));
    splitter_->setStretchFactor(0, 1);
    splitter_->setStretchFactor(1, 1);
    auto* whole = new QVBoxLayout(this);
    whole->addWidget(splitter_);
    setFocusProxy(grdFindings_);
    connect(grdFindings_->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            Trapped("FindingsPage.Choose",
                    [this](const QModelIndex& row, const QModelIndex&) { Choose(row.row()); }));
}

// Grids go before the tables that they show.
FindingsPage::~FindingsPage() {
    grdFindings_->SetTable(nullptr);
    grdPlace_->SetTable(nullptr);
}

QWidget* FindingsPage::BuildList() {
    auto* side = new QWidget(this);
    Parts::Name(*side, "pnlFindings", tr("Findings"));
    auto* column = new QVBoxLayout(side);
    column->setContentsMargins(0, 0, 0, 0);
    lblSummary_ = Parts::Words(side, "lblSummary", tr("Summary of the findings"));
    column->addWidget(lblSummary_);
    grdFindings_ = Parts::List(side, "grdFindings", tr("Findings"),
                               {tr("Kind"), tr("Place"), tr("Finding")}, findings_);
    findings_.SetNameColumn(1);
    grdFindings_->SetRowNameColumn(1);
    column->addWidget(grdFindings_, 1);
    return side;
}

QWidget* FindingsPage::BuildPlace(const ChartView::Listener& listener) {
    auto* scrolled = new ScrolledPage(this, "pagePlace", tr("The place of the finding"));
    auto* column = new QVBoxLayout(&scrolled->Page());
    column->setContentsMargins(0, 0, 0, 0);
    lblPlace_ = Parts::Words(&scrolled->Page(), "lblPlace", tr("Place"));
    QFont bold = lblPlace_->font();
    bold.setBold(true);
    lblPlace_->setFont(bold);
    lblFinding_ = Parts::Words(&scrolled->Page(), "lblFinding", tr("Finding"));
    lblAdvice_ = Parts::Words(&scrolled->Page(), "lblAdvice", tr("Advice"));
    lblTable_ = Parts::Words(&scrolled->Page(), "lblTable", tr("Table"));
    grdPlace_ = Parts::List(&scrolled->Page(), "grdPlace", tr("The table of the place"),
                            {QString()}, place_);
    for (QWidget* one : {static_cast<QWidget*>(lblPlace_), static_cast<QWidget*>(lblFinding_),
                         static_cast<QWidget*>(lblAdvice_), static_cast<QWidget*>(lblTable_)}) {
        column->addWidget(one);
    }
    column->addWidget(grdPlace_);
    pltPlace_ = Charts::Make(scrolled->Page(), "pltPlace", tr("Chart of the place"));
    if (pltPlace_ != nullptr) {
        pltPlace_->SetListener(listener);
        column->addWidget(&pltPlace_->Widget(), 1);
    }
    column->addStretch(1);
    return scrolled;
}

void FindingsPage::ShowFile() {
    std::vector<QStringList> rows;
    for (const review::Finding& finding : case_.Findings()) {
        rows.push_back({SeverityText(finding.severity), PlaceText(finding), WithoutPlace(finding)});
    }
    findings_.SetRows(std::move(rows));
    Parts::ShowRows(*grdFindings_, findings_, kMostOfPlace, RoomOfASide());
    lblSummary_->setText(case_.Summary());
    if (findings_.RowCount() > 0) {
        grdFindings_->Select(grdFindings_->FixedRows(), 0);
    }
    Choose(findings_.RowCount() > 0 ? 0 : -1);
}

void FindingsPage::Choose(int row) {
    const auto& findings = case_.Findings();
    const bool isThere = row >= 0 && row < static_cast<int>(findings.size());
    for (QWidget* part : {static_cast<QWidget*>(lblFinding_), static_cast<QWidget*>(lblAdvice_),
                          static_cast<QWidget*>(lblTable_), static_cast<QWidget*>(grdPlace_)}) {
        part->setVisible(isThere);
    }
    if (pltPlace_ != nullptr) {
        pltPlace_->Widget().setVisible(isThere);
    }
    if (!isThere) {
        lblPlace_->setText(QString());
        return;
    }
    const review::Finding& finding = findings[static_cast<std::size_t>(row)];
    lblFinding_->setText(Text(finding.text));
    lblAdvice_->setText(Text(finding.advice));
    ShowPlace(PlaceOfFinding(*case_.Season(), finding));
    emit Chosen(finding);
}

void FindingsPage::ShowPlace(const PlaceView& view) {
    lblPlace_->setText(view.title.isEmpty() ? Text(view.table.caption) : view.title);
    ShowTable(view.table);
    if (view.row >= 0) {
        grdPlace_->Select(view.row + grdPlace_->FixedRows(), view.column);
    }
    if (pltPlace_ != nullptr) {
        const bool hasChart = !std::holds_alternative<std::monostate>(view.chart);
        pltPlace_->Widget().setVisible(hasChart);
        pltPlace_->Show(view.chart, view.chartTitle, view.chartPlace);
        pltPlace_->Mark(view.spot);
    }
}

void FindingsPage::ShowTable(const review::Table& table) {
    lblTable_->setText(Text(table.caption));
    lblTable_->setVisible(lblTable_->text() != lblPlace_->text());
    std::vector<QStringList> rows;
    const auto add = [&rows](const std::vector<review::Cell>& cells) {
        QStringList& texts = rows.emplace_back();
        for (const review::Cell& cell : cells) {
            texts += Text(cell.text);
        }
    };
    std::for_each(table.rows.begin(), table.rows.end(), add);
    std::for_each(table.totals.begin(), table.totals.end(), add);
    place_.SetRows({});
    grdPlace_->Refresh();
    grdPlace_->SetCols(static_cast<int>(table.head.size()));
    for (int col = 0; col < grdPlace_->Cols(); ++col) {
        const auto at = static_cast<std::size_t>(col);
        grdPlace_->SetTextMatrix(0, col, Text(table.head[at].text));
        const bool isNumber =
            !table.rows.empty() && at < table.rows[0].size() && table.rows[0][at].isNumber;
        const auto side = isNumber ? Qt::AlignRight : Qt::AlignLeft;
        grdPlace_->horizontalHeader()->setStretchLastSection(!isNumber);
        grdPlace_->SetColAlignment(col, side | Qt::AlignVCenter);
        grdPlace_->SetFixedAlignment(col, side | Qt::AlignVCenter);
    }
    place_.SetRows(std::move(rows));
    Parts::ShowRows(*grdPlace_, place_, kMostOfCell, RoomOfASide());
    // All of a table of this size is seen at once.
    const int height = grdPlace_->horizontalHeader()->sizeHint().height() +
                       grdPlace_->verticalHeader()->length() + 2 * grdPlace_->frameWidth() +
                       grdPlace_->horizontalScrollBar()->sizeHint().height();
    const int most = kMostRows * grdPlace_->verticalHeader()->defaultSectionSize();
    grdPlace_->setFixedHeight(std::min(height, most));
}

int FindingsPage::RoomOfASide() const {
    return splitter_->orientation() == Qt::Horizontal ? window()->width() / 2 : window()->width();
}

void FindingsPage::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const bool isWide = width() >= kBesideFrom * fontMetrics().averageCharWidth();
    const Qt::Orientation side = isWide ? Qt::Horizontal : Qt::Vertical;
    if (side != splitter_->orientation() || !isDivided_) {
        isDivided_ = true;
        splitter_->setOrientation(side);
        // What the parts would take by themselves depends on the longest word at the place.
        const int half = (isWide ? width() : height()) / 2;
        splitter_->setSizes({half, half});
    }
}

}  // namespace tarnreview
