#include "plots/Figures.h"

#include <QCoreApplication>
#include <QStringList>

#include <array>
#include <cmath>

#include "review/tables.h"

namespace plots {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(Figures)
};

QString Text(const std::string& text) {
    return QString::fromStdString(text);
}

QString At(const QString& place, const QString& more) {
    return place.isEmpty() ? more : place + QStringLiteral(", ") + more;
}

// Counted from 0.
QString Level(int level) {
    return Texts::tr("FIL %1").arg(level + 1);
}

QString PerAcre(double dollars) {
    return Texts::tr("%1 per acre").arg(Dollars(dollars));
}

QString SizeOf(const review::CostChart::Step& step) {
    const QString from = Text(review::AcresText(step.from));
    if (step.to <= 0) {
        return step.from > 0 ? Texts::tr("fires above %1 acres").arg(from)
                             : Texts::tr("fires of any size");
    }
    const QString to = Text(review::AcresText(step.to));
    return step.from > 0 ? Texts::tr("fires of %1 to %2 acres").arg(from, to)
                         : Texts::tr("fires up to %1 acres").arg(to);
}

struct Collect {
    const QString& place;
    std::vector<Figure> figures;

    void operator()(std::monostate /*nothing*/) {}
    void operator()(const review::CostChart& chart) {
        for (std::size_t i = 0; i < chart.steps.size(); ++i) {
            figures.push_back({{0, static_cast<int>(i)},
                               At(place, SizeOf(chart.steps[i])) + QStringLiteral(": ") +
                                   PerAcre(chart.steps[i].cost)});
        }
    }
    void operator()(const review::TotalsChart& chart) {
        for (std::size_t panel = 0; panel < chart.panels.size(); ++panel) {
            // "Location 2" goes on from a place; nothing does when the place is the panel's own.
            const QString title = Text(chart.panels[panel].title).toLower();
            const QString where = title.isEmpty() ? place : At(place, title);
            for (int level = 0; level < season::kFilLevels; ++level) {
                figures.push_back(
                    {{static_cast<int>(panel), level},
                     At(where, Level(level)) + QStringLiteral(": ") +
                         PerAcre(chart.panels[panel].totals[static_cast<std::size_t>(level)])});
            }
        }
    }
    void operator()(const review::HeatMap& map) {
        for (std::size_t row = 0; row < map.rows.size(); ++row) {
            for (int level = 0; level < season::kFilLevels; ++level) {
                const QString value = Value(map.values[row][static_cast<std::size_t>(level)]);
                figures.push_back({{static_cast<int>(row), level},
                                   At(At(place, Text(map.rows[row])), Level(level)) +
                                       QStringLiteral(": ") +
                                       Texts::tr("%1 dollars per acre").arg(value)});
            }
        }
    }
    void operator()(const review::BarChart& chart) {
        for (std::size_t i = 0; i < chart.bars.size(); ++i) {
            figures.push_back({{0, static_cast<int>(i)},
                               At(place, Text(chart.bars[i].label)) + QStringLiteral(": ") +
                                   Text(chart.bars[i].text)});
        }
    }
};

QString Extremes(const review::HeatMap& map) {
    double lowest = 0;
    double highest = 0;
    std::array<QString, 2> places;
    for (std::size_t row = 0; row < map.rows.size(); ++row) {
        for (std::size_t level = 0; level < map.values[row].size(); ++level) {
            const double value = map.values[row][level];
            const QString where = At(Text(map.rows[row]), Level(static_cast<int>(level)));
            if (value < lowest) {
                lowest = value;
                places[0] = where;
            }
            if (value > highest) {
                highest = value;
                places[1] = where;
            }
        }
    }
    QString words;
    if (lowest < 0) {
        words += u' ' + Texts::tr("The largest loss is %1 (%2).").arg(Value(lowest), places[0]);
    }
    if (highest > 0) {
        words += u' ' + Texts::tr("The largest gain is %1 (%2).").arg(Value(highest), places[1]);
    }
    return words.isEmpty() ? u' ' + Texts::tr("All of them are 0.") : words;
}

struct Words {
    QString operator()(std::monostate /*nothing*/) const { return {}; }
    QString operator()(const review::CostChart& chart) const {
        return chart.steps.empty() ? Texts::tr("No class of fire size with a cost is in use.")
                                   : Text(chart.words.alternative);
    }
    QString operator()(const review::TotalsChart& chart) const {
        return chart.panels.empty() ? Texts::tr("There is no location.")
                                    : Text(chart.words.alternative);
    }
    QString operator()(const review::HeatMap& map) const {
        return Texts::tr("The values of %1 resources at FIL 1 to 6, in dollars per acre.")
                   .arg(map.rows.size()) +
               Extremes(map);
    }
    QString operator()(const review::BarChart& chart) const {
        return chart.bars.empty() ? Texts::tr("There is nothing to show.")
                                  : Text(chart.words.alternative);
    }
};

}  // namespace

QString Dollars(double dollars) {
    return Text(review::DollarsText(dollars));
}

QString ShortDollars(double dollars) {
    struct Unit {
        double amount;
        const char* letter;
    };
    constexpr std::array<Unit, 3> kUnits{{{1e9, "G"}, {1e6, "M"}, {1e3, "k"}}};
    for (const Unit& unit : kUnits) {
        if (std::abs(dollars) >= unit.amount) {
            const double shown = dollars / unit.amount;
            return QString::number(shown, 'f', std::abs(shown) < 10 ? 1 : 0) +
                   QLatin1String(unit.letter);
        }
    }
    return QString::number(dollars, 'f', 0).replace(QStringLiteral("-0"), QStringLiteral("0"));
}

QString Value(double value) {
    return Text(review::ValueText(static_cast<float>(value)));
}

std::vector<Figure> FiguresOf(const ChartContent& content, const QString& place) {
    Collect collect{place, {}};
    std::visit(collect, content);
    return std::move(collect.figures);
}

QString Describe(const ChartContent& content) {
    return std::visit(Words(), content);
}

}  // namespace plots
