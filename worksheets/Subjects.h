// How the messages of a failed save name what they are about.
#pragma once

#include <QString>
#include <QStringList>

namespace Subjects {

// A name as people see it in lists: "(no name)" for one that is empty.
[[nodiscard]] QString Shown(const QString& name);
// The first names, and how many there are beside them: "North, South and 3 more".
[[nodiscard]] QString Of(const QStringList& names);

}  // namespace Subjects
