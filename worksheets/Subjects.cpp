#include "worksheets/Subjects.h"

#include <QCoreApplication>

namespace {

constexpr int kNamed = 3;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(Subjects)
};

}  // namespace

namespace Subjects {

QString Shown(const QString& name) {
    return name.trimmed().isEmpty() ? Texts::tr("(no name)") : name;
}

QString Of(const QStringList& names) {
    QStringList first;
    for (const QString& name : names.mid(0, kNamed)) {
        first += Shown(name);
    }
    const qsizetype more = names.size() - first.size();
    const QString named = first.join(QStringLiteral(", "));
    return more <= 0 ? named : Texts::tr("%1 and %2 more").arg(named).arg(more);
}

}  // namespace Subjects
