// First, since the library takes it in between the marks of C linkage.
#include <glib.h>

#include <mdbtools.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

#include "bench/Peer.h"

namespace bench {

namespace {

// The library hands out every field as text in buffers of the caller's; it neither seeks nor
// writes.
class MdbPeer : public Peer {
public:
    ~MdbPeer() override { MdbPeer::Close(); }
    std::string Name() const override { return "mdb"; }
    bool CanWrite() const override { return false; }

    void Create(const std::filesystem::path& path) override {
        maker_ = MakeJetPeer(false);
        maker_->Create(path);
    }
    void Open(const std::filesystem::path& path) override {
        if (maker_) maker_->Close();
        maker_.reset();
        file_ = mdb_open(path.c_str(), MDB_NOFLAGS);
        if (file_ == nullptr) throw std::runtime_error("cannot open");
        mdb_read_catalog(file_, MDB_TABLE);
    }
    void Close() override {
        if (maker_) maker_->Close();
        maker_.reset();
        if (file_ != nullptr) mdb_close(file_);
        file_ = nullptr;
    }
    // Filling the file is the engine's work here.
    void Begin() override { maker_->Begin(); }
    void Commit() override { maker_->Commit(); }
    void Insert(const std::vector<Row>& rows) override { maker_->Insert(rows); }
    void Insert(const std::vector<Note>& notes) override { maker_->Insert(notes); }

    double Scan(Shape shape) override {
        return Walk(shape == Shape::kNumbers ? "Numbers" : "Texts", SIZE_MAX);
    }
    double ScanWide() override { return Unable(); }
    double FirstRow() override { return Walk("Numbers", 1); }

    double Seek(const std::vector<Row>&) override { return Unable(); }
    double Seek(const std::vector<Note>&) override { return Unable(); }
    void UpdateOneField(const std::vector<Row>&, int) override { Unable(); }
    void UpdateOneField(const std::vector<Note>&, int) override { Unable(); }
    void UpdateMemo(const std::vector<Note>&, int) override { Unable(); }
    void Delete(const std::vector<Row>&) override { Unable(); }
    void Delete(const std::vector<Note>&) override { Unable(); }
    void DeleteSelected() override { Unable(); }

private:
    static double Unable() { throw std::runtime_error("this peer only reads"); }

    double Walk(const char* name, std::size_t most) {
        MdbTableDef* table = mdb_read_table_by_name(file_, const_cast<char*>(name), MDB_TABLE);
        if (table == nullptr) throw std::runtime_error("no such table");
        mdb_read_columns(table);
        mdb_rewind_table(table);
        for (unsigned i = 0; i < table->num_cols; ++i) {
            mdb_bind_column(table, static_cast<int>(i + 1), texts_[i].data(), &lengths_[i]);
        }
        double sum = 0;
        for (std::size_t row = 0; row < most && mdb_fetch_row(table); ++row) {
            for (unsigned i = 0; i < table->num_cols; ++i) sum += lengths_[i];
        }
        mdb_free_tabledef(table);
        return sum;
    }

    std::unique_ptr<Peer> maker_;
    MdbHandle* file_ = nullptr;
    std::array<std::array<char, MDB_BIND_SIZE>, 8> texts_{};
    std::array<int, 8> lengths_{};
};

}  // namespace

std::unique_ptr<Peer> MakeMdbPeer() {
    return std::make_unique<MdbPeer>();
}

}  // namespace bench
