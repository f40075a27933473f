#include "platform/controls/Named.h"

#include <QLabel>

namespace platform {

void Name(QWidget& control, const char* name, const QString& spoken) {
    control.setObjectName(QString::fromLatin1(name));
    control.setAccessibleName(spoken);
}

QString Spoken(const QString& caption) {
    QString spoken = QString(caption).remove(QLatin1Char('&')).simplified();
    while (spoken.endsWith(QLatin1Char(':')) || spoken.endsWith(QLatin1Char('.'))) {
        spoken.chop(1);
    }
    return spoken;
}

QLabel* NamedLabel(QWidget* parent, const char* name, const QString& caption) {
    auto* label = new QLabel(caption, parent);
    Name(*label, name, Spoken(caption));
    return label;
}

void NameByLabel(QWidget& control, const char* name, QLabel& label) {
    Name(control, name, label.accessibleName());
    label.setBuddy(&control);
}

}  // namespace platform
