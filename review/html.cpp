#include "review/html.h"

#include "review/svg.h"
#include "season/text.h"

namespace review {

namespace {

// Changed cells are marked by color, underline and the struck-out former figure.
constexpr std::string_view kStyle = R"(
:root { color-scheme: light; }
body { font: 11pt/1.4 "Liberation Sans", Arial, Helvetica, sans-serif; color: #111;
  background: #fff; max-width: 60rem; margin: 0 auto; padding: 1.5rem; }
h1 { font-size: 1.7em; margin: 0 0 .4em; }
h2 { font-size: 1.3em; margin: 1.6em 0 .5em; border-bottom: 2px solid #444; }
h3 { font-size: 1.1em; margin: 1.2em 0 .4em; }
dl { display: grid; grid-template-columns: max-content 1fr; gap: .15em 1em; margin: 0; }
dt { font-weight: bold; }
dd { margin: 0; }
p { white-space: pre-line; margin: .4em 0; }
p, h1, h2, h3, dd, caption, figcaption, a { overflow-wrap: anywhere; }
.wide { overflow-x: auto; }
nav ul { columns: 2; padding-left: 1.2em; }
table { border-collapse: collapse; margin: .6em 0 1em; font-variant-numeric: tabular-nums; }
caption { text-align: left; font-weight: bold; padding: .2em 0; }
th, td { border: 1px solid #888; padding: .15em .5em; text-align: left; vertical-align: top; }
thead th { background: #e8e8e8; }
tbody th { font-weight: normal; min-width: 6em; overflow-wrap: anywhere; }
tfoot th, tfoot td { font-weight: bold; border-top: 2px solid #444; }
.n { text-align: right; white-space: nowrap; }
.c { background: #ffe9b8; outline: 2px solid #8a5a00; outline-offset: -2px; }
ins { font-weight: bold; text-decoration: underline; }
del { color: #444; margin-right: .4em; }
figure { margin: .8em 0 1.2em; }
figcaption { font-weight: bold; margin-bottom: .3em; }
svg { max-width: 100%; height: auto; }
summary { font-size: 1.1em; font-weight: bold; cursor: pointer; margin: .6em 0; }
.hidden { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); }
@media (max-width: 40rem) {
  body { font-size: 10pt; padding: .7rem; }
  nav ul { columns: 1; }
  th, td { padding: .1em .25em; }
}
@page { margin: 18mm 15mm; @bottom-right { content: counter(page) " / " counter(pages); } }
@media print {
  body { max-width: none; padding: 0; font-size: 9.5pt; }
  nav { display: none; }
  .page { break-before: page; }
  h2, h3, caption, figcaption { break-after: avoid; }
  thead { display: table-header-group; }
  tfoot { display: table-row-group; }
  tr, figure, .whole { break-inside: avoid; }
  .wide { overflow: visible; }
}
)";

std::string IdOf(std::size_t index) {
    return "s" + std::to_string(index + 1);
}

class Writer {
public:
    std::string Write(const Document& document) {
        out_ =
            "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
            "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
            HtmlText(document.title) + "</title>\n<style>" + std::string(kStyle) +
            "</style>\n</head>\n<body>\n<header>\n<h1>" + HtmlText(document.title) + "</h1>\n";
        WriteFacts(document);
        out_ += "</header>\n";
        WriteContents(document);
        out_ += "<main>\n";
        for (std::size_t i = 0; i < document.sections.size(); ++i) {
            WriteSection(document.sections[i], IdOf(i));
        }
        return std::move(out_) + "</main>\n</body>\n</html>\n";
    }

private:
    void WriteFacts(const Document& document) {
        if (document.facts.empty()) {
            return;
        }
        out_ += "<dl>\n";
        for (const auto& [name, text] : document.facts) {
            out_ += "<dt>" + HtmlText(name) + "</dt><dd>" + HtmlText(text) + "</dd>\n";
        }
        out_ += "</dl>\n";
    }

    void WriteContents(const Document& document) {
        if (document.sections.size() < 3) {
            return;
        }
        out_ += "<nav aria-label=\"Contents\">\n<ul>\n";
        for (std::size_t i = 0; i < document.sections.size(); ++i) {
            if (document.sections[i].level == 2) {
                out_ += "<li><a href=\"#" + IdOf(i) + "\">" +
                        HtmlText(document.sections[i].heading) + "</a></li>\n";
            }
        }
        out_ += "</ul>\n</nav>\n";
    }

    void WriteSection(const Section& section, const std::string& id) {
        const std::string heading = "h" + std::to_string(section.level);
        const std::string page = section.onNewPage ? " class=\"page\"" : "";
        if (section.isFolded) {
            out_ += "<details id=\"" + id + "\"" + page + ">\n<summary>" +
                    HtmlText(section.heading) + "</summary>\n";
        } else {
            out_ += "<section aria-labelledby=\"" + id + "\"" + page + ">\n<" + heading + " id=\"" +
                    id + "\">" + HtmlText(section.heading) + "</" + heading + ">\n";
        }
        for (const Block& block : section.blocks) {
            std::visit([this](const auto& shown) { Write(shown); }, block);
        }
        out_ += section.isFolded ? "</details>\n" : "</section>\n";
    }

    void Write(const Paragraph& paragraph) { out_ += "<p>" + HtmlText(paragraph.text) + "</p>\n"; }

    void WriteCell(const Cell& cell, const char* scope) {
        const bool isHead = scope != nullptr || cell.isHead;
        out_ += isHead ? "<th" : "<td";
        if (isHead) {
            out_ += std::string(" scope=\"") + (scope != nullptr ? scope : "row") + '"';
        }
        if (cell.columns > 1) {
            out_ += " colspan=\"" + std::to_string(cell.columns) + '"';
        }
        const std::string kind = std::string(cell.isNumber ? "n" : "") +
                                 (cell.isNumber && cell.isChanged ? " " : "") +
                                 (cell.isChanged ? "c" : "");
        if (!kind.empty()) {
            out_ += " class=\"" + kind + '"';
        }
        out_ += '>';
        if (cell.isChanged) {
            out_ += "<span class=\"hidden\">was </span><del>" + HtmlText(cell.before) +
                    "</del><span class=\"hidden\">is </span><ins>" + HtmlText(cell.text) + "</ins>";
        } else {
            out_ += HtmlText(cell.text);
        }
        out_ += isHead ? "</th>" : "</td>";
    }

    void WriteRows(const char* part, const std::vector<std::vector<Cell>>& rows) {
        if (rows.empty()) {
            return;
        }
        out_ += std::string("<") + part + ">\n";
        for (const auto& row : rows) {
            out_ += "<tr>";
            for (const Cell& cell : row) {
                WriteCell(cell, nullptr);
            }
            out_ += "</tr>\n";
        }
        out_ += std::string("</") + part + ">\n";
    }

    void Write(const Table& table) {
        // A short table is never torn between two pages.
        constexpr std::size_t kShort = 25;
        // A wide table is moved sideways by itself on a small screen.
        out_ += std::string("<div class=\"wide\">\n<table") +
                (table.rows.size() <= kShort ? " class=\"whole\"" : "") + ">\n<caption>" +
                HtmlText(table.caption) + "</caption>\n<thead>\n<tr>";
        for (const Cell& cell : table.head) {
            WriteCell(cell, "col");
        }
        out_ += "</tr>\n</thead>\n";
        WriteRows("tbody", table.rows);
        WriteRows("tfoot", table.totals);
        out_ += "</table>\n</div>\n";
    }

    template <typename Chart>
    void Write(const Chart& chart) {
        out_ += "<figure>\n<figcaption>" + HtmlText(chart.words.caption) + "</figcaption>\n" +
                SvgOf(chart) + "</figure>\n";
    }

    std::string out_;
};

}  // namespace

std::string HtmlText(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char c : season::WellFormed(text)) {
        const auto code = static_cast<unsigned char>(c);
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            case '\r':
                break;
            default:
                if (code >= 0x20 || c == '\n' || c == '\t') {
                    result += c;
                }
        }
    }
    return result;
}

std::string HtmlOf(const Document& document) {
    return Writer().Write(document);
}

}  // namespace review
