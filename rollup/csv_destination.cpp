#include "rollup/csv_destination.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <set>
#include <unordered_map>

#include "jet/error.h"
#include "jet/path.h"
#include "rollup/csv_changes.h"
#include "rollup/csv_folder.h"
#include "rollup/csv_text.h"
#include "rollup/gzip.h"
#include "rollup/load_script.h"
#include "rollup/run_lock.h"

namespace rollup {

namespace {

namespace fs = std::filesystem;

// The compressed rows of contents; empty where a table has none.
class PackedTables : public Packed {
public:
    std::array<std::string, kTables> tables;
};

// What is remembered of a row of `files`: where it is, and of which contents.
struct Known {
    Year year;
    std::string fileId;  // empty for a file that could not be opened
};

std::string RowFile(const FileRow& file) {
    std::string text;
    AppendHeading(text, TableOf(TableId::kFiles));
    FileCells(file, [&text](TableId table, std::span<const Cell> row) {
        AppendRow(text, TableOf(table), row);
    });
    Gzip gzip;
    gzip.Add(text);
    return gzip.Finish();
}

// Runs what touches files; an error is the destination's.
template <typename Action>
void Touching(const Action& action) {
    try {
        action();
    } catch (const fs::filesystem_error& error) {
        throw DestinationError(error.path1().string() + ": " + error.code().message() + ".");
    } catch (const jet::Error& error) {
        throw DestinationError(error.what());
    }
}

class CsvDestination : public Destination {
public:
    CsvDestination(const fs::path& folder, const Waiting& waiting)
        : folder_(folder), lock_(Made(folder) / ".lock", waiting) {
        Touching([this] {
            fs::remove_all(folder_.Unfinished());
            fs::create_directory(folder_.Unfinished());
            LookAround();
        });
    }
    ~CsvDestination() override {
        try {
            Publish();
        } catch (const std::exception&) {
            // The next run reads these files again.
        }
        std::error_code ignored;
        fs::remove_all(folder_.Unfinished(), ignored);
    }

    std::optional<FileRow> Find(const std::string& path) override {
        return Row(CsvFolder::NameOfPath(path));
    }

    std::vector<FileRow> WithContents(const std::string& sha256) override {
        std::vector<FileRow> files;
        const auto named = names_.find(sha256.substr(0, kFileIdDigits));
        if (named == names_.end()) {
            return files;
        }
        for (const std::string& name : named->second) {
            if (auto row = Row(name); row && row->sha256 == sha256) {
                files.push_back(std::move(*row));
            }
        }
        std::sort(files.begin(), files.end(),
                  [](const FileRow& a, const FileRow& b) { return a.path < b.path; });
        return files;
    }

    void EachPath(const std::function<void(const std::string&)>& take) override {
        for (const auto& [name, known] : known_) {
            if (const auto row = Row(name)) {
                take(row->path);
            }
        }
    }

    std::unique_ptr<Packed> Pack(season::Season season, const FileRow& file) const override {
        struct Written {
            std::string text;
            std::unique_ptr<Gzip> gzip;
        };
        constexpr std::size_t kEnough = std::size_t{1} << 16;
        std::array<Written, kTables> tables;
        EachRow(season, file, [&tables](TableId id, std::span<const Cell> row) {
            Written& table = tables[static_cast<std::size_t>(id)];
            if (!table.gzip) {
                table.gzip = std::make_unique<Gzip>();
                AppendHeading(table.text, TableOf(id));
            }
            AppendRow(table.text, TableOf(id), row);
            if (table.text.size() > kEnough) {
                table.gzip->Add(table.text);
                table.text.clear();
            }
        });
        auto packed = std::make_unique<PackedTables>();
        for (std::size_t i = 0; i < kTables; ++i) {
            if (tables[i].gzip) {
                tables[i].gzip->Add(tables[i].text);
                packed->tables[i] = tables[i].gzip->Finish();
            }
        }
        return packed;
    }

    void Begin() override { Rollback(); }

    void Put(const FileRow& file) override { changes_[file.path] = file; }
    void Remove(const FileRow& file) override { changes_[file.path] = std::nullopt; }

