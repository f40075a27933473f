#include "platform/controls/FlexGridNotes.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include "platform/RuntimeError.h"
#include "platform/controls/FlexGridClip.h"
#include "platform/text/Numbers.h"

namespace FlexGridNotes {
namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(FlexGridNotes)
};

QString Named(const Cell& cell) {
    QStringList names{cell.row, cell.heading};
    names.removeAll(QString());
    return names.join(QStringLiteral(", "));
}

QString Fitting(const QString& number, int longest) {
    const bool fits = longest <= 0 || number.size() <= longest;
    return fits && platform::IsPlainNumber(number) ? number : QString();
}

}  // namespace

QString StoredAs(const QString& stored) {
    return stored.isEmpty() ? Texts::tr("Stored as nothing")
                            : Texts::tr("Stored as %1").arg(stored);
}

QString ReadAs(const Cell& cell, const QString& typed, const QString& stored, bool number,
               int longest) {
    if (!number) {
        return Texts::tr("%1: '%2' was stored as '%3'.").arg(Named(cell), typed, stored);
    }
    if (platform::IsPlainNumber(typed)) {
        return Texts::tr("%1: '%2' became %3.").arg(Named(cell), typed, stored);
    }
    const QString meant = Meant(typed, longest);
    const QString advice =
        meant.isEmpty() ? Texts::tr("Type a number.") : Texts::tr("Type %1.").arg(meant);
    return Texts::tr("%1: '%2' was read as %3. %4").arg(Named(cell), typed, stored, advice);
}

QString Refused(const Cell& cell, const QString& reason) {
    return QStringLiteral("%1: %2").arg(Named(cell), reason);
}

QString Meant(const QString& typed, int longest) {
    // A single comma before one or two digits is the decimal point of many countries.
    static const QRegularExpression kDecimalComma(QStringLiteral("^([^,.]*),(\\d{1,2})$"));
    QString text = typed.trimmed();
    text.replace(kDecimalComma, QStringLiteral("\\1.\\2"));
    const QString plain = FlexGridClip::PlainNumber(text);
    return plain == typed ? QString() : Fitting(plain, longest);
}

bool IsZero(const QString& text) {
    return SameNumber(QStringLiteral("0"), text);
}

bool MayBecomeNumber(const QString& text) {
    static const QRegularExpression kBeginning(
        QStringLiteral("^\\s*[-+]?(\\d+\\.?\\d*|\\.\\d*)?([eEdD][-+]?)?$"));
    return kBeginning.match(text).hasMatch();
}

bool SameNumber(const QString& typed, const QString& stored) {
    if (!platform::IsPlainNumber(typed) || !platform::IsPlainNumber(stored)) {
        return false;
    }
    try {
        const double wanted = platform::Val(typed);
        const double kept = platform::Val(stored);
        return wanted == kept || platform::ToSingle(wanted) == platform::ToSingle(kept);
    } catch (const platform::RuntimeError&) {
        return false;
    }
}

}  // namespace FlexGridNotes
