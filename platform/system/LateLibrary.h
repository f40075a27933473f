// A library that lies beside the program and is loaded when it is asked for: no start waits for it,
// and the program does without it where it is not there.
#pragma once

#include <QObject>
#include <QString>

namespace platform {

// What the library of this name ("tarnplots") makes when it is loaded; null when it cannot be.
// Loaded once, and kept.
QObject* LateInstance(const QString& name);

// Its face; null too when it has none of this kind.
template <typename Face>
Face* LateLibrary(const QString& name) {
    return qobject_cast<Face*>(LateInstance(name));
}

}  // namespace platform
