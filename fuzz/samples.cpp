#include "samples.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "jet/database.h"
#include "jet/error.h"
#include "jet/recordset.h"
#include "page/bytes.h"
#include "page/checksum.h"
#include "page/log_format.h"

namespace tarn_fuzz {

namespace {

using jet::ColumnType;

jet::ColumnSchema Column(const std::string& name, ColumnType type, int length = 0) {
    jet::ColumnSchema column;
    column.name = name;
    column.type = type;
    column.length = length;
    return column;
}

jet::IndexSchema Index(const std::string& name, std::vector<std::string> columns) {
    jet::IndexSchema index;
    index.name = name;
    for (std::string& column : columns) index.columns.push_back({.name = std::move(column)});
    return index;
}

void MakeTables(jet::Database& database) {
    jet::TableSchema people;
    people.name = "People";
    people.columns = {Column("ID", ColumnType::kLong), Column("Name", ColumnType::kText, 40),
                      Column("Remarks", ColumnType::kMemo), Column("Size", ColumnType::kSingle)};
    people.columns[0].autoNumber = true;
    people.indexes = {Index("PrimaryKey", {"ID"}), Index("Name", {"Name"}),
                      Index("Size", {"Size"})};
    people.indexes[0].primary = true;
    people.indexes[2].columns[0].ascending = false;
    database.CreateTable(people);

    jet::TableSchema rates;
    rates.name = "Rates";
    rates.columns = {Column("Zone", ColumnType::kLong), Column("Place", ColumnType::kLong),
                     Column("First", ColumnType::kSingle), Column("Second", ColumnType::kSingle)};
    rates.indexes = {Index("PrimaryKey", {"Zone", "Place"})};
    rates.indexes[0].primary = true;
    database.CreateTable(rates);
}

void AddPeople(jet::Database& database, int first, int last) {
    const auto people = database.OpenTable("People");
    for (int i = first; i < last; ++i) {
        people->AddNew();
        people->Set("Name", std::u16string(static_cast<std::size_t>(i % 30), u'a' + i % 26));
        // In the row, on a page of its own, and in a chain of pages. All of it is read several
        // times for each input, so there is no more of it than is needed.
        const std::size_t length = i % 20 == 2 ? 4200 : i % 3 == 1 ? 300 : 10;
        people->Set("Remarks", std::u16string(length, u'm'));
        if (i % 4 != 0) people->Set("Size", static_cast<float>(i) / 2);
        people->Update();
    }
}

void AddRates(jet::Database& database) {
    const auto rates = database.OpenTable("Rates");
    for (std::int32_t zone = 1; zone <= 4; ++zone) {
        for (std::int32_t place = 1; place <= 5; ++place) {
            rates->AddNew();
            rates->Set("Zone", zone);
            rates->Set("Place", place);
            rates->Set("First", static_cast<float>(zone * place));
            rates->Update();
        }
    }
}

Contents MakeSampleFile(jet::Version version) {
    const auto files = jet::MakeMemoryFileSystem();
    const auto database = jet::Database::Create(kFile, version, *files);
    MakeTables(*database);
    AddPeople(*database, 0, 7);
    AddRates(*database);
    const auto people = database->OpenTable("People");
    people->MoveNext();
    people->Delete();
    people->Close();
    database->Close();
    return Get(*files, kFile);
}

Interrupted Interrupt(jet::Version version) {
    const auto files = jet::MakeMemoryFileSystem();
    Put(*files, kFile, SampleFile(version));
    const auto database = jet::Database::Open(kFile, {}, *files);
    AddPeople(*database, 20, 24);
    return {.file = Get(*files, kFile), .log = Get(*files, kLog)};
}

std::size_t IndexOf(jet::Version version) {
    return version == jet::Version::kJet3 ? 0 : 1;
}

void PutChecksumsRight(Contents& log) {
    if (log.size() < jet::kLogHeaderSize) return;
    const std::size_t headerBody = jet::kLogHeaderSize - jet::kLogChecksumSize;
    std::uint64_t checksum = jet::Checksum(jet::Bytes(log).first(headerBody), 0);
    jet::WriteU64(log, headerBody, checksum);
    std::size_t at = jet::kLogHeaderSize;
    while (log.size() - at >= jet::kLogRecordHead + jet::kLogChecksumSize) {
        const std::size_t length = jet::ReadU32(log, at);
        if (length < jet::kLogRecordHead + jet::kLogChecksumSize || length > log.size() - at)
            return;
        const std::size_t body = length - jet::kLogChecksumSize;
        checksum = jet::Checksum(jet::Bytes(log).subspan(at, body), checksum);
        jet::WriteU64(log, at + body, checksum);
        at += length;
    }
}

}  // namespace

std::u16string Input::Text(std::size_t length) {
    std::u16string text;
    while (text.size() < length && !IsEmpty()) text.push_back(Byte());
    return text;
}

Contents Input::Rest() {
    Contents rest(static_cast<std::size_t>(end_ - at_));
    if (!rest.empty()) std::memcpy(rest.data(), at_, rest.size());
    at_ = end_;
    return rest;
}

const Contents& SampleFile(jet::Version version) {
    static const std::array<Contents, 2> samples = {MakeSampleFile(jet::Version::kJet3),
                                                    MakeSampleFile(jet::Version::kJet4)};
    return samples[IndexOf(version)];
}

const Interrupted& InterruptedSample(jet::Version version) {
    static const std::array<Interrupted, 2> samples = {Interrupt(jet::Version::kJet3),
                                                       Interrupt(jet::Version::kJet4)};
    return samples[IndexOf(version)];
}

void Damage(Contents& contents, std::size_t blockSize, Input& input) {
    const std::size_t blocks = std::max<std::size_t>(1, contents.size() / blockSize);
    for (int places = input.Byte() % 16; places > 0 && !contents.empty(); --places) {
        const std::size_t block = input.Byte() % blocks;
        std::size_t at = block * blockSize + input.Word() % blockSize;
        for (int length = input.Byte() % 16; length >= 0; --length, ++at) {
            contents[at % contents.size()] = static_cast<std::byte>(input.Byte());
        }
    }
}

Contents FileFrom(Input& input) {
    const std::uint8_t kind = input.Byte();
    if (kind % 8 == 7) return input.Rest();
    const bool older = kind % 2 == 0;
    Contents contents = SampleFile(older ? jet::Version::kJet3 : jet::Version::kJet4);
    Damage(contents, older ? 2048 : 4096, input);
    return contents;
}

void Put(jet::FileSystem& files, const std::string& name, const Contents& contents) {
    files.Remove(name);
    files.Open(name, jet::OpenMode::kCreateNew)->Write(0, contents);
}

Contents Get(jet::FileSystem& files, const std::string& name) {
    if (!files.Exists(name)) return {};
    const auto file = files.Open(name, jet::OpenMode::kReadOnly);
    Contents contents(static_cast<std::size_t>(file->Size()));
    file->Read(0, contents);
    return contents;
}

Interrupted DamagedPair(Input& input) {
    const std::uint8_t kind = input.Byte();
    Interrupted pair = InterruptedSample(kind % 2 == 0 ? jet::Version::kJet3 : jet::Version::kJet4);
    if (kind & 2) Damage(pair.file, 64, input);
    if (kind & 4) pair.log.resize(input.Word() % (pair.log.size() + 1));
    Damage(pair.log, 64, input);
    if (kind & 8) PutChecksumsRight(pair.log);
    return pair;
}

}  // namespace tarn_fuzz
