// The life of the one data file: new from the template, open, version check and conversion, close.
//
// A failure is told to the user here and leaves no file open; a refused file stays as it was.
#pragma once

#include <QString>

#include <cstdint>

class DatafileHost;

namespace PrepDatafile {

enum Result : std::int16_t { kOpened = 1, kCancelled = 2, kFailed = 3 };

void SetHost(DatafileHost* host);

[[nodiscard]] bool IsDatafileOpen();
// The name of the open file without its folder, and its whole path.
[[nodiscard]] const QString& CurrentFileName();
[[nodiscard]] const QString& CurrentPath();

std::int16_t QueryNewDatafile();
QString NewFileDialog();
std::int16_t QueryOpenDatafile();
bool OpenDatatables(const QString& fileName);
void Convert3to4();
void CloseDatafile();
QString FileTitleFromPath(const QString& path);
// Tells the user that the file cannot be opened, and closes whatever of it is open.
void RefuseDatafile();
// Carries what was written so far through a power cut; nothing when no file is open.
void MakeDurable();

}  // namespace PrepDatafile
