// Files of older formats, made by code: taken, converted or refused.
#include <gtest/gtest.h>

#include <QDir>

#include <optional>
#include <string>

#include "data_file_fixture.h"
#include "datafile/FieldNames.h"
#include "datafile/PrepProperties.h"
#include "jet/database.h"
#include "jet/recordset.h"
#include "season/schema.h"
#include "support/Answers.h"
#include "support/Corpus.h"
#include "tools/TableText.h"

using PrepDatatables::tblManagementGoals;

namespace {

const QString kNotPrepFile =
    QStringLiteral("The file does not appear to be a TARN Prep file.  It cannot be opened.");
const QString kIncompatible = QStringLiteral(
    "This file uses an incompatible format and cannot be opened using TARN Prep 03.");
const QString kCurrent = QStringLiteral("4.01.01");

// What sets a file apart from the usual one of its format.
struct Oddity {
    std::string missingTable;
    std::optional<std::string> secondOwner;  // of the value that the conversion stores
};

// A file with a row or more in each table. No format at all: the property is missing.
void MakeFile(const QString& path, const std::optional<std::string>& format,
              const Oddity& oddity = {}) {
    const auto file = jet::Database::Create(path.toStdU16String(), jet::Version::kJet4);
    for (jet::TableSchema table : season::Tables()) {
        const bool isOld = format == "3.00.00" && table.name == "ManagementGoals";
        if (isOld || table.name == oddity.missingTable) {
            continue;
        }
        if (table.name == "Properties" && oddity.secondOwner) {
            jet::IndexSchema values = tools::Index("Values", {"Value"});
            values.unique = true;
            table.indexes.push_back(values);
        }
        file->CreateTable(table);
    }
    if (format) {
        tools::AddRows(*file, "Properties", {{{"Property", "DataFormatID"}, {"Value", *format}}});
    }
    if (oddity.secondOwner) {
        tools::AddRows(*file, "Properties",
                       {{{"Property", *oddity.secondOwner}, {"Value", kCurrent.toStdString()}}});
    }
    tools::AddRows(*file, "Properties", {{{"Property", "UnitName"}, {"Value", "North '04"}}});
    if (file->HasTable("FMZList")) {
        tools::AddRows(*file, "FMZList", {{{"Name", "A1-Ridge"}, {"RLCount", "1"}}});
    }
    tools::AddRows(*file, "SuppressionPerAcreCost",
                   {{{"FMZKey", "1"}, {"Sequence", "1"}, {"TopSize", "10"}, {"Cost", "250.5"}}});
    tools::AddRows(*file, "SRMasterList",
                   {{{"Sequence", "1"}, {"LongName", "Engine"}, {"Cost", "900"}}});
    tools::AddRows(*file, "NVCPerAcre",
                   {{{"FMZRLKey", "101"}, {"ResourceNumber", "14"}, {"FIL6", "-2.5"}}});
    tools::AddRows(*file, "NVCResources", {{{"Key", "14"}, {"ResourceName", "Bridges"}}});
    file->Close();
}

class ConversionTest : public DataFileTest {
protected:
    QString Made(const std::optional<std::string>& format, const Oddity& oddity = {}) {
        const QString path = folder_.CostsPath(QStringLiteral("Older.fcd"));
        QFile::remove(path);
        MakeFile(path, format, oddity);
        return path;
    }
    void ExpectRefused(const QString& path, const QString& text) const {
        const QByteArray before = support::Bytes(path);
        const support::Answers answers;
        EXPECT_FALSE(PrepDatafile::OpenDatatables(path) && PrepDatatables::OpenRecordsets());
        EXPECT_EQ(answers.Texts(), QStringList(text));
        EXPECT_FALSE(PrepDatafile::IsDatafileOpen());
        EXPECT_EQ(support::Bytes(path), before);
        EXPECT_EQ(QDir(QFileInfo(path).path()).entryList({QStringLiteral("*-log")}), QStringList());
    }
    // The rows that MakeFile has put there.
    static void ExpectRowsKept() {
        EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("UnitName")),
                  QStringLiteral("North '04"));
        EXPECT_EQ(PrepDatatables::tblFMZList->RecordCount(), 1);
        EXPECT_EQ(PrepDatatables::tblFMZList->Text(FieldNames::kName), QStringLiteral("A1-Ridge"));
        EXPECT_EQ(PrepDatatables::tblSuppressionPerAcreCost->Single(FieldNames::kCost), 250.5F);
        EXPECT_EQ(PrepDatatables::tblSRMasterList->Text(FieldNames::kLongName),
                  QStringLiteral("Engine"));
        EXPECT_EQ(PrepDatatables::tblNVCPerAcre->Single(QStringLiteral("FIL6")), -2.5F);
        EXPECT_EQ(PrepDatatables::tblNVCResources->Text(FieldNames::kResourceName),
                  QStringLiteral("Bridges"));
    }
    static QString Format() { return PrepProperties::GetProperty(QStringLiteral("DataFormatID")); }
    // What the file holds although the user has changed nothing.
    void ExpectStoredAsCurrent(const QString& path) {
        PrepDatafile::CloseDatafile();
        EXPECT_EQ(support::Complaints(path, false), QString());
        const QByteArray stored = support::Bytes(path);
        OpenFile(path);
        EXPECT_EQ(Format(), kCurrent);
        ExpectRowsKept();
        PrepDatafile::CloseDatafile();
        EXPECT_EQ(support::Bytes(path), stored) << "opening it again changes nothing";
    }
};

