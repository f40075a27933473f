// What the program asks of the machine: its own folder, files, the screen, the pointer, the
// clipboard. Lengths are twips; 15 twips are one logical pixel.
#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

class QWidget;

namespace platform {

inline constexpr int kTwipsPerPixel = 15;
inline constexpr int ToTwips(int pixels) {
    return pixels * kTwipsPerPixel;
}
// Whole pixels, rounded down.
inline constexpr int ToPixels(int twips) {
    return twips / kTwipsPerPixel;
}

// Where the program finds its files and keeps its own, without a separator at its end: the folder
// of the executable, or the one that TARNPREP_HOME names where the program is installed for many
// users.
QString ProgramFolder();
// Tests put their own folder in its place; an empty text undoes it.
void SetProgramFolder(const QString& folder);
// `folder`, the host's separator, `name`.
QString JoinPath(const QString& folder, const QString& name);

// The names of the normal files that match the path's last part ("*" and "?" allowed, no regard to
// case; an empty last part means all). A folder that does not exist gives none. kPathAccess and
// kPermissionDenied when the folder cannot be listed.
QStringList Dir(const QString& pattern);
// The path of the file in this folder whose name equals `name` without regard to case; the path
// with the name as given when there is none.
QString FindFile(const QString& folder, const QString& name);
// `path` when it exists; else the path that exists and equals it without regard to the case of its
// parts and the kind of its separators; else `path`.
QString FindPath(const QString& path);
// Copies a file over `to` if that exists, as a whole or not at all. kFileNotFound, kPathNotFound,
// kPermissionDenied, kPathAccess, kDiskFull.
void FileCopy(const QString& from, const QString& to);

// Size of the screen that the main frame is on, in twips.
QSize ScreenSize();

enum class Pointer { kDefault = 0, kHourglass = 11 };
// Sets the program's one pointer; not a stack.
void SetMousePointer(Pointer pointer);
Pointer MousePointer();

QString ClipboardText();
void SetClipboardText(const QString& text);

// Puts a dialog over the middle of the main frame, inside the screen.
void PlaceOver(QWidget& dialog, const QWidget& frame);

}  // namespace platform