    void AddContents(const FileRow& file, Packed& packed) override {
        const auto& tables = dynamic_cast<PackedTables&>(packed).tables;
        Touching([&] {
            for (const Table& table : Tables()) {
                const std::string& rows = tables[static_cast<std::size_t>(table.id)];
                if (!rows.empty()) {
                    open_.Put(folder_.Place(table.id, file.year, *file.fileId), Write(rows));
                }
            }
        });
    }

    void RemoveContents(const FileRow& file) override {
        EachTableOf(
            file, [this](const fs::path& place, const fs::path&, TableId) { open_.Remove(place); });
    }

    void MoveContents(const FileRow& file, std::optional<std::int64_t> year) override {
        EachTableOf(file, [&](const fs::path& place, const fs::path& rows, TableId table) {
            const fs::path copy = NewName();
            fs::copy_file(rows, copy);
            open_.Remove(place);
            open_.Put(folder_.Place(table, year, *file.fileId), copy);
        });
    }

    void Commit() override {
        Touching([this] {
            std::vector<std::pair<std::string, fs::path>> named;
            for (const auto& [path, row] : changes_) {
                named.emplace_back(path, row ? Write(RowFile(*row)) : fs::path());
            }
            for (const auto& [path, file] : named) {
                Enter(CsvFolder::NameOfPath(path), changes_[path], file);
            }
            rows_.Add(open_);
        });
        changes_.clear();
        if (++waiting_ == kTogether) {
            Publish();
        }
    }

    void Rollback() noexcept override {
        open_.Drop();
        changes_.clear();
    }

    void Finish() override {
        Publish();
        Touching([this] {
            CsvChanges last;
            for (const Table& table : Tables()) {
                // A table without any file would be an error to who reads it.
                bool isEmpty = true;
                folder_.EachFile(table.id, [&isEmpty](const auto&...) { isEmpty = false; });
                const fs::path none = folder_.Place(table.id, std::nullopt, "none");
                if (isEmpty) {
                    std::string heading;
                    AppendHeading(heading, table);
                    Gzip gzip;
                    gzip.Add(heading);
                    last.Put(none, Write(gzip.Finish()));
                } else {
                    fs::remove(none);
                }
            }
            last.Put(folder_.Path() / "load.sql", Write(LoadScript(folder_.Path())));
            last.MakeComing();
        });
    }

private:
    static constexpr std::size_t kFileIdDigits = 16;
    static constexpr std::size_t kTogether = 16;

    static const fs::path& Made(const fs::path& folder) {
        std::error_code failed;
        fs::create_directories(folder, failed);
        if (failed) {
            throw DestinationError(folder.string() +
                                   ": The folder cannot be made: " + failed.message() + ".");
        }
        return folder;
    }

    // What is there, but for what a killed run left.
    void LookAround() {
        std::map<std::string, std::set<Year>> read;  // contents
        std::vector<std::pair<std::string, fs::path>> duplicates;
        folder_.EachFile(
            TableId::kFiles, [&](const fs::path& file, Year year, const std::string& name) {
                const auto row = CsvFolder::ReadFileRow(file, year);
                if (!row || CsvFolder::NameOfPath(row->path) != name || known_.contains(name)) {
                    fs::remove(file);
                    return;
                }
                const std::string id = row->fileId.value_or("");
                Remember(name, {year, id});
                if (row->status == Status::kRead) {
                    read[id].insert(year);
                } else if (row->status == Status::kDuplicate) {
                    duplicates.emplace_back(name, file);
                }
            });
        for (const auto& [name, file] : duplicates) {
            if (!read.contains(known_[name].fileId)) {
                fs::remove(file);
                ForgetName(name);
            }
        }
        for (const Table& table : Tables().subspan(1)) {
            folder_.EachFile(table.id, [&](const fs::path& file, Year year, const std::string& id) {
                const auto found = read.find(id);
                if (found == read.end() || !found->second.contains(year)) {
                    fs::remove(file);
                }
            });
        }
    }

