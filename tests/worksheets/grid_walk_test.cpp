// Thousands of steps of a person on each grid of figures.
#include "GridWalk.h"

#include "datafile/FieldReaders.h"
#include "datafile/ZoneKeys.h"
#include "platform/controls/SSPanel.h"
#include "support/sanitizers.h"
#include "worksheets/cost/frm6SuppressAcre.h"
#include "worksheets/nvc/frm5NVCTable.h"
#include "worksheets/zones/ZoneRecords.h"

using namespace PrepDatatables;
using FieldReaders::SingleField;
using FieldReaders::TextField;

namespace {

constexpr int kSteps = 5000 / support::kOneOf;

class FigureWalk : public GridWalk {
protected:
    void SetUp() override {
        GridWalk::SetUp();
        zones_ = {ZoneRecords::Create(QStringLiteral("North"), 2),
                  ZoneRecords::Create(QString(), 3)};
    }
    static QString ResourceName(int resource) {
        tblNVCResources->Seek("=", {resource});
        return TextField(*tblNVCResources, QStringLiteral("ResourceName"));
    }
    // The names, each followed by its values, of one location.
    static QStringList Location(int zoneKey, int location) {
        QStringList texts;
        for (int resource = 1; resource <= ZoneKeys::kResources; ++resource) {
            texts += ResourceName(resource);
            tblNVCPerAcre->Seek("=", {ZoneKeys::FMZRLKey(zoneKey, location), resource});
            for (int level = 1; level <= ZoneKeys::kFilLevels; ++level) {
                texts +=
                    platform::Str(SingleField(*tblNVCPerAcre, QStringLiteral("FIL%1").arg(level)));
            }
        }
        return texts;
    }
    // Sizes up to 0 show as nothing.
    static QStringList Costs(int zoneKey) {
        QStringList texts;
        for (int index = 1; index <= ZoneKeys::kCostClasses; ++index) {
            tblSuppressionPerAcreCost->Seek("=", {zoneKey, index});
            const float size = SingleField(*tblSuppressionPerAcreCost, QStringLiteral("TopSize"));
            texts += size == 0 ? QString() : platform::Str(size);
            texts += platform::Str(SingleField(*tblSuppressionPerAcreCost, QStringLiteral("Cost")));
        }
        return texts;
    }
    int Chosen(const char* box) { return Find<QComboBox>(box).currentIndex(); }

    std::vector<int> zones_;
};

TEST_F(FigureWalk, NetValueChange_ShowsWhatIsStoredOrMarksIt) {
    Load<frm5NVCTable>();
    WalkedSheet sheet{.worksheetID = "NVC", .grid = "grdNVC"};
    sheet.shownInFile = [this] {
        return Location(zones_[std::size_t(Chosen("cboFMZs"))], Chosen("cboRepLocs") + 1);
    };
    sheet.file = [this] {
        return Location(zones_[0], 1) + Location(zones_[0], 2) + Location(zones_[1], 1) +
               Location(zones_[1], 2) + Location(zones_[1], 3);
    };
    sheet.wrongBeside = [this] {
        for (int level = 1; level <= ZoneKeys::kFilLevels; ++level) {
            const QString name = QStringLiteral("pnlAcreImpact_%1").arg(level);
            const QString total = Find<SSPanel>(name.toLatin1().constData()).Caption();
            double sum = 0;
            for (int row = 1; row <= ZoneKeys::kResources; ++row) {
                sum += platform::Val(Grid("grdNVC").Table()->Stored(row, level));
            }
            if (std::abs(platform::CDbl(total) - sum) > 0.51 + std::abs(sum) * 1e-6) {
                return QStringLiteral("%1 %2 for %3").arg(name, total).arg(sum);
            }
        }
        return QString();
    };
    sheet.others = {[this] { Press(Qt::Key_Down, Qt::AltModifier); },
                    [this] { Press(Qt::Key_Up, Qt::AltModifier); },
                    [this] { Choose("cboRepLocs", Below(2)); },
                    [this] { Choose("cboFMZs", Below(2)); }};
    Walk(sheet, kSteps);
}

TEST_F(FigureWalk, Costs_ShowWhatIsStoredOrMarkIt) {
    Load<frm6SuppressAcre>();
    WalkedSheet sheet{.worksheetID = "SCA", .grid = "grdCosts"};
    sheet.firstStored = 1;
    sheet.shownInFile = [this] { return Costs(zones_[std::size_t(Chosen("cboFMZs"))]); };
    sheet.file = [this] { return Costs(zones_[0]) + Costs(zones_[1]); };
    sheet.others = {[this] { Choose("cboFMZs", Below(2)); },
                    [this] { Press(Qt::Key_PageDown, Qt::AltModifier); }};
    Walk(sheet, kSteps);
}

}  // namespace
