// The record sets that are open while a data file is open, each with its index "PrimaryKey".
// Worksheets and the import use these and open none of their own on the data file.
#pragma once

#include <QStringList>

#include <memory>

#include "platform/dao/Database.h"
#include "platform/dao/Recordset.h"

namespace PrepDatatables {

// Each is null while no file is open; dereferencing one then throws "object variable not set" (91).
class Table {
public:
    dao::Recordset* operator->() const;
    dao::Recordset& operator*() const;
    explicit operator bool() const { return records_ != nullptr; }
    void Open(dao::Database& database, const char* name);
    void Close();

private:
    std::unique_ptr<dao::Recordset> records_;
};

extern std::unique_ptr<dao::Database> dbDatafile;
extern Table tblProperties;
extern Table tblManagementGoals;
extern Table tblFMZList;
extern Table tblSuppressionPerAcreCost;
extern Table tblSRMasterList;
extern Table tblNVCResources;
extern Table tblNVCPerAcre;

// Makes one of all changes to the data file up to Commit: all are stored, or none. One for each
// action of the user; where an action is a part of another one, its transaction joins the other's
// (Transaction.h). "Object variable not set" (91) while no file is open.
[[nodiscard]] dao::Transaction Begin();

// The tables other than Properties, which OpenRecordsets opens.
QStringList TableNames();
// Opens the six tables other than Properties and sets their indexes. An error is shown like a
// file that cannot be opened, everything is closed again and the result is false.
bool OpenRecordsets();
// Closes the record sets and the database; whatever of them is open. All are closed even when an
// error comes up, which is thrown at the end.
void CloseDatafile();
// The same without an entry in the log.
void CloseAll();
// Rises with every closing. What belongs to one open file and is kept elsewhere, such as what can
// be taken back, compares it to find out that the file is no longer the same.
[[nodiscard]] int Openings();

}  // namespace PrepDatatables
