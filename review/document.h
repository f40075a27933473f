// A document to be shown, printed or saved: sections of text, tables and charts, without a word
// about how they look. Texts are UTF-8.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace review {

struct Paragraph {
    std::string text;
};

struct Cell {
    std::string text;
    bool isNumber = false;
    bool isHead = false;  // names its row
    bool isChanged = false;
    std::string before;  // what stood there, where it is changed
    int columns = 1;     // how many it spans
};

inline Cell HeadCell(std::string text) {
    Cell cell;
    cell.text = std::move(text);
    cell.isHead = true;
    return cell;
}
inline Cell NumberCell(std::string text) {
    Cell cell;
    cell.text = std::move(text);
    cell.isNumber = true;
    return cell;
}
inline Cell TextCell(std::string text) {
    Cell cell;
    cell.text = std::move(text);
    return cell;
}

struct Table {
    std::string caption;
    std::vector<Cell> head;  // repeats where the table goes on on another page
    std::vector<std::vector<Cell>> rows;
    std::vector<std::vector<Cell>> totals;
};

// Every chart can be told in words, which stand for it where it cannot be seen.
struct ChartWords {
    std::string caption;
    std::string alternative;
};

// Steps of cost per acre over fire size; both axes are logarithmic.
struct CostChart {
    struct Step {
        double from = 0;  // acres; 0 for the first
        double to = 0;    // 0: open
        double cost = 0;  // dollars per acre
    };
    ChartWords words;
    std::vector<Step> steps;
};

// Totals by FIL, a small chart for each location, all on one scale.
struct TotalsChart {
    struct Panel {
        std::string title;
        std::array<double, 6> totals{};
    };
    ChartWords words;
    std::vector<Panel> panels;
};

// One square for each value, darker with its amount, losses and gains apart.
struct HeatMap {
    ChartWords words;
    std::vector<std::string> rows;
    std::vector<std::array<double, 6>> values;
    double largest = 0;  // the amount that is darkest
};

// A bar for each of a few figures.
struct BarChart {
    struct Bar {
        std::string label;
        double value = 0;
        std::string text;  // the figure as it is shown
    };
    ChartWords words;
    std::vector<Bar> bars;
};

using Block = std::variant<Paragraph, Table, CostChart, TotalsChart, HeatMap, BarChart>;

struct Section {
    std::string heading;
    int level = 2;
    bool onNewPage = false;
    bool isFolded = false;  // where that can be: shown when asked for
    std::vector<Block> blocks;
};

struct Document {
    std::string title;
    std::vector<std::pair<std::string, std::string>> facts;  // under the title: "Unit", "..."
    std::vector<Section> sections;
};

}  // namespace review
