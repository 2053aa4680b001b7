// Handing results to the desktop from a command.
#pragma once

#include <QString>

/// Opens a file or an address with the program that the desktop has for it. Where that cannot be, without a
/// desktop and in a run by script, nothing is opened, and a line tells the user what there is to open.
void acedOpenWithDesktop(const QString &target);
/// The same for a file that a program of its own shows.
void acedOpenWithProgram(const QString &program, const QString &file);
