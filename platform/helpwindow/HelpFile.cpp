#include "platform/helpwindow/HelpFile.h"

#include <sqlite3.h>

#include <QDataStream>
#include <QFile>
#include <QIODevice>
#include <QRegularExpression>
#include <QStringList>
#include <utility>

namespace platform {

namespace {

constexpr auto kPageOf =
    "SELECT Name FROM FileNameTable WHERE FileId ="
    " (SELECT FileId FROM IndexTable WHERE Identifier = ?1)";
constexpr auto kIndex =
    "SELECT IndexTable.Name, FileNameTable.Name FROM IndexTable"
    " JOIN FileNameTable USING (FileId) ORDER BY IndexTable.Name COLLATE NOCASE";
constexpr auto kBytes =
    "SELECT Data FROM FileDataTable WHERE Id ="
    " (SELECT FileId FROM FileNameTable WHERE Name = ?1)";
// A word in a title tells more of a page than one in its text.
constexpr auto kSearch =
    "SELECT Name, Title, snippet(Search, 2, '', '', '...', 16) FROM Search"
    " WHERE Search MATCH ?1 ORDER BY bm25(Search, 0, 10, 1)";

// What the search understands: each word, or all between two quotes, as text in quotes of its own,
// so that no character in it means anything; a word also stands for those that begin with it.
QString Expression(const QString& words) {
    static const QRegularExpression part(QStringLiteral("\"([^\"]*)\"?|([^\\s\"]+)"));
    static const QRegularExpression letter(QStringLiteral("[\\p{L}\\p{N}]"));
    QStringList wanted;
    for (const QRegularExpressionMatch& match : part.globalMatch(words)) {
        const bool isPhrase = match.capturedView(2).isEmpty();
        const QString text = match.captured(isPhrase ? 1 : 2);
        if (text.contains(letter)) {
            wanted += u'"' + text + u'"' + (isPhrase ? QString() : QStringLiteral("*"));
        }
    }
    return wanted.join(QStringLiteral(" AND "));
}

}  // namespace

// A statement and the row that it stands on.
class HelpFile::Query {
public:
    explicit Query(sqlite3* database, const char* text, const QString& value = {}) {
        constexpr int kToItsEnd = -1;
        isWhole_ = sqlite3_prepare_v2(database, text, kToItsEnd, &statement_, nullptr) == SQLITE_OK;
        if (isWhole_ && sqlite3_bind_parameter_count(statement_) > 0) {
            const QByteArray bytes = value.toUtf8();
            isWhole_ = sqlite3_bind_text(statement_, 1, bytes.constData(), int(bytes.size()),
                                         SQLITE_TRANSIENT) == SQLITE_OK;
        }
    }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;
    ~Query() { sqlite3_finalize(statement_); }

    bool Next() {
        const int step = isWhole_ ? sqlite3_step(statement_) : SQLITE_ERROR;
        isWhole_ = step == SQLITE_ROW || step == SQLITE_DONE;
        return step == SQLITE_ROW;
    }
    // False once something could not be read.
    [[nodiscard]] bool IsWhole() const { return isWhole_; }
    [[nodiscard]] QString Text(int column) const {
        return QString::fromUtf8(
            reinterpret_cast<const char*>(sqlite3_column_text(statement_, column)));
    }
    [[nodiscard]] QByteArray Blob(int column) const {
        const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_, column));
        return {bytes, sqlite3_column_bytes(statement_, column)};
    }

private:
    sqlite3_stmt* statement_ = nullptr;
    bool isWhole_ = false;
};

std::unique_ptr<HelpFile> HelpFile::Open(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return nullptr;
    }
    std::unique_ptr<HelpFile> help(new HelpFile(file.readAll()));
    return help->Read() ? std::move(help) : nullptr;
}

HelpFile::~HelpFile() {
    sqlite3_close(database_);
}

bool HelpFile::Read() {
    auto* bytes = reinterpret_cast<unsigned char*>(bytes_.data());
    return sqlite3_open_v2(":memory:", &database_, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK &&
           sqlite3_deserialize(database_, "main", bytes, bytes_.size(), bytes_.size(),
                               SQLITE_DESERIALIZE_READONLY) == SQLITE_OK &&
           ReadContents() && ReadIndex() && CanSearch();
}

bool HelpFile::ReadContents() {
    Query query(database_, "SELECT Data FROM ContentsTable");
    while (query.Next()) {
        const QByteArray bytes = query.Blob(0);
        QDataStream stream(bytes);
        while (!stream.atEnd()) {
            HelpSection section;
            stream >> section.depth >> section.page >> section.title;
            if (stream.status() != QDataStream::Ok) {
                return false;
            }
            contents_ += section;
        }
    }
    return query.IsWhole() && !contents_.isEmpty();
}

bool HelpFile::ReadIndex() {
    Query query(database_, kIndex);
    while (query.Next()) {
        index_ += HelpKeyword{query.Text(0), query.Text(1)};
    }
    return query.IsWhole();
}

bool HelpFile::CanSearch() const {
    Query query(database_, kSearch, QStringLiteral("\"help\""));
    query.Next();
    return query.IsWhole();
}

QString HelpFile::PageOf(const QString& identifier) const {
    Query query(database_, kPageOf, identifier);
    return query.Next() ? query.Text(0) : QString();
}

QByteArray HelpFile::Bytes(const QString& name) const {
    Query query(database_, kBytes, name);
    return query.Next() ? qUncompress(query.Blob(0)) : QByteArray();
}

QList<HelpMatch> HelpFile::Search(const QString& words) const {
    const QString expression = Expression(words);
    QList<HelpMatch> found;
    if (!expression.isEmpty()) {
        Query query(database_, kSearch, expression);
        while (query.Next()) {
            found += HelpMatch{query.Text(0), query.Text(1), query.Text(2)};
        }
    }
    return found;
}

}  // namespace platform
