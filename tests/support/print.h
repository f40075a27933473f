// Lets a failing test show texts as texts. Every file of a test program must include it, or none.
#pragma once

#include <QString>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
