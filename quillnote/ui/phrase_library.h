// The phrase library: phrases to choose from, in menus. It comes from a folder of phrase files or from an XML
// file, as that is when the editor opens.
#pragma once

#include "host/base/phrase_file.h"

#include "host/base/result.h"

#include <QFileInfo>
#include <QStringList>

struct PhraseMenu {
    QString name;
    QString file; ///< The phrase file; empty in an XML library.
    int end = 0;  ///< Index behind the menu's last phrase.
};

struct PhraseLibrary {
    QString bigCategory;
    bool fromXml = false;
    std::vector<PhraseMenu> menus;
    std::vector<Phrase> phrases; ///< Of all menus, one after the other; later additions at the end.
};

inline constexpr int kMostPhraseMenus = 30;
inline constexpr int kMostPhrases = 900;

/// The name of a menu: a title of more than 12 characters is cut to 8.
QString phraseMenuName(const QString &title);
/// Another menu with its phrases, which get the category.
void addPhraseMenu(PhraseLibrary &library, PhraseMenu menu, const QString &category,
                   std::vector<Phrase> phrases);

/// What reading a folder met: messages for the user, and whether the folder should be shown to him.
struct PhraseTroubles {
    QStringList messages;
    bool showsFolder = false;
};
/// The phrase files (*.txt) of a folder, in the order of their names.
QFileInfoList phraseFiles(const QString &folder);
/// All phrase files of a folder. Whatever cannot be read is told and
/// left out.
PhraseLibrary loadPhraseFolder(const QString &folder, PhraseTroubles &troubles);

/// No value when the bytes are no XML document. UTF-8 with or without a byte-order mark, else code page 936.
std::optional<PhraseLibrary> parsePhraseXml(QByteArrayView bytes);
/// The error is a message for the user; empty when no file is set.
base::Result<PhraseLibrary, QString> loadPhraseXml(const QString &path);
/// The library as an XML document for the upload; `user` is the login name.
QByteArray exportPhraseXml(const PhraseLibrary &library, const QString &user);
