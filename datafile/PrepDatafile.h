// The life of the one data file: new from the template, open, version check and conversion, close.
//
// A failure is shown to the user here and leaves no file open; a refused file stays as it was. What
// is thrown all the same is a platform::RuntimeError that nobody expected: the last trap shows it.
#pragma once

#include <QString>

#include <cstdint>

namespace datafile {
class DatafileHost;
}

namespace PrepDatafile {

enum class Result : std::int16_t { kOpened = 1, kCancelled = 2, kFailed = 3 };
using enum Result;

// What the operations below ask of the shell; null, and they ask for nothing.
void SetHost(datafile::DatafileHost* host);

[[nodiscard]] bool IsDatafileOpen();
// The name of the open file without its folder, and its whole path.
[[nodiscard]] const QString& CurrentFileName();
[[nodiscard]] const QString& CurrentPath();

// The commands New and Open, from their dialogs on. Both close the former file once the user has
// chosen another one. The record sets are opened by the caller.
Result QueryNewDatafile();
Result QueryOpenDatafile();
// Asks for the name of a new file; its path, or an empty text when the user cancelled.
QString NewFileDialog();
// Opens the file at a path, looks at all of it, and converts it when it is of an older format.
// False when it was refused.
bool OpenDatatables(const QString& fileName);
// Gives the open file of format 3.00.00 the table that it lacks, and the present format's label.
// One transaction: the file is converted or as it was. Throws when it cannot be written.
void Convert3to4();
// Closes record sets and database. Throws when what was changed cannot be made durable; the file is
// closed all the same, and the next opening recovers the changes.
void CloseDatafile();
// Closes what is open of a file that cannot be worked with; nothing is shown.
void GiveUp();
// The part of a path after its last separator, of either kind.
QString FileTitleFromPath(const QString& path);
// Shows the user in one box that the file cannot be opened, and why; closes whatever of it is open.
void RefuseDatafile(const QString& reason);
// Carries what was written so far through a power cut; nothing when no file is open, or while a
// transaction is, whose action ends with it.
void MakeDurable();
// Whether MakeDurable has found that another program deleted or moved the open file, and the user
// does not know yet.
[[nodiscard]] bool HasNews();
// Shows one such piece of news, once; nothing when there is none.
void ShowNews();
// Does beforehand what would make the first MakeDurable wait longer than the others.
void SecureLog() noexcept;

}  // namespace PrepDatafile
