// The folder of the phrase files: where it is, choosing another one, showing it, what it held last.
#pragma once

#include "quillnote/ui/phrase_library.h"

#include "host/base/file_stamp.h"

/// The setting CYZSLocation, else "常用知识" in the install folder; ends in a slash. Empty when the setting
/// holds blanks alone.
QString phraseFolder();
/// Asks for a folder, stores it and shows it. False when the user leaves the question.
bool choosePhraseFolder();
/// Shows it with the desktop's program; says so when it is not there.
void showPhraseFolder();

/// The library that the settings ask for, with the messages that belong to reading it shown to the user.
/// Where the XML library fails the folder takes its place, and the setting useXmlMenu is cleared.
PhraseLibrary loadPhraseLibrary();

/// The folder as it was read last. It is read again when one of its files is another one; marks made one
/// after the other would read it each time.
struct PhraseFolderMemory {
    QString folder;
    std::vector<std::pair<QString, base::FileStamp>> files;
    PhraseLibrary library;

    void reset() { *this = {}; }
};
PhraseFolderMemory &phraseFolderMemory();

/// Adds a phrase to a phrase file. False when it is not there afterwards or was there before; what the user
/// has to know of it is told.
bool storePhrase(const QString &file, const QString &phrase);

/// The phrases for the cloud: writes them to a file, opens it, starts the program that imports it.
void uploadPhrases(const PhraseLibrary &library);
/// Starts the program that fetches phrases from the cloud.
void downloadPhrases();
