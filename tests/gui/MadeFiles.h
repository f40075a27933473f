// Data files that open and then get in the program's way.
#pragma once

#include <QString>

#include "jet/database.h"
#include "jet/recordset.h"

// A data file that opens but takes no further property, so that its unit name cannot be added.
inline void MakeFileWithFullProperties(const QString& path) {
    const auto file = jet::Database::Create(path.toStdU16String(), jet::Version::kJet4);
    const jet::IndexSchema onKey{"PrimaryKey", {{"Key"}}, true, true};
    for (const char* name : {"ManagementGoals", "FMZList", "SuppressionPerAcreCost", "SRMasterList",
                             "NVCResources", "NVCPerAcre"}) {
        file->CreateTable({name, {{"Key", jet::ColumnType::kLong}}, {onKey}});
    }
    jet::ColumnSchema filled{"Filled", jet::ColumnType::kLong};
    filled.required = true;
    file->CreateTable(
        {"Properties",
         {{"Property", jet::ColumnType::kText, 50}, {"Value", jet::ColumnType::kText, 255}, filled},
         {{"PrimaryKey", {{"Property"}}, true, true},
          {"Filled", {{"Filled"}}, false, false, false, true}}});
    const auto rows = file->OpenTable("Properties");
    rows->AddNew();
    rows->Set("Property", u"DataFormatID");
    rows->Set("Value", u"4.01.01");
    rows->Set("Filled", 1);
    rows->Update();
    file->Close();
}

// Leaves an assessment file without one of its set-ups.
inline void RemoveASetup(const QString& path) {
    const auto file = jet::Database::Open(path.toStdU16String());
    const auto rows = file->OpenTable("NVCSetup");
    rows->MoveFirst();
    rows->Delete();
    file->Close();
}
