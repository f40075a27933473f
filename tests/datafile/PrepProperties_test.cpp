#include <gtest/gtest.h>

#include "data_file_fixture.h"
#include "datafile/FieldReaders.h"
#include "datafile/PrepProperties.h"
#include "support/system.h"

using PrepDatatables::tblFMZList;
using PrepDatatables::tblProperties;
using PrepDatatables::tblSRMasterList;

namespace {

class PropertiesTest : public DataFileTest {
protected:
    PropertiesTest() { OpenNewFile(); }
};

TEST_F(PropertiesTest, GetProperty_Missing_IsEmptyAndAddsNothing) {
    const int before = tblProperties->RecordCount();
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("UnitName")), QString());
    EXPECT_EQ(tblProperties->RecordCount(), before);
}

TEST_F(PropertiesTest, GetPropertyWithDefault_Missing_AddsIt) {
    const int before = tblProperties->RecordCount();
    EXPECT_EQ(
        PrepProperties::GetPropertyWithDefault(QStringLiteral("Color"), QStringLiteral("red")),
        QStringLiteral("red"));
    EXPECT_EQ(tblProperties->RecordCount(), before + 1);
    EXPECT_EQ(
        PrepProperties::GetPropertyWithDefault(QStringLiteral("Color"), QStringLiteral("blue")),
        QStringLiteral("red"));
    EXPECT_EQ(tblProperties->RecordCount(), before + 1);
}

TEST_F(PropertiesTest, SetProperty_NewThenChanged_IsStored) {
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("Here '26"));
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("unitname")), QStringLiteral("Here '26"));
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("There '27"));
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("UnitName")), QStringLiteral("There '27"));
}

TEST_F(PropertiesTest, SetProperty_SameValue_WritesNothing) {
    if (!support::kOthersReachHeldFiles) {
        GTEST_SKIP() << "what is in a file that is held cannot be read there";
    }
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("Here"));
    PrepDatafile::MakeDurable();
    const QByteArray before = support::Bytes(PrepDatafile::CurrentPath());
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("Here"));
    PrepDatafile::MakeDurable();
    EXPECT_EQ(support::Bytes(PrepDatafile::CurrentPath()), before);
}

TEST_F(PropertiesTest, SetProperty_OtherCase_IsAChange) {
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("here"));
    PrepProperties::SetProperty(QStringLiteral("UnitName"), QStringLiteral("HERE"));
    EXPECT_EQ(PrepProperties::GetProperty(QStringLiteral("UnitName")), QStringLiteral("HERE"));
}

TEST_F(PropertiesTest, FieldReaders_AfterAFailedSeek_GiveEmptyValues) {
    tblSRMasterList->AddNew();
    tblSRMasterList->SetField(QStringLiteral("LongName"), QStringLiteral("Engine"));
    tblSRMasterList->SetField(QStringLiteral("Cost"), 12.5F);
    tblSRMasterList->Update();
    tblSRMasterList->Seek("=", {99});
    ASSERT_TRUE(tblSRMasterList->NoMatch());
    EXPECT_EQ(FieldReaders::TextField(*tblSRMasterList, QStringLiteral("LongName")), QString());
    EXPECT_EQ(FieldReaders::LongField(*tblSRMasterList, QStringLiteral("Key")), 0);
    EXPECT_EQ(FieldReaders::SingleField(*tblSRMasterList, QStringLiteral("Cost")), 0.0F);
}

TEST_F(PropertiesTest, FieldReaders_NullFields_GiveEmptyValues) {
    tblSRMasterList->AddNew();
    tblSRMasterList->Update();
    tblSRMasterList->MoveLast();
    EXPECT_EQ(FieldReaders::TextField(*tblSRMasterList, QStringLiteral("LongName")), QString());
    EXPECT_EQ(FieldReaders::LongField(*tblSRMasterList, QStringLiteral("Sequence")), 0);
    EXPECT_EQ(FieldReaders::SingleField(*tblSRMasterList, QStringLiteral("Cost")), 0.0F);
}

TEST_F(PropertiesTest, FieldReaders_StoredValues_AreConverted) {
    tblSRMasterList->AddNew();
    tblSRMasterList->SetField(QStringLiteral("LongName"), QStringLiteral("Engine"));
    tblSRMasterList->SetField(QStringLiteral("Sequence"), 7);
    tblSRMasterList->SetField(QStringLiteral("Cost"), 12.5F);
    tblSRMasterList->Update();
    tblSRMasterList->MoveLast();
    EXPECT_EQ(FieldReaders::TextField(*tblSRMasterList, QStringLiteral("longname")),
              QStringLiteral("Engine"));
    EXPECT_EQ(FieldReaders::TextField(*tblSRMasterList, QStringLiteral("Cost")),
              QStringLiteral("12.5"));
    EXPECT_EQ(FieldReaders::LongField(*tblSRMasterList, QStringLiteral("SEQUENCE")), 7);
    EXPECT_EQ(FieldReaders::SingleField(*tblSRMasterList, QStringLiteral("Cost")), 12.5F);
}

TEST_F(PropertiesTest, FieldReaders_UnknownField_IsNoSuchItem) {
    tblFMZList->AddNew();
    tblFMZList->Update();
    tblFMZList->MoveLast();
    try {
        (void)FieldReaders::TextField(*tblFMZList, QStringLiteral("Nothing"));
        FAIL() << "no error";
    } catch (const platform::RuntimeError& error) {
        EXPECT_EQ(error.Number(), 3265);
    }
}

}  // namespace
