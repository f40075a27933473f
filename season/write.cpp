#include <algorithm>
#include <map>
#include <memory>
#include <string>

#include "jet/database.h"
#include "jet/recordset.h"
#include "jet/transaction.h"
#include "season/data_file.h"
#include "season/schema.h"
#include "season/text.h"

namespace season {

namespace {

jet::Value ValueOf(const Text& text) {
    return text ? jet::Value(ToUtf16(*text)) : jet::Value();
}
jet::Value ValueOf(const Whole& number) {
    return number ? jet::Value(*number) : jet::Value();
}
jet::Value ValueOf(const Single& number) {
    return number ? jet::Value(*number) : jet::Value();
}

// A table to which records are added, field by field in the order of the schema.
class Rows {
public:
    Rows(jet::Database& database, const char* table) : records_(database.OpenTable(table)) {}

    template <typename... Values>
    void Add(const Values&... values) {
        records_->AddNew();
        int position = 0;
        (records_->Set(jet::FieldId{position++}, values), ...);
        records_->Update();
    }
    void AddNvc(std::int32_t locationKey, const NvcRow& row) {
        records_->AddNew();
        records_->Set(jet::FieldId{0}, jet::Value(locationKey));
        records_->Set(jet::FieldId{1}, jet::Value(row.resource));
        for (int level = 0; level < kFilLevels; ++level) {
            records_->Set(jet::FieldId{2 + level},
                          ValueOf(row.values[static_cast<std::size_t>(level)]));
        }
        records_->Update();
    }

private:
    std::unique_ptr<jet::Recordset> records_;
};

void WriteNames(jet::Database& database, const Season& season) {
    Rows properties(database, "Properties");
    for (const Property& property : season.properties) {
        properties.Add(ToUtf16(property.name), ValueOf(property.value));
    }
    Rows goals(database, "ManagementGoals");
    for (const Goal& goal : season.goals) {
        goals.Add(goal.key, ValueOf(goal.area), ValueOf(goal.explanation));
    }
    Rows resources(database, "SRMasterList");
    for (const Resource& resource : season.resources) {
        resources.Add(resource.key, ValueOf(resource.sequence), ValueOf(resource.longName),
                      ValueOf(resource.shortName), ValueOf(resource.units),
                      ValueOf(resource.unitType), ValueOf(resource.cost));
    }
    Rows names(database, "NVCResources");
    for (const NvcResource& resource : season.nvcResources) {
        names.Add(resource.number, ValueOf(resource.name));
    }
}

std::int32_t LocationKeyOf(const Zone& zone, const Location& location) {
    const std::int64_t key = JoinKey(zone.key, location.number);
    if (key != static_cast<std::int32_t>(key)) {
        throw Refused("The key of a zone is too large for the keys of its locations.");
    }
    return static_cast<std::int32_t>(key);
}

void WriteZones(jet::Database& database, const Season& season) {
    Rows zones(database, "FMZList");
    Rows costs(database, "SuppressionPerAcreCost");
    Rows values(database, "NVCPerAcre");
    for (const Zone& zone : season.zones) {
        zones.Add(zone.key, ValueOf(zone.name), ValueOf(zone.rlCount));
        for (const CostClass& row : zone.classes) {
            costs.Add(zone.key, row.number, ValueOf(row.topSize), ValueOf(row.cost));
        }
        for (const Location& location : zone.locations) {
            for (const NvcRow& row : location.rows) {
                values.AddNvc(LocationKeyOf(zone, location), row);
            }
        }
    }
    for (const StrayCost& stray : season.strayCosts) {
        costs.Add(stray.zoneKey, stray.row.number, ValueOf(stray.row.topSize),
                  ValueOf(stray.row.cost));
    }
    for (const StrayNvc& stray : season.strayNvc) {
        values.AddNvc(stray.locationKey, stray.row);
    }
}

// How many characters a field must take: other programs may have made it longer than ours.
class Widths {
public:
    explicit Widths(const Season& season) {
        for (const Property& property : season.properties) {
            Raise("Properties.Property", property.name);
            Raise("Properties.Value", property.value);
        }
        for (const Goal& goal : season.goals) {
            Raise("ManagementGoals.ManagementArea", goal.area);
        }
        for (const Resource& resource : season.resources) {
            Raise("SRMasterList.LongName", resource.longName);
            Raise("SRMasterList.ShortName", resource.shortName);
            Raise("SRMasterList.Units", resource.units);
            Raise("SRMasterList.UnitType", resource.unitType);
        }
        for (const Zone& zone : season.zones) {
            Raise("FMZList.Name", zone.name);
        }
        for (const NvcResource& resource : season.nvcResources) {
            Raise("NVCResources.ResourceName", resource.name);
        }
    }

