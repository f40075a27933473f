// What is refused on opening, with the right kind of error and without a byte changed; and what a
// value becomes when another type is asked for.
#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

#include <functional>
#include <string>
#include <vector>

#include "jet/database.h"
#include "jet/error.h"
#include "jet/value.h"
#include "page/bytes.h"
#include "support/fault_file_system.h"

namespace jet {
namespace {

constexpr char kFile[] = "a file.mdb";
using Contents = std::vector<std::byte>;

class OpeningTest : public ::testing::TestWithParam<Version> {
protected:
    OpeningTest() { Database::Create(kFile, GetParam(), files_)->Close(); }

    // Changes the file, then expects it to be refused and left alone.
    void ExpectRefused(ErrorKind kind, const std::function<void(Contents&)>& change) {
        Contents contents = files_.Contents(kFile);
        change(contents);
        for (const bool readOnly : {false, true}) {
            tarn_test::FaultFileSystem files;
            files.SetContents(kFile, contents);
            try {
                (void)Database::Open(kFile, {.exclusive = !readOnly, .readOnly = readOnly}, files);
                ADD_FAILURE() << "opened";
            } catch (const Error& error) {
                EXPECT_EQ(error.Kind(), kind) << error.what();
                EXPECT_FALSE(std::string(error.what()).empty());
            }
            EXPECT_EQ(files.Contents(kFile), contents);
            EXPECT_EQ(files.Names(), std::vector<std::string>{kFile});
        }
    }

    tarn_test::FaultFileSystem files_;
};

INSTANTIATE_TEST_SUITE_P(Versions, OpeningTest, ::testing::Values(Version::kJet3, Version::kJet4));

TEST_P(OpeningTest, WhatIsNoDatabase_IsRefused) {
    ExpectRefused(ErrorKind::kNotADatabase, [](Contents& file) { file.clear(); });
    ExpectRefused(ErrorKind::kNotADatabase, [](Contents& file) { file.resize(100); });
    ExpectRefused(ErrorKind::kNotADatabase, [](Contents& file) { file[0] = std::byte{1}; });
    ExpectRefused(ErrorKind::kNotADatabase, [](Contents& file) { file[6] ^= std::byte{0x20}; });
    ExpectRefused(ErrorKind::kNotADatabase,
                  [](Contents& file) { file.assign(9000, std::byte{65}); });
}

TEST_P(OpeningTest, NewerVersion_IsRefused) {
    ExpectRefused(ErrorKind::kUnsupportedVersion, [](Contents& file) { WriteU8(file, 0x14, 2); });
    ExpectRefused(ErrorKind::kUnsupportedVersion, [](Contents& file) {
        const std::string_view signature = "Standard ACE DB";
        std::transform(signature.begin(), signature.end(), file.begin() + 4,
                       [](char c) { return static_cast<std::byte>(c); });
    });
}

TEST_P(OpeningTest, KeyOrPassword_IsRefused) {
    // The masked part: any other bytes there stand for a key or a password.
    ExpectRefused(ErrorKind::kEncrypted, [](Contents& file) { file[0x3E] ^= std::byte{1}; });
    ExpectRefused(ErrorKind::kEncrypted, [](Contents& file) { file[0x44] ^= std::byte{'p'}; });
}

TEST_P(OpeningTest, FileCutOff_IsRefused) {
    ExpectRefused(ErrorKind::kDamaged, [](Contents& file) { file.resize(file.size() - 1); });
    ExpectRefused(ErrorKind::kDamaged, [](Contents& file) {
        file.resize(12288);
        file.pop_back();
    });
    ExpectRefused(ErrorKind::kDamaged, [](Contents& file) {
        file.resize(GetParam() == Version::kJet3 ? 10240 : 20480);
    });
    ExpectRefused(ErrorKind::kDamaged, [](Contents& file) { file.resize(1000); });
}

TEST_P(OpeningTest, FileThatIsMissing_IsReportedAsMissing) {
    try {
        (void)Database::Open("another.mdb", {}, files_);
        FAIL() << "opened";
    } catch (const Error& error) {
        EXPECT_EQ(error.Kind(), ErrorKind::kFileNotFound);
        EXPECT_EQ(error.Number(), 3024);
    }
}

TEST_P(OpeningTest, CommitCounter_KeepsStatesApart) {
    const Contents before = files_.Contents(kFile);
    const auto database = Database::Open(kFile, {}, files_);
    TableSchema schema;
    schema.name = "T";
    schema.columns.resize(1);
    schema.columns[0].name = "A";
    database->CreateTable(schema);
    database->Close();
    const std::size_t at = (GetParam() == Version::kJet3 ? 2048U : 4096U) - 512;
    EXPECT_EQ(ReadU16(files_.Contents(kFile), at), ReadU16(before, at) + 1);
}

}  // namespace
}  // namespace jet
