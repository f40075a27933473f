// Table definitions: both versions down to their bytes, chains, and definitions that lie.
#include "table/definition.h"

#include <gtest/gtest.h>

#include <random>

#include "catalog/new_table.h"
#include "catalog/properties.h"
#include "catalog/table_maker.h"
#include "jet/error.h"
#include "jet/file.h"
#include "page/bytes.h"
#include "sample_table.h"
#include "values/text.h"

namespace jet {
namespace {

const Format& FormatFor(Version version) {
    return version == Version::kJet3 ? kJet3Format : kJet4Format;
}

std::vector<std::byte> FromHex(std::string_view text) {
    std::vector<std::byte> bytes;
    std::string digits;
    for (const char c : text) {
        if (c == ' ' || c == '\n') continue;
        digits.push_back(c);
        if (digits.size() < 2) continue;
        bytes.push_back(static_cast<std::byte>(std::stoi(digits, nullptr, 16)));
        digits.clear();
    }
    return bytes;
}

// The table of permissions as a new file has it.
Definition Permissions(Version version) {
    const bool jet3 = version == Version::kJet3;
    Definition definition;
    definition.version = version;
    definition.system = true;
    definition.rowCount = 16;
    for (const auto& [name, type] : {std::pair{u"ObjectId", ColumnType::kLong},
                                     {u"SID", ColumnType::kBinary},
                                     {u"ACM", ColumnType::kLong},
                                     {u"FInheritable", ColumnType::kBoolean}}) {
        Column column;
        column.wide = name;
        column.name = NarrowName(name);
        column.type = type;
        column.fixed = type != ColumnType::kBinary;
        column.systemColumn = true;
        column.securityId = type == ColumnType::kBinary;
        column.length = jet3 ? 255 : 510;
        definition.columns.push_back(column);
    }
    FileHeader header;
    header.language = 0x0409;
    header.codePage = 1252;
    PlaceColumns(definition, header);
    RealIndex real;
    real.parts.push_back({0, true});
    real.map = jet3 ? RowId{PageNumber{12}, 2} : RowId{PageNumber{6}, 20};
    real.root = PageNumber{jet3 ? 13U : 9U};
    real.flags = jet3 ? 0x08 : 0x88;
    real.distinctKeys = 8;
    definition.realIndexes.push_back(real);
    LogicalIndex logical;
    logical.wide = u"ObjectId";
    definition.logicalIndexes.push_back(logical);
    definition.ownedMap = jet3 ? RowId{PageNumber{12}, 0} : RowId{PageNumber{6}, 18};
    definition.freeMap = jet3 ? RowId{PageNumber{12}, 1} : RowId{PageNumber{6}, 19};
    return definition;
}

TEST(Definition, Jet3_PermissionTable_HasTheKnownBytes) {
    EXPECT_EQ(BuildDefinition(Permissions(Version::kJet3)),
              FromHex("02015643 00000000 DF000000 10000000 00000000 53 040001000400"
                      "01000000 01000000 000C0000 010C0000 00000000 08000000"
                      "0400000000000000000904E404130000 0400"
                      "0901000000000000000904E404320000 FF00"
                      "0402000100000000000904E404130400 0400"
                      "0103000100000000000904E404130000 0100"
                      "084F626A6563744964 03534944 0341434D 0C46496E6865726974 61626C65"
                      "000001 FFFF00FFFF00FFFF00FFFF00FFFF00FFFF00FFFF00FFFF00FFFF00"
                      "020C0000 0D000000 08"
                      "000000000000000000FFFFFFFF00000000040400 084F626A6563744964 FFFF"));
}

TEST(Definition, Jet4_PermissionTable_HasTheKnownBytes) {
    const auto bytes = BuildDefinition(Permissions(Version::kJet4));
    ASSERT_EQ(bytes.size(), 335U);
    const auto part = [&](std::size_t from, std::size_t to) {
        return std::vector<std::byte>(bytes.begin() + static_cast<long>(from),
                                      bytes.begin() + static_cast<long>(to));
    };
    EXPECT_EQ(part(8, 63), FromHex("4F010000 59060000 10000000 00000000 01000000"
                                   "000000000000000000000000 53 040001000400"
                                   "01000000 01000000 12060000 13060000"));
    // The engine lists the columns of its own tables by name.
    EXPECT_EQ(part(75, 100), FromHex("0459060000020001000000090400001300000000000400 0400"));
    EXPECT_EQ(part(150, 175), FromHex("0959060000010000000000090400003200000000000000FE01"));
    EXPECT_EQ(part(175, 183), FromHex("0600410043004D00"));
    EXPECT_EQ(part(235, 287),
              FromHex("83070000 000001 FFFF00FFFF00FFFF00FFFF00FFFF00FFFF00FFFF00FFFF00FFFF00"
                      "14060000 09000000 00000000 88 0000000000"));
    EXPECT_EQ(part(287, 335), FromHex("59060000 00000000 00000000 00 FFFFFFFF 00000000 04 04 00"
                                      "00000000 10004F0062006A0065006300740049006400 FFFF"));
}

class DefinitionTest : public testing::TestWithParam<Version> {};

TEST_P(DefinitionTest, Parsing_GivesBackWhatWasBuilt) {
    const Definition made = Permissions(GetParam());
    const Definition read =
        ParseDefinition(BuildDefinition(made), FormatFor(GetParam()), PageNumber{3});
    EXPECT_EQ(read.page, PageNumber{3});
    EXPECT_TRUE(read.system);
    EXPECT_EQ(read.rowCount, 16U);
    ASSERT_EQ(read.columns.size(), 4U);
    EXPECT_EQ(read.columns[1].name, "SID");
    EXPECT_FALSE(read.columns[1].fixed);
    EXPECT_EQ(read.columns[2].fixedOffset, 4);
    EXPECT_EQ(read.shape.fixedSize, 8U);
    EXPECT_EQ(read.realIndexes[0].parts.size(), 1U);
    EXPECT_EQ(read.logicalIndexes[0].name, "ObjectId");
    EXPECT_EQ(BuildDefinition(read), BuildDefinition(made));
}

TEST_P(DefinitionTest, AnyBytesChanged_AreReadOrRefused) {
    Definition made = DefinitionOf(PeopleSchema(), GetParam());
    PlaceColumns(made, FileHeader{});
    const auto good = BuildDefinition(made);
    std::mt19937 random(5);
    int refused = 0;
    for (int round = 0; round < 20000; ++round) {
        auto bytes = good;
        for (int i = 0; i < 3; ++i)
            bytes[random() % bytes.size()] = static_cast<std::byte>(random());
        if (round % 5 == 0) bytes.resize(random() % bytes.size());
        try {
            static_cast<void>(ParseDefinition(bytes, FormatFor(GetParam()), PageNumber{9}));
        } catch (const Error& error) {
            ASSERT_EQ(error.Kind(), ErrorKind::kDamaged);
            ++refused;
        }
    }
    EXPECT_GT(refused, 1000);
}

TEST_P(DefinitionTest, ChainThatBitesItsTail_IsDamage) {
    const auto files = MakeMemoryFileSystem();
    const auto pager = Pager::Create(*files, "definition.mdb", GetParam());
    Operation operation(*pager);
    const PageNumber page = operation.Allocate();
    const MutableBytes bytes = operation.Change(page);
    WriteU16(bytes, 0, 0x0102);
    WriteU32(bytes, 4, page.value);
    WriteU32(bytes, 8, 100000);
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(JoinDefinition(*pager, page)); }),
              ErrorKind::kDamaged);
    WriteU32(bytes, 8, 0xFFFFFFFF);
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(JoinDefinition(*pager, page)); }),
              ErrorKind::kDamaged);
    WriteU32(bytes, 4, 0x123456);
    EXPECT_EQ(ErrorOf([&] { static_cast<void>(JoinDefinition(*pager, page)); }),
              ErrorKind::kDamaged);
}

