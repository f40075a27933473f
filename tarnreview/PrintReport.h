// The report on paper: its pages are shown first, and printed from there.
#pragma once

#include "review/document.h"

class QString;
class QWidget;

namespace PrintReport {

// Shows the pages until the dialog is closed. `name` is what the printer's queue calls it. Throws
// std::runtime_error with a sentence when they cannot be made.
void Preview(QWidget* parent, const review::Document& document, const QString& name);

}  // namespace PrintReport