    void Apply(jet::TableSchema& table) const {
        for (jet::ColumnSchema& column : table.columns) {
            const auto longest = longest_.find(table.name + "." + column.name);
            if (longest != longest_.end()) {
                column.length = std::max(column.length, longest->second);
            }
        }
    }

private:
    void Raise(const char* field, const Text& text) {
        int& longest = longest_[field];
        longest = std::max(longest, text ? static_cast<int>(ToUtf16(*text).size()) : 0);
    }

    std::map<std::string, int> longest_;
};

void Fill(const Season& season, const std::filesystem::path& path, jet::Version version,
          jet::FileSystem& files) {
    const auto database = jet::Database::Create(path, version, files);
    // One write for all of it, instead of one for each record.
    jet::Transaction transaction = database->Begin();
    const Widths widths(season);
    for (jet::TableSchema& table : Tables()) {
        widths.Apply(table);
        database->CreateTable(table);
    }
    WriteNames(*database, season);
    WriteZones(*database, season);
    transaction.Commit();
    database->Close();
}

// A file under another name until it is complete. One that a killed run left is cleared away.
class UnfinishedFile {
public:
    UnfinishedFile(const std::filesystem::path& path, jet::FileSystem& files)
        : path_(path), files_(files) {
        path_ += ".part";
        if (files_.Exists(path_)) {
            if (!files_.Open(path_, jet::OpenMode::kReadWrite)->TryLock(true)) {
                throw Refused("The file is being made by another program.");
            }
            Clear();
        }
    }
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    ~UnfinishedFile() {
        try {
            Clear();
        } catch (const jet::Error&) {
            // What cannot be removed now is cleared away by the next run.
        }
    }
    [[nodiscard]] const std::filesystem::path& Path() const { return path_; }
    void Finish(const std::filesystem::path& path) {
        RequireAbsent(path, files_);
        files_.Rename(path_, path);
        files_.FlushFolder(path.parent_path());
    }

    static void RequireAbsent(const std::filesystem::path& path, jet::FileSystem& files) {
        if (files.Exists(path)) {
            throw Refused("The file exists already.");
        }
    }

private:
    void Clear() {
        jet::Database::DiscardLog(path_, files_);
        files_.Remove(path_);
    }

    std::filesystem::path path_;
    jet::FileSystem& files_;
};

// The engine's sentences would name the unfinished file.
std::string WhyNotWritten(const jet::Error& error) {
    switch (error.Kind()) {
        case jet::ErrorKind::kFileNotFound:
            return "The folder cannot be found.";
        case jet::ErrorKind::kPermissionDenied:
        case jet::ErrorKind::kReadOnly:
            return "No file may be written in this folder.";
        default:
            return error.what();
    }
}

}  // namespace

void WriteNew(const Season& season, const std::filesystem::path& path, jet::Version version,
              jet::FileSystem& files) {
    try {
        UnfinishedFile::RequireAbsent(path, files);
        UnfinishedFile unfinished(path, files);
        Fill(season, unfinished.Path(), version, files);
        unfinished.Finish(path);
    } catch (const jet::Error& error) {
        throw Refused(WhyNotWritten(error));
    }
}

}  // namespace season
