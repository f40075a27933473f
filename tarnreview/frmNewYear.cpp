#include "tarnreview/frmNewYear.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "platform/controls/ScrolledPage.h"
#include "platform/help/HelpViewer.h"
#include "season/file_name.h"
#include "tarnreview/Parts.h"

namespace tarnreview {

namespace {

constexpr int kHelpContextId = 92;
constexpr int kYears = 100;

// The year after that of the file's name, or of the unit's.
int NextYearOf(const season::Season& season) {
    if (const auto name = season::ParseFileName(season.path)) {
        return (name->year + 1) % kYears;
    }
    const auto year = season::YearOfUnitName(season.PropertyText("UnitName"));
    return year ? (*year + 1) % kYears : 0;
}

}  // namespace

frmNewYear::frmNewYear(const season::Season& season, QWidget* parent)
    : QDialog(parent), txtYear_(new QSpinBox(this)), lstZones_(new QListWidget(this)) {
    Parts::Name(*this, "frmNewYear", tr("New Year"));
    setWindowTitle(tr("New Year's File"));
    platform::SetHelpContextId(*this, kHelpContextId);
    QLabel* lblYear = platform::NamedLabel(this, "lblYear", tr("&Year, last two digits"));
    platform::NameByLabel(*txtYear_, "txtYear", *lblYear);
    txtYear_->setRange(0, kYears - 1);
    txtYear_->setValue(NextYearOf(season));
    QLabel* lblZones = platform::NamedLabel(this, "lblZones", tr("&Zones of the new file"));
    platform::NameByLabel(*lstZones_, "lstZones", *lblZones);
    for (const season::Zone& zone : season.zones) {
        auto* item =
            new QListWidgetItem(Parts::Text(std::string(season::Words(zone.name))), lstZones_);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Checked);
    }
    auto* lblHint = Parts::Words(this, "lblHint", tr("Hint"));
    lblHint->setText(
        tr("Everything is copied as it is; only the year in the unit's name changes. "
           "Clear the mark of a zone to leave it out."));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    Parts::Name(*buttons->button(QDialogButtonBox::Ok), "cmdOK", tr("OK"));
    Parts::Name(*buttons->button(QDialogButtonBox::Cancel), "cmdCancel", tr("Cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* column = new QVBoxLayout(this);
    for (QWidget* one : {static_cast<QWidget*>(lblYear), static_cast<QWidget*>(txtYear_),
                         static_cast<QWidget*>(lblZones)}) {
        column->addWidget(one);
    }
    column->addWidget(lstZones_, 1);
    column->addWidget(lblHint);
    column->addWidget(buttons);
}

int frmNewYear::Year() const {
    return txtYear_->value();
}

std::vector<std::string> frmNewYear::DroppedZones() const {
    std::vector<std::string> names;
    for (int row = 0; row < lstZones_->count(); ++row) {
        if (lstZones_->item(row)->checkState() == Qt::Unchecked) {
            names.push_back(lstZones_->item(row)->text().toStdString());
        }
    }
    return names;
}

}  // namespace tarnreview
