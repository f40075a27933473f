// One way of keeping the benchmark's table: our engine, or a peer that does the same work.
//
// The table is shaped like NVCPerAcre: two whole numbers as its unique key and six singles. A
// second table holds a whole-number key, a short text and a memo. Times are taken by whoever calls;
// a peer does nothing that it was not asked for.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace bench {

struct Row {
    std::int32_t location = 0;
    std::int32_t resource = 0;
    float values[6] = {};
};

struct Note {
    std::int32_t key = 0;
    std::u16string name;
    std::u16string body;
};

inline float NewValue(const Row& row, int round) {
    return row.values[0] + 1.0F + static_cast<float>(round);
}
inline std::u16string NewName(const Note& note, int round) {
    return note.name + static_cast<char16_t>(u'a' + round % 26);
}

inline std::u16string NewBody(const Note& note, int round) {
    const std::size_t length =
        20 + (note.body.size() + 97 * (static_cast<std::size_t>(round) + 1)) % 300;
    return std::u16string(length, static_cast<char16_t>(u'a' + round % 26));
}

enum class Shape { kNumbers, kTexts };

template <typename T>
inline constexpr Shape kShapeOf = Shape::kNumbers;
template <>
inline constexpr Shape kShapeOf<Note> = Shape::kTexts;

class Peer {
public:
    virtual ~Peer() = default;
    [[nodiscard]] virtual std::string Name() const = 0;
    [[nodiscard]] virtual bool CanWrite() const { return true; }

    // Makes an empty file with both tables, and leaves it open.
    virtual void Create(const std::filesystem::path& path) = 0;
    virtual void Open(const std::filesystem::path& path) = 0;
    virtual void Close() = 0;

    // Everything between them is one transaction. Outside of one each change is one by itself.
    virtual void Begin() {}
    virtual void Commit() {}

    virtual void Insert(const std::vector<Row>& rows) = 0;
    virtual void Insert(const std::vector<Note>& notes) = 0;
    // Reads every field of every row; what it gives keeps the work from being left out.
    virtual double Scan(Shape shape) = 0;
    // The texts, as UTF-16.
    virtual double ScanWide() = 0;
    // Finds each row by its full key and reads one field.
    virtual double Seek(const std::vector<Row>& rows) = 0;
    virtual double Seek(const std::vector<Note>& notes) = 0;
    // Finds each row and changes one field; another `round` gives another value, as what does not
    // change a row need not be written.
    virtual void UpdateOneField(const std::vector<Row>& rows, int round) = 0;
    virtual void UpdateOneField(const std::vector<Note>& notes, int round) = 0;
    // Gives each row a memo of another length.
    virtual void UpdateMemo(const std::vector<Note>& notes, int round) = 0;
    virtual void Delete(const std::vector<Row>& rows) = 0;
    virtual void Delete(const std::vector<Note>& notes) = 0;
    // Deletes every row of the numbers that a condition on the key selects, which are all.
    virtual void DeleteSelected() = 0;
    // The first field of the first row.
    virtual double FirstRow() = 0;
};

// Whether each row is changed by itself, or all in one transaction.
enum class Bounds { kEach, kWhole };

template <typename Work>
void Within(Bounds bounds, Peer& peer, Work work) {
    if (bounds == Bounds::kWhole) peer.Begin();
    work();
    if (bounds == Bounds::kWhole) peer.Commit();
}

std::unique_ptr<Peer> MakeJetPeer(bool jet3);
std::unique_ptr<Peer> MakeSqlitePeer();
// Reads only: the files that the engine made.
std::unique_ptr<Peer> MakeMdbPeer();

// "jet4", "jet3" and, where the program was built with them, "sqlite", "mdb".
std::unique_ptr<Peer> MakePeer(const std::string& name);
// The names of those that this program was built with.
std::vector<std::string> PeerNames();

}  // namespace bench
