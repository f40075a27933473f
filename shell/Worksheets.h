// The one table of worksheets. A worksheet's place in it, counted from 1, is the number of its tab
// and of its menu item.
#pragma once

#include <QString>

#include <memory>
#include <span>

class QWidget;

namespace worksheets {
class Worksheet;
class WorksheetHost;
}  // namespace worksheets

namespace Worksheets {

struct Line {
    const char* id;
    const char* tabCaption;  // texts as in the source: Text gives what is shown
    const char* menuCaption;
    // What is said where the file has no zone and the worksheet needs one; null where it needs
    // none.
    const char* refusalWithoutZone;
    std::unique_ptr<worksheets::Worksheet> (*make)(worksheets::WorksheetHost& host,
                                                   QWidget* parent);
};

[[nodiscard]] std::span<const Line> Lines();
// The highest number.
[[nodiscard]] int Count();
// The worksheet of a number from 1 to Count().
[[nodiscard]] const Line& At(int number);
// The number of an id that is in the table.
[[nodiscard]] int NumberOf(const QString& id);
// A text of the table in the user's language.
[[nodiscard]] QString Text(const char* source);

}  // namespace Worksheets
