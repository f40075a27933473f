#include "reportpdf/bookmarks.h"

#include <QList>

#include <map>
#include <stdexcept>

namespace reportpdf {

namespace {

[[noreturn]] void ThrowUnknown() {
    throw std::runtime_error("The report cannot be given its bookmarks.");
}

qsizetype NumberBehind(const QByteArray& text, const char* word, qsizetype from = 0) {
    const qsizetype at = text.indexOf(word, from);
    if (at < 0) {
        ThrowUnknown();
    }
    qsizetype begin = at + static_cast<qsizetype>(qstrlen(word));
    while (begin < text.size() && (text[begin] == ' ' || text[begin] == '\n')) {
        ++begin;
    }
    qsizetype end = begin;
    while (end < text.size() && text[end] >= '0' && text[end] <= '9') {
        ++end;
    }
    bool isNumber = false;
    const qlonglong number = text.mid(begin, end - begin).toLongLong(&isNumber);
    if (!isNumber) {
        ThrowUnknown();
    }
    return static_cast<qsizetype>(number);
}

// What is between "N 0 obj" and "endobj".
QByteArray ObjectAt(const QByteArray& pdf, qsizetype table, qsizetype number) {
    // Twenty bytes for each object, behind the line with their count.
    qsizetype line = pdf.indexOf('\n', table + 5) + 1;
    line += number * 20;
    bool isNumber = false;
    const qlonglong place = pdf.mid(line, 10).toLongLong(&isNumber);
    if (!isNumber || place >= pdf.size() ||
        !pdf.mid(place, 32).startsWith(QByteArray::number(number) + " 0 obj")) {
        ThrowUnknown();
    }
    const qsizetype begin = pdf.indexOf("obj", place) + 3;
    const qsizetype end = pdf.indexOf("endobj", begin);
    if (end < 0) {
        ThrowUnknown();
    }
    return pdf.mid(begin, end - begin);
}

// A text of the format: UTF-16, written in hexadecimal digits.
QByteArray TextOf(const QString& text) {
    QByteArray bytes("\xfe\xff", 2);
    for (const QChar unit : text) {
        bytes += static_cast<char>(unit.unicode() >> 8);
        bytes += static_cast<char>(unit.unicode() & 0xff);
    }
    return '<' + bytes.toHex() + '>';
}

QList<QByteArray> PagesOf(const QByteArray& tree) {
    const qsizetype begin = tree.indexOf('[', tree.indexOf("/Kids"));
    const qsizetype end = tree.indexOf(']', begin);
    if (begin < 0 || end < 0) {
        ThrowUnknown();
    }
    QList<QByteArray> pages;
    for (const QByteArray& part : tree.mid(begin + 1, end - begin - 1).simplified().split('R')) {
        const QByteArray page = part.trimmed();
        if (!page.isEmpty()) {
            pages.push_back(page + " R");
        }
    }
    return pages;
}

// The outline as a tree: for each bookmark the number of its parent, its first and last child and
// its neighbors; 0 is the root, bookmark i is i + 1.
struct Node {
    int parent = 0;
    int first = 0;
    int last = 0;
    int before = 0;
    int behind = 0;
};

std::vector<Node> TreeOf(const std::vector<Bookmark>& bookmarks) {
    std::vector<Node> nodes(bookmarks.size() + 1);
    std::vector<int> open{0};
    const auto level = [&](int node) {
        return node == 0 ? -1 : bookmarks[static_cast<std::size_t>(node - 1)].level;
    };
    for (int i = 1; i < static_cast<int>(nodes.size()); ++i) {
        while (level(open.back()) >= level(i)) {
            open.pop_back();
        }
        Node& parent = nodes[static_cast<std::size_t>(open.back())];
        Node& node = nodes[static_cast<std::size_t>(i)];
        node.parent = open.back();
        node.before = parent.last;
        if (parent.last != 0) {
            nodes[static_cast<std::size_t>(parent.last)].behind = i;
        } else {
            parent.first = i;
        }
        parent.last = i;
        open.push_back(i);
    }
    return nodes;
}

// Collects objects, and writes the table that says where they are.
class Update {
public:
    explicit Update(const QByteArray& pdf) : bytes_(pdf) {
        if (!bytes_.endsWith('\n')) {
            bytes_ += '\n';
        }
    }
    void Add(qsizetype number, const QByteArray& object) {
        places_[number] = bytes_.size();
        bytes_ += QByteArray::number(number) + " 0 obj\n" + object + "\nendobj\n";
    }
    QByteArray Finish(const QByteArray& trailer) {
        const qsizetype table = bytes_.size();
        bytes_ += "xref\n";
        for (const auto& [number, place] : places_) {
            bytes_ += QByteArray::number(number) + " 1\n" +
                      QByteArray::number(place).rightJustified(10, '0') + " 00000 n \n";
        }
        bytes_ += "trailer\n" + trailer + "\nstartxref\n" + QByteArray::number(table) + "\n%%EOF\n";
        return std::move(bytes_);
    }

private:
    QByteArray bytes_;
    std::map<qsizetype, qsizetype> places_;
};

QByteArray Reference(qsizetype number) {
    return QByteArray::number(number) + " 0 R";
}

}  // namespace

QByteArray WithBookmarks(const QByteArray& pdf, const std::vector<Bookmark>& bookmarks) {
    const qsizetype table = NumberBehind(pdf, "startxref", pdf.lastIndexOf("startxref"));
    const QByteArray trailer = pdf.mid(pdf.lastIndexOf("trailer"));
    const qsizetype size = NumberBehind(trailer, "/Size");
    const qsizetype root = NumberBehind(trailer, "/Root");
    const qsizetype info = NumberBehind(trailer, "/Info");
    QByteArray catalog = ObjectAt(pdf, table, root);
    const QList<QByteArray> pages = PagesOf(ObjectAt(pdf, table, NumberBehind(catalog, "/Pages")));
    const std::vector<Node> nodes = TreeOf(bookmarks);
    const auto reference = [size](int node) { return Reference(size + node); };

    Update update(pdf);
    catalog.insert(catalog.lastIndexOf(">>"),
                   "/Lang (en)\n/ViewerPreferences << /DisplayDocTitle true >>\n");
    if (!bookmarks.empty()) {
        catalog.insert(catalog.lastIndexOf(">>"),
                       "/PageMode /UseOutlines\n/Outlines " + reference(0) + "\n");
        update.Add(size, "<< /Type /Outlines /First " + reference(nodes[0].first) + " /Last " +
                             reference(nodes[0].last) + " >>");
    }
    for (std::size_t i = 1; i < nodes.size(); ++i) {
        const Node& node = nodes[i];
        const Bookmark& bookmark = bookmarks[i - 1];
        QByteArray object = "<< /Title " + TextOf(bookmark.title) + " /Parent " +
                            reference(node.parent) + " /Dest [" + pages.value(bookmark.page) +
                            " /Fit]";
        object += node.before != 0 ? " /Prev " + reference(node.before) : QByteArray();
        object += node.behind != 0 ? " /Next " + reference(node.behind) : QByteArray();
        object += node.first != 0
                      ? " /First " + reference(node.first) + " /Last " + reference(node.last)
                      : QByteArray();
        update.Add(size + static_cast<qsizetype>(i), object + " >>");
    }
    update.Add(root, catalog.trimmed());
    return update.Finish("<< /Size " +
                         QByteArray::number(size + static_cast<qsizetype>(nodes.size())) +
                         " /Root " + Reference(root) + " /Info " + Reference(info) + " /Prev " +
                         QByteArray::number(table) + " >>");
}

}  // namespace reportpdf
