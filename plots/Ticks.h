// Marks of axes that are labeled as the program writes figures.
#pragma once

#include <qcustomplot.h>

#include "plots/Figures.h"
#include "review/tables.h"

namespace plots {

inline QString DollarTick(double tick) {
    return std::abs(tick) < 1 && tick != 0 ? QStringLiteral("$%1").arg(tick) : Dollars(tick);
}

template <typename Ticker>
class DollarTicks : public Ticker {
protected:
    QString getTickLabel(double tick, const QLocale& /*locale*/, QChar /*form*/,
                         int /*precision*/) override {
        return DollarTick(tick);
    }
};

// 0.1, 1, 1,000
template <typename Ticker>
class AcreTicks : public Ticker {
protected:
    QString getTickLabel(double tick, const QLocale& /*locale*/, QChar /*form*/,
                         int /*precision*/) override {
        return tick < 1 ? QString::number(tick) : Dollars(tick).remove(QLatin1Char('$'));
    }
};

}  // namespace plots
