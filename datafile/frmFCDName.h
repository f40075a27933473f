// The dialog that names a new data file: unit identifier, state and year make up the title, and the
// ID Finder helps to find the unit in the table of unit names.
#pragma once

#include <QDialog>
#include <QString>

#include <cstdint>

#include "datafile/UnitFinder.h"

class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;
class SSPanel;
class vsFlexGrid;

namespace datafile {
class UnitBox;
}

class frmFCDName : public QDialog {
    Q_OBJECT

public:
    enum class Status : std::int16_t { kChosen = 1, kCancelled = 2, kNoUnitNames = 3 };
    using enum Status;

    struct Outcome {
        Status fileStatus = kCancelled;
        QString fileName;
        QString unitDescription;
    };

    // Shows the dialog over `frame` (may be null) until a name is chosen or it is cancelled.
    static Outcome ShowModal(QWidget* frame);

    explicit frmFCDName(QWidget* frame);

    // Opens the unit names and fills the year. False, and the dialog is unloaded, when they cannot
    // be opened.
    bool Load();
    void Unload();
    [[nodiscard]] const Outcome& Result() const { return outcome_; }

    void SetupGrid();
    bool OpenNameTables();
    void CloseNameTables();
    datafile::UnitFinder::Code GetUnit(const QString& id);
    datafile::UnitFinder::Code GetUnitState(const QString& id, const QString& state);
    void GetMatchingIDs(const QString& text);
    void GetMatchingNames(const QString& text);
    void CreateFileTitle();

    void reject() override;

protected:
    void changeEvent(QEvent* event) override;

private:
    static constexpr int kIDLength = 3;
    static constexpr int kStateLength = 2;
    static constexpr int kYearLength = 2;
    static constexpr int kWholeYearLength = 4;  // as some people type it: shortened at once
    static constexpr int kUnitNameLength = 100;
    static constexpr QLatin1String kFileExtension{".FCD"};
    // Widths of the finder's columns, in twips.
    static constexpr int kNameWidth = 3240;
    static constexpr int kCodeWidth = 600;

    void CreateControls();
    void NameControls();
    void LayOutControls();
    void SizeBoxes();
    QLayout* LayOutQuestions();
    QLayout* LayOutUnitRow();
    QLayout* LayOutTitleRow();
    QLayout* LayOutFinder();
    void ConnectHandlers();

    void txtUnitID_Change();
    void txtUnitName_Change();
    void txtState_Change();
    void txtYear_Change();
    void grdUnits_Click();
    void cmdOK_Click();
    void cmdCancel_Click();

    // Composes the title and names the unit; false when the table has none of that state.
    bool LookUpState();
    void ShowUnitName(const QString& name);
    // `column` is the one that was searched for `text`.
    void ShowUnits(const datafile::UnitFinder::Listing& listing, int column, const QString& text);
    // Selects the whole row of the list's current unit.
    void MarkCurrentUnit();
    // Marks the unit that the boxes name, and lists it first where it is not listed.
    void MarkUnit(const QString& id, const QString& state);
    void FitTitleBox();
    [[nodiscard]] bool ListShows(const QString& id) const;
    // Empties the title when the boxes no longer spell it, so that no file is made under the name
    // of a unit that was found before.
    void DropStaleTitle();

    datafile::UnitFinder finder_;
    QString reason_;  // why the unit names could not be opened
    Outcome outcome_;
    bool loaded_ = false;
    bool yearIsMissing_ = false;  // the title was dropped only because the year is being retyped

    datafile::UnitBox* txtUnitID_ = nullptr;
    QLineEdit* txtUnitName_ = nullptr;
    datafile::UnitBox* txtState_ = nullptr;
    datafile::UnitBox* txtYear_ = nullptr;
    QLineEdit* txtFileTitle_ = nullptr;
    QLabel* lblExtension_ = nullptr;
    QLabel* lblTie_ = nullptr;
    SSPanel* Panel3D1_ = nullptr;
    vsFlexGrid* grdUnits_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
};