    [[nodiscard]] std::optional<FileRow> Row(const std::string& name) const {
        const auto found = known_.find(name);
        if (found == known_.end()) {
            return std::nullopt;
        }
        const Year year = found->second.year;
        const fs::path place = folder_.Place(TableId::kFiles, year, name);
        const std::optional<fs::path>* const waiting = named_.Find(place);
        return CsvFolder::ReadFileRow(waiting != nullptr && *waiting ? **waiting : place, year);
    }

    void Remember(const std::string& name, const Known& known) {
        known_[name] = known;
        names_[known.fileId].insert(name);
    }
    void ForgetName(const std::string& name) {
        const auto found = known_.find(name);
        if (found == known_.end()) {
            return;
        }
        std::set<std::string>& others = names_[found->second.fileId];
        others.erase(name);
        if (others.empty()) {
            names_.erase(found->second.fileId);
        }
        known_.erase(found);
    }

    // The row of a path will have its place.
    void Enter(const std::string& name, const std::optional<FileRow>& row, const fs::path& file) {
        const auto old = known_.find(name);
        if (old != known_.end() && (!row || row->year != old->second.year)) {
            named_.Remove(folder_.Place(TableId::kFiles, old->second.year, name));
        }
        ForgetName(name);
        if (row) {
            named_.Put(folder_.Place(TableId::kFiles, row->year, name), file);
            Remember(name, {row->year, row->fileId.value_or("")});
        }
    }

    // First the rows that are new, then what names them, then what nothing names any longer: a run
    // that is killed between leaves rows that nothing names, and those are cleared by the next one.
    // Where a row of `files` goes to another year, for a moment nothing is known of its path, so
    // that a run which is killed there has it read again.
    void Publish() {
        CsvChanges rows;
        CsvChanges named;
        rows.Add(rows_);
        named.Add(named_);
        waiting_ = 0;
        Touching([&rows, &named] {
            rows.MakeComing();
            named.MakeGoing();
            named.MakeComing();
            rows.MakeGoing();
        });
    }

    [[nodiscard]] fs::path NewName() { return folder_.Unfinished() / std::to_string(++written_); }

    fs::path Write(const std::string& bytes) {
        fs::path file = NewName();
        std::ofstream out(file, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.close();
        if (!out) {
            throw DestinationError(folder_.Path().string() +
                                   ": The files cannot be written; the disk may be full.");
        }
        return file;
    }

    // Gives the places of a file's rows, and where the rows are now.
    template <typename Take>
    void EachTableOf(const FileRow& file, const Take& take) {
        Touching([&] {
            for (const Table& table : Tables().subspan(1)) {
                const fs::path place = folder_.Place(table.id, file.year, *file.fileId);
                if (const std::optional<fs::path> rows = RowsFor(place)) {
                    take(place, *rows, table.id);
                }
            }
        });
    }

    [[nodiscard]] std::optional<fs::path> RowsFor(const fs::path& place) const {
        for (const CsvChanges* const changes : {&open_, &rows_}) {
            if (const std::optional<fs::path>* const change = changes->Find(place)) {
                return *change;
            }
        }
        return fs::exists(place) ? std::optional(place) : std::nullopt;
    }

    CsvFolder folder_;
    RunLock lock_;
    std::unordered_map<std::string, Known> known_;                  // by the names of their paths
    std::unordered_map<std::string, std::set<std::string>> names_;  // by contents
    std::uint64_t written_ = 0;

    // The open transaction.
    std::map<std::string, std::optional<FileRow>> changes_;  // by path; null for one that goes
    CsvChanges open_;

    // Committed transactions that wait for the disk together.
    CsvChanges rows_;
    CsvChanges named_;  // the rows of `files`
    std::size_t waiting_ = 0;
};

}  // namespace

std::unique_ptr<Destination> OpenCsv(const std::string& folder, const Waiting& waiting) {
    std::error_code failed;
    const fs::path given = jet::PathOf(folder);
    const fs::path path = fs::weakly_canonical(given, failed);
    return std::make_unique<CsvDestination>(failed ? given : path, waiting);
}

}  // namespace rollup
