// Writing and opening of report files: code page 936, lines ended by CR LF.
#pragma once

#include <QString>

/// Characters outside the code page become question marks. An existing file is replaced. A file that cannot
/// be written is told in a message box.
bool writeReportFile(const QString &path, QString text);

/// Opens the file with the program that the desktop has for it; without a desktop nothing happens.
void openReport(const QString &path);
