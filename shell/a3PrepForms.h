// The worksheet manager: the operations that address the current worksheet by its id.
//
// At most one worksheet form is loaded at a time. The frame, the tab strip and the file operations
// never need to know which one it is.
#pragma once

#include <QString>

#include <cstdint>

class QWidget;

namespace a3PrepForms {

// The id of the worksheet that is showing: "INT", "RMA", "SRM", "FMZ", "NVC" or "SCA", empty before
// the first one is shown. Set by the worksheet's own set-up; unloading does not clear it.
[[nodiscard]] const QString& WorksheetID();
void SetWorksheetID(const QString& id);

// Loads the form of this index (1 to Worksheets::Count()) if need be and sets it up; any other
// index does nothing. A form whose set-up fails is unloaded again before the error is passed on:
// what it shows is not what is in the file.
void DisplayWorksheet(std::int16_t index);
// The same for the introduction, which a file that has just been opened begins with.
void SetUpIntroduction();
void PositionWorksheet(QWidget& form);
// Calls the save operations of the current worksheet; nothing while no file is open to save into.
void UpdateCurrentWorksheet();
void UnloadCurrentWorksheet();
// Keeps the tab strip at the lower edge and the worksheet above it.
void ArrangeWorksheets();

// Lets go of the form that is loaded, if any: the last step of unloading, and all of it when the
// program ends.
void UnloadForm();
// The form that is loaded, or null.
[[nodiscard]] QWidget* CurrentForm();

}  // namespace a3PrepForms
