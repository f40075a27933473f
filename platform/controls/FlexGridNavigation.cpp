#include "platform/controls/FlexGridNavigation.h"

#include <algorithm>

namespace platform {

std::optional<FlexGridNavigation::Place> FlexGridNavigation::Lead(Move move, Place from) {
    if (move == Move::kTab || move == Move::kBacktab) {
        const std::optional<Place> stop = NextStop(from, move == Move::kTab ? 1 : -1);
        if (stop && !runCol_) {
            runCol_ = from.col;
        }
        return stop;
    }
    Place to = Target(move, from);
    if (move == Move::kEnter && runCol_ && ground_.IsShown(*runCol_)) {
        to.col = *runCol_;
    }
    const bool inside = to.row >= ground_.FirstRow() && to.row <= ground_.LastRow() && to.col >= 0;
    if (!inside || to == from) {
        return std::nullopt;
    }
    EndRun();
    return to;
}

FlexGridNavigation::Place FlexGridNavigation::Target(Move move, Place from) const {
    const int first = ground_.FirstRow();
    const int last = ground_.LastRow();
    switch (move) {
        case Move::kUp:
        case Move::kEnterUp:
            return {from.row - 1, from.col};
        case Move::kDown:
        case Move::kEnter:
            return {from.row + 1, from.col};
        case Move::kPageUp:
            return {std::max(from.row - ground_.PageRows(), first), from.col};
        case Move::kPageDown:
            return {std::min(from.row + ground_.PageRows(), last), from.col};
        case Move::kFirstRow:
            return {first, from.col};
        case Move::kLastRow:
            return {last, from.col};
        case Move::kLeft:
            return {from.row, NextCol(from.col, -1)};
        case Move::kRight:
            return {from.row, NextCol(from.col, 1)};
        case Move::kRowStart:
            return {from.row, NextCol(-1, 1)};
        case Move::kRowEnd:
            return {from.row, NextCol(ground_.Cols(), -1)};
        case Move::kFirstCell:
            return {first, NextCol(-1, 1)};
        case Move::kLastCell:
            return {last, NextCol(ground_.Cols(), -1)};
        case Move::kTab:
        case Move::kBacktab:
            break;
    }
    return from;
}

int FlexGridNavigation::NextCol(int from, int step) const {
    for (int col = from + step; col >= 0 && col < ground_.Cols(); col += step) {
        if (ground_.IsShown(col)) {
            return col;
        }
    }
    return -1;
}

std::optional<FlexGridNavigation::Place> FlexGridNavigation::NextStop(Place from, int step) const {
    Place to = from;
    for (;;) {
        to.col = NextCol(to.col, step);
        if (to.col < 0) {
            to.row += step;
            to.col = step > 0 ? NextCol(-1, 1) : NextCol(ground_.Cols(), -1);
        }
        if (to.row < ground_.FirstRow() || to.row > ground_.LastRow() || to.col < 0) {
            return std::nullopt;
        }
        if (ground_.TabStops(to.row, to.col)) {
            return to;
        }
    }
}

}  // namespace platform
