#include "worksheets/Subjects.h"

#include <QCoreApplication>

namespace {

constexpr int kNamed = 3;

QString Translate(const char* text) {
    return QCoreApplication::translate("Subjects", text);
}

}  // namespace

namespace Subjects {

QString Shown(const QString& name) {
    return name.trimmed().isEmpty() ? Translate("(no name)") : name;
}

QString Of(const QStringList& names) {
    QStringList first;
    for (const QString& name : names.mid(0, kNamed)) {
        first += Shown(name);
    }
    const qsizetype more = names.size() - first.size();
    const QString named = first.join(QStringLiteral(", "));
    return more <= 0 ? named : Translate("%1 and %2 more").arg(named).arg(more);
}

}  // namespace Subjects
