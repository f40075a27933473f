#include "platform/controls/FlexGridPastePlan.h"

#include <QRegularExpression>
#include <algorithm>

#include "platform/text/Numbers.h"

using platform::GridTable;

namespace FlexGridPastePlan {
namespace {

using Takes = GridTable::Takes;

bool IsEmpty(const QStringList& line) {
    return std::all_of(line.begin(), line.end(),
                       [](const QString& text) { return text.isEmpty(); });
}

bool IsTooLong(const QString& text, int longest) {
    return longest > 0 && text.size() > longest;
}

class Planner {
public:
    Planner(const Ground& ground, bool addRows) : ground_(ground) {
        lastRow_ = ground.RowCount() + (addRows ? ground.RoomForRows() : 0);
    }

    void Put(int row, int col, const QString& pasted) {
        const bool there = row <= lastRow_ && col >= 0;
        if (!there) {
            if (!pasted.isEmpty()) {
                Refuse(row, col, pasted, Why::kBeyondTable);
            }
            return;
        }
        const Takes takes = ground_.Takes(row, col);
        const int longest = ground_.MaxLength(col);
        const QString text = AsTyped(pasted, takes == Takes::kNumber, longest);
        Cover(row, col);
        if (takes == Takes::kNothing) {
            // A table copied as a whole brings along what is there already.
            const bool same = row <= ground_.RowCount() && ground_.Text(row, col) == text;
            if (!same && !text.isEmpty()) {
                Refuse(row, col, pasted, Why::kNotEditable);
            }
        } else if (takes == Takes::kNumber && !text.isEmpty() && !platform::IsPlainNumber(text)) {
            Refuse(row, col, pasted, Why::kNoNumber);
        } else if (IsTooLong(text, longest)) {
            Refuse(row, col, pasted, Why::kTooLong);
        } else {
            plan_.cells.push_back({row, col, text});
            plan_.newRows = std::max(plan_.newRows, row - ground_.RowCount());
        }
    }

    Plan Take(const Area& selected) {
        if (plan_.area.bottom == 0) {
            plan_.area = selected;
        }
        return std::move(plan_);
    }

private:
    void Refuse(int row, int col, const QString& text, Why why) {
        plan_.refusals.push_back({row, col, text, why, {}});
    }

    void Cover(int row, int col) {
        Area& area = plan_.area;
        if (area.bottom == 0) {
            area = {row, col, row, col};
        }
        area.bottom = std::max(area.bottom, row);
        area.right = std::max(area.right, col);
    }

    const Ground& ground_;
    int lastRow_ = 0;
    Plan plan_{{}, {}, 0, {1, 0, 0, 0}};
};

int NextCol(const Ground& ground, int from) {
    for (int col = from + 1; col < ground.Cols(); ++col) {
        if (ground.IsShown(col)) {
            return col;
        }
    }
    return -1;
}

// Headings aside.
bool BeginsWithNumbers(const FlexGridClip::Block& block) {
    const auto first = block.begin() + (block.size() > 1 ? 1 : 0);
    return std::all_of(first, block.end(), [](const QStringList& line) {
        return !line.isEmpty() && platform::IsPlainNumber(AsTyped(line.front(), true, 0));
    });
}

}  // namespace

Area Begun(const FlexGridClip::Block& block, const Ground& ground, const Area& selected) {
    std::vector<int> shown;
    for (int col = NextCol(ground, -1); col >= 0; col = NextCol(ground, col)) {
        shown.push_back(col);
    }
    const bool all = !shown.empty() && selected.top == 1 && selected.bottom == ground.RowCount() &&
                     selected.left == shown.front() && selected.right == shown.back();
    if (!all) {
        return selected;
    }
    const auto figures = std::find_if(shown.begin(), shown.end(), [&](int col) {
        return ground.Takes(selected.top, col) == Takes::kNumber;
    });
    qsizetype width = 0;
    for (const QStringList& line : block) {
        width = std::max(width, line.size());
    }
    if (width < 2 || width != shown.end() - figures || !BeginsWithNumbers(block)) {
        return selected;
    }
    return {selected.top, *figures, selected.bottom, selected.right};
}

bool HasHeadings(const FlexGridClip::Block& block, const Ground& ground, const Area& selected) {
    if (block.size() < 2) {
        return false;
    }
    int words = 0;
    bool numbersBelow = false;
    int col = selected.left;
    for (qsizetype at = 0; at < block.front().size() && col >= 0;
         ++at, col = NextCol(ground, col)) {
        if (ground.Takes(selected.top, col) != Takes::kNumber) {
            continue;
        }
        const auto isNumber = [](const QString& text) {
            return platform::IsPlainNumber(AsTyped(text, true, 0));
        };
        if (isNumber(block.front()[at])) {
            return false;
        }
        words += block.front()[at].trimmed().isEmpty() ? 0 : 1;
        numbersBelow = numbersBelow ||
                       std::any_of(block.begin() + 1, block.end(), [&](const QStringList& line) {
                           return at < line.size() && isNumber(line[at]);
                       });
    }
    return words > 0 && numbersBelow;
}

Plan Make(const FlexGridClip::Block& block, const Ground& ground, const Area& selected,
          bool addRows) {
    Planner planner(ground, addRows);
    const bool fills = block.size() == 1 && block.front().size() == 1;
    if (fills) {
        for (int row = selected.top; row <= selected.bottom; ++row) {
            for (int col = selected.left; col >= 0 && col <= selected.right;
                 col = NextCol(ground, col)) {
                planner.Put(row, col, block.front().front());
            }
        }
        return planner.Take(selected);
    }
    int row = selected.top;
    for (const QStringList& line : block) {
        // An empty line makes no new row.
        if (row > ground.RowCount() && IsEmpty(line)) {
            continue;
        }
        int col = selected.left;
        for (const QString& text : line) {
            planner.Put(row, col, text);
            col = col < 0 ? -1 : NextCol(ground, col);
        }
        ++row;
    }
    return planner.Take(selected);
}

QString AsTyped(const QString& text, bool number, int longest) {
    static const QRegularExpression kBreaks(QStringLiteral("[\\r\\n\\t]+"));
    QString line = text;
    if (line.contains(kBreaks)) {
        line = line.replace(kBreaks, QStringLiteral(" ")).trimmed();
    }
    if (!number) {
        return line;
    }
    QString plain = FlexGridClip::PlainNumber(line);
    if (IsTooLong(plain, longest) && plain.contains(u'.') && platform::IsPlainNumber(plain)) {
        static const QRegularExpression kZeros(QStringLiteral("\\.?0+$"));
        plain.remove(kZeros);
    }
    return plain;
}

std::optional<QString> Inserted(const QString& before, const QString& text, const QString& behind,
                                bool number, int longest) {
    const QString inserted = AsTyped(text, number, longest);
    const QString whole = before + inserted + behind;
    const bool isNumber = !number || whole.isEmpty() || platform::IsPlainNumber(whole);
    if (IsTooLong(whole, longest) || !isNumber) {
        return std::nullopt;
    }
    return inserted;
}

}  // namespace FlexGridPastePlan
