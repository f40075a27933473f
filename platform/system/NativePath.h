// File names as the system keeps them and as the program holds them.
//
// Systems whose names are bytes take any bytes, while the program's texts are characters: a name
// that an older system wrote in Latin-1 is no UTF-8. Bytes that are not become characters that no
// text holds otherwise (U+DC80 to U+DCFF), so that the name can be given back as it was.
#pragma once

#include <QString>

#include <filesystem>

namespace platform {

QString FromNativePath(const std::filesystem::path& path);
// What stands behind the program's name, as one text, the path of a file: nothing in it is a
// switch, and no blank separates arguments.
QString CommandLine(int argc, char* argv[]);
std::filesystem::path ToNativePath(const QString& path);
// The same for people to read: such bytes as the Latin-1 letters that they most likely are.
QString ShownPath(QString path);

}  // namespace platform
