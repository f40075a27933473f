// What a grid says about a cell whose text was not stored as it was typed.
#pragma once

#include <QString>

namespace FlexGridNotes {

struct Cell {
    QString row;      // what the row is called
    QString heading;  // the column's, in one line
};

// "Stored as 1": what the cell's tool tip and its description say.
QString StoredAs(const QString& stored);
// The sentence of the note line: "Forage, FIL 3: '-1,250' was read as -1. Type -1250." `number`
// says whether the column holds numbers, `longest` is what can be typed into it; 0: any length.
QString ReadAs(const Cell& cell, const QString& typed, const QString& stored, bool number,
               int longest);
// The sentence about a text that was refused, with the reason that the table gave.
QString Refused(const Cell& cell, const QString& reason);

// A number that somebody who typed the text may have meant, when it can be typed and would be read
// as itself; else empty. "1,250" is 1250, "(75)" is -75, "12,5" is 12.5.
QString Meant(const QString& typed, int longest);
// A number that is 0.
bool IsZero(const QString& text);
// The beginning of a number that is still being typed, such as "-" or "1e".
bool MayBecomeNumber(const QString& text);
// Whether what is stored is the number that was typed, however it was written.
bool SameNumber(const QString& typed, const QString& stored);

}  // namespace FlexGridNotes