TEST_P(DefinitionTest, IndexNames_StandInTheOrderOfTheCollation) {
    TableSchema schema = ZonesSchema();
    schema.indexes.clear();
    for (const char* name : {"zulu", "Alpha", "\xC3\xA4rger", "beta"}) {
        schema.indexes.push_back({.name = name, .columns = {{"Zone"}}, .unique = *name == 'z'});
    }
    const Definition definition = DefinitionOf(schema, GetParam());
    std::vector<std::string> names;
    for (const LogicalIndex& index : definition.logicalIndexes) names.push_back(index.name);
    EXPECT_EQ(names, (std::vector<std::string>{"Alpha", "\xC3\xA4rger", "beta", "zulu"}));
    // The three that are alike share one tree.
    EXPECT_EQ(definition.realIndexes.size(), 2U);
}

TEST_P(DefinitionTest, Properties_ReadBackAndNonsenseIsPassedOver) {
    TableSchema schema = PeopleSchema();
    schema.columns[1].required = true;
    schema.columns[10].allowZeroLength = false;
    schema.columns[3].defaultValue = "7";
    const auto stored = BuildProperties(schema, GetParam());
    Definition definition = DefinitionOf(PeopleSchema(), GetParam());
    ApplyProperties(stored, definition);
    EXPECT_TRUE(definition.columns[1].required);
    EXPECT_FALSE(definition.columns[10].allowZeroLength);
    EXPECT_EQ(definition.columns[3].defaultValue, "7");
    EXPECT_TRUE(BuildProperties(PeopleSchema(), GetParam()).empty());
    std::mt19937 random(1);
    for (int round = 0; round < 5000; ++round) {
        auto bytes = stored;
        bytes[random() % bytes.size()] = static_cast<std::byte>(random());
        bytes.resize(bytes.size() - random() % 4);
        EXPECT_NO_THROW(ApplyProperties(bytes, definition));
    }
}

INSTANTIATE_TEST_SUITE_P(BothVersions, DefinitionTest,
                         testing::Values(Version::kJet3, Version::kJet4),
                         [](const auto& tested) { return VersionName(tested.param); });

}  // namespace
}  // namespace jet
