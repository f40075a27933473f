// The help file: its pages with their styles and pictures, and the ways to them.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <memory>

struct sqlite3;

namespace platform {

// A place in the tree of contents.
struct HelpSection {
    int depth = 0;  // 0 for the root
    QString page;   // its name in the file, such as "pages/zones.html"
    QString title;
};

struct HelpKeyword {
    QString text;
    QString page;
};

// A page that holds what was looked for.
struct HelpMatch {
    QString page;
    QString title;
    QString excerpt;  // the words with those around them
};

class HelpFile {
public:
    // Nothing when it cannot be read as a whole. The file is free again when this returns.
    static std::unique_ptr<HelpFile> Open(const QString& path);
    HelpFile(const HelpFile&) = delete;
    HelpFile& operator=(const HelpFile&) = delete;
    ~HelpFile();

    // In the order in which they are read.
    [[nodiscard]] const QList<HelpSection>& Contents() const { return contents_; }
    // By the alphabet, without regard to case.
    [[nodiscard]] const QList<HelpKeyword>& Index() const { return index_; }
    // The page that carries this identifier, empty when none does.
    [[nodiscard]] QString PageOf(const QString& identifier) const;
    // What the file holds under this name, empty when it does not.
    [[nodiscard]] QByteArray Bytes(const QString& name) const;
    // The pages that hold all of these words, or words that begin so; words between quotes stand
    // side by side. The best comes first.
    [[nodiscard]] QList<HelpMatch> Search(const QString& words) const;

private:
    class Query;

    explicit HelpFile(QByteArray bytes) : bytes_(std::move(bytes)) {}
    bool Read();
    bool ReadContents();
    bool ReadIndex();
    [[nodiscard]] bool CanSearch() const;

    QByteArray bytes_;  // what the database is read from
    sqlite3* database_ = nullptr;
    QList<HelpSection> contents_;
    QList<HelpKeyword> index_;
};

}  // namespace platform
