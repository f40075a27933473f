// What each grid looks like: its headings, widths and alignments, how it shows figures, how much
// its cells take.
#include <array>
#include <string>

#include "worksheet_fixture.h"
#include "worksheets/cost/c35AACTable.h"
#include "worksheets/cost/frm6SuppressAcre.h"
#include "worksheets/nvc/c34NVCTable.h"
#include "worksheets/nvc/frm5NVCTable.h"
#include "worksheets/resources/ResourceRecords.h"
#include "worksheets/resources/frm3SRMaster.h"
#include "worksheets/zones/ZoneRecords.h"
#include "worksheets/zones/frm4FMZs.h"

using worksheets::Resource;

namespace {

constexpr int kLeft = int(Qt::AlignLeft | Qt::AlignVCenter);
constexpr int kCenter = int(Qt::AlignCenter);
constexpr int kRight = int(Qt::AlignRight | Qt::AlignVCenter);

struct Column {
    const char* heading;
    int twips;
    int alignment;
    int length;
};

class ShapeTest : public WorksheetTest {
protected:
    // The columns as given; the editor of the first data row takes so many characters.
    void ExpectColumns(const char* name, const std::vector<Column>& columns) {
        vsFlexGrid& grid = Grid(name);
        const int row = grid.FixedRows();
        for (int col = 0; col < int(columns.size()); ++col) {
            SCOPED_TRACE(col);
            const Column& column = columns[std::size_t(col)];
            EXPECT_EQ(grid.TextMatrix(row - 1, col).toStdString(), column.heading);
            EXPECT_EQ(grid.ColWidth(col), column.twips);
            const QModelIndex cell = grid.model()->index(0, col);
            EXPECT_EQ(cell.data(Qt::TextAlignmentRole).toInt(), column.alignment);
            ExpectLength(grid, row, col, column.length);
        }
    }
    // 0 where the cell takes nothing.
    void ExpectLength(vsFlexGrid& grid, int row, int col, int length) {
        grid.setFocus();
        grid.Select(row, col);
        Type(QString(length + 1, u'1'));
        EXPECT_EQ(grid.Editing(), length > 0);
        EXPECT_EQ(grid.EditText().size(), length);
        Press(Qt::Key_Escape);
    }
    static std::string Shown(const vsFlexGrid& grid, int row, int col) {
        return grid.DisplayText(row, col).toStdString();
    }
};

TEST_F(ShapeTest, Resources) {
    for (const float cost : {1250.0F, 0.0F}) {
        Resource resource;
        resource.cost = cost;
        ResourceRecords::Add(resource);
    }
    Load<frm3SRMaster>();
    ExpectColumns("grdMasterList", {{"#", 480, kCenter, 4},
                                    {"Name", 3600, kLeft, 50},
                                    {"Short Name", 1500, kLeft, 20},
                                    {"Units", 900, kCenter, 10},
                                    {"Cost", 1320, kRight, 5}});
    const vsFlexGrid& grid = Grid("grdMasterList");
    EXPECT_EQ(grid.Cols(), 6);
    EXPECT_EQ(grid.FixedRows(), 1);
    EXPECT_TRUE(grid.ColHidden(5));
    EXPECT_EQ(Shown(grid, 1, 4), "$1,250");
    EXPECT_EQ(Shown(grid, 2, 4), "$0");
}

TEST_F(ShapeTest, Zones) {
    ZoneRecords::Create(QStringLiteral("North"), 12);
    Load<frm4FMZs>();
    ExpectColumns("grdFMZs",
                  {{"Fire Management Zone", 3600, kLeft, 46}, {"# RLs", 720, kCenter, 3}});
    EXPECT_EQ(Grid("grdFMZs").Cols(), 2);
    EXPECT_EQ(Grid("grdFMZs").FixedRows(), 1);
    EXPECT_EQ(Shown(Grid("grdFMZs"), 1, 1), "12");
}

TEST_F(ShapeTest, NetValueChange) {
    c34NVCTable table;
    table.Initialize(ZoneRecords::Create(QStringLiteral("North"), 1), 1);
    table.NVCCellValue(1, 1, -1250.5F);
    table.NVCCellValue(14, 6, 0.25F);
    table.SaveChanges();
    Load<frm5NVCTable>();
    ExpectColumns("grdNVC", {{"", 2640, kLeft, 50},
                             {"FIL 1", 1020, kRight, 10},
                             {"FIL 2", 1020, kRight, 10},
                             {"FIL 3", 1020, kRight, 10},
                             {"FIL 4", 1020, kRight, 10},
                             {"FIL 5", 1020, kRight, 10},
                             {"FIL 6", 1020, kRight, 10}});
    const vsFlexGrid& grid = Grid("grdNVC");
    EXPECT_EQ(grid.Rows(), 15);
    EXPECT_EQ(grid.Cols(), 7);
    EXPECT_EQ(grid.FixedRows(), 1);
    EXPECT_EQ(Shown(grid, 1, 1), "-1250.50");
    EXPECT_EQ(Shown(grid, 14, 6), ".25");
    EXPECT_EQ(Shown(grid, 2, 1), ".00");
}

TEST_F(ShapeTest, CostsPerAcre) {
    c35AACTable table;
    table.Initialize(ZoneRecords::Create(QStringLiteral("North"), 1));
    table.TopSize(1, 1234.5F);
    table.Cost(1, 1250);
    table.SaveChanges();
    Load<frm6SuppressAcre>();
    ExpectColumns("grdCosts", {{"From", 1400, kRight, 0},
                               {"To", 1400, kRight, 9},
                               {"Suppression cost\rper acre", 1440, kRight, 7}});
    const vsFlexGrid& grid = Grid("grdCosts");
    EXPECT_EQ(grid.Rows(), 11);
    EXPECT_EQ(grid.Cols(), 3);
    EXPECT_EQ(grid.FixedRows(), 2);
    EXPECT_EQ(grid.TextMatrix(0, 0).toStdString(), "Fire size, in acres");
    EXPECT_EQ(grid.TextMatrix(0, 1).toStdString(), "Fire size, in acres");
    EXPECT_EQ(grid.TextMatrix(0, 2).toStdString(), "Suppression cost\rper acre");
    EXPECT_EQ(Shown(grid, 2, 1), "1,234.50");
    EXPECT_EQ(Shown(grid, 3, 0), "1,235.00");
    EXPECT_EQ(Shown(grid, 2, 2), "$1,250");
    EXPECT_EQ(Shown(grid, 3, 1), "");
}

}  // namespace
