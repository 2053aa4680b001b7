// What lies in the install folder beside the module and is opened or started: help pages, cloud programs.
#pragma once

#include <QString>

/// A shipped page: "help/help.html".
void openInstalledPage(const QString &name, const QString &anchor = {});
/// The help on the phrase menus: the file of the phrase library, else the shipped page.
void openPhraseHelp(const QString &anchor = {});
/// "Yun\\QuillnoteYun.exe", with the install folder as its working folder. False when it is not there.
bool startInstalledProgram(const QString &name);
/// The same; says so when the program is missing.
void startCloudProgram(const QString &name);