TEST_F(ConversionTest, SameTables_AreRelabeledAndStored) {
    for (const char* format : {"4.00.00", "3.92.00"}) {
        SCOPED_TRACE(format);
        const QString path = Made(format);
        OpenFile(path);
        EXPECT_EQ(Format(), kCurrent);
        ExpectRowsKept();
        EXPECT_EQ(tblManagementGoals->RecordCount(), 0);
        ExpectStoredAsCurrent(path);
        EXPECT_FALSE(folder_.Trace().contains(QStringLiteral("   PrepDatafile.Convert3to4")));
    }
}

TEST_F(ConversionTest, CurrentFormat_IsTakenAsItIs) {
    const QString path = Made(kCurrent.toStdString());
    const QByteArray before = support::Bytes(path);
    OpenFile(path);
    ExpectRowsKept();
    PrepDatafile::CloseDatafile();
    EXPECT_EQ(support::Bytes(path), before);
}

TEST_F(ConversionTest, WithoutGoals_GetsTheTableWithCounterTextMemoAndKey) {
    const QString path = Made("3.00.00");
    OpenFile(path);
    EXPECT_TRUE(folder_.Trace().contains(QStringLiteral("   PrepDatafile.Convert3to4")));
    EXPECT_EQ(Format(), kCurrent);
    ExpectRowsKept();
    EXPECT_EQ(tblManagementGoals->Index(), FieldNames::kPrimaryKey);
    ExpectStoredAsCurrent(path);
    OpenFile(path);
    for (int key = 1; key <= 2; ++key) {
        tblManagementGoals->AddNew();
        tblManagementGoals->SetField(FieldNames::kManagementArea, QString(100, u'x'));
        tblManagementGoals->SetField(FieldNames::kExplanation, QString(5000, u'y'));
        tblManagementGoals->Update();
        tblManagementGoals->Seek("=", {key});
        ASSERT_FALSE(tblManagementGoals->NoMatch());
        EXPECT_EQ(tblManagementGoals->Text(FieldNames::kExplanation).size(), 5000);
    }
    tblManagementGoals->AddNew();
    EXPECT_THROW(tblManagementGoals->SetField(FieldNames::kManagementArea, QString(101, u'x')),
                 platform::RuntimeError);
    tblManagementGoals->CancelUpdate();
    PrepDatafile::CloseDatafile();
    const auto file = jet::Database::Open(path.toStdU16String());
    bool found = false;
    for (const jet::IndexSchema& index : file->Describe("ManagementGoals").indexes) {
        found = found || (index.name == "PrimaryKey" && index.primary && index.unique);
    }
    EXPECT_TRUE(found);
}

TEST_F(ConversionTest, OtherFormats_AreRefusedUntouched) {
    for (const char* format : {"5.02.00", "4.01.00", "4.01.011", "3.00.01", "4.01.01 x", "0"}) {
        SCOPED_TRACE(format);
        ExpectRefused(Made(format), kIncompatible);
    }
    ExpectRefused(Made(std::nullopt), kIncompatible);
    ExpectRefused(Made(""), kIncompatible);
}

TEST_F(ConversionTest, TableMissing_IsRefusedBeforeAnythingIsChanged) {
    for (const char* format : {"3.00.00", "4.00.00", "3.92.00", "4.01.01"}) {
        SCOPED_TRACE(format);
        ExpectRefused(Made(format, {.missingTable = "FMZList", .secondOwner = {}}), kNotPrepFile);
    }
    ExpectRefused(Made("4.00.00", {.missingTable = "ManagementGoals", .secondOwner = {}}),
                  kNotPrepFile);
}

// The second of its two steps is refused: the first is undone as well.
TEST_F(ConversionTest, SecondStepFails_FileIsAsItWas) {
    ExpectRefused(Made("3.00.00", {.missingTable = {}, .secondOwner = "Other"}), kNotPrepFile);
}

}  // namespace
