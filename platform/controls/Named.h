// The names of controls: the one by which the program and its tests find them, and the one that
// assistive technology says.
#pragma once

#include <QString>

class QLabel;
class QWidget;

namespace platform {

// `name` is plain ASCII, `spoken` what assistive technology says.
void Name(QWidget& control, const char* name, const QString& spoken);
// A caption as it is said: without the mark of its letter, a colon or dots at the end.
[[nodiscard]] QString Spoken(const QString& caption);
// A label with this caption, said as it reads.
QLabel* NamedLabel(QWidget* parent, const char* name, const QString& caption);
// The control is said as its label, and the label's letter leads to it.
void NameByLabel(QWidget& control, const char* name, QLabel& label);

}  // namespace platform
