// The menus of the mark editor that hold phrases, as values: what stands where under which number.
#pragma once

#include "quillnote/ui/phrase_library.h"

#include <QStringList>

inline constexpr int kFirstPhraseItem = 5000;
inline constexpr int kFirstPlusItem = 5900;
inline constexpr int kFirstRecentItem = 5950;
inline constexpr int kLastPhraseItem = 6000; ///< No number of these menus is higher.

struct PhraseItem {
    int number = 0; ///< 0: a separator.
    QString label;  ///< One line.
    QString text;   ///< The whole phrase.
};

struct PhrasePopup {
    QString title;
    std::vector<PhraseItem> items;
};

/// "【最近】"
PhrasePopup recentPopup(const QStringList &recent);
/// As many as are shown.
std::size_t phrasePopupCount(const PhraseLibrary &library);
QString phrasePopupTitle(const PhraseLibrary &library, std::size_t menu);
/// That of one menu of the library, ended by "+" where phrases can be added.
PhrasePopup phrasePopup(const PhraseLibrary &library, std::size_t menu);
/// The item of a phrase that is there.
PhraseItem phraseItem(int index, const QString &text);
