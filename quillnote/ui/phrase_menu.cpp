#include "quillnote/ui/phrase_menu.h"

#include "quillnote/ui/recent_phrases.h"

static constexpr int kGroup = 5; ///< So many items stand between separators.

static QString oneLine(const QString &text)
{
    QString label = phraseLabel(text);
    label.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    return label.replace(u'\n', u' ').replace(u'\t', u' ');
}

PhraseItem phraseItem(int index, const QString &text)
{
    return {kFirstPhraseItem + index, oneLine(text), text};
}

PhrasePopup recentPopup(const QStringList &recent)
{
    PhrasePopup popup{QStringLiteral("【最近】"), {}};
    for (int i = 0; i < std::min(int(recent.size()), kMostRecentPhrases); ++i) {
        popup.items.push_back({kFirstRecentItem + i, oneLine(recent[i]), recent[i]});
        if (i == kGroup - 1 || i == 2 * kGroup - 1)
            popup.items.push_back({});
    }
    return popup;
}

std::size_t phrasePopupCount(const PhraseLibrary &library)
{
    return std::min(library.menus.size(), std::size_t(kMostPhraseMenus));
}

QString phrasePopupTitle(const PhraseLibrary &library, std::size_t menu)
{
    const QString &name = library.menus[menu].name;
    return name.isEmpty() ? QStringLiteral("未命名") : name;
}

PhrasePopup phrasePopup(const PhraseLibrary &library, std::size_t menu)
{
    PhrasePopup popup{phrasePopupTitle(library, menu), {}};
    const int begin = menu == 0 ? 0 : library.menus[menu - 1].end;
    const int end = std::min(library.menus[menu].end, kMostPhrases);
    for (int index = begin; index < end; ++index) {
        popup.items.push_back(phraseItem(index, library.phrases[std::size_t(index)].text));
        if ((index - begin + 1) % kGroup == 0)
            popup.items.push_back({});
    }
    if (library.fromXml)
        return popup;
    if (!popup.items.empty() && popup.items.back().number)
        popup.items.push_back({});
    popup.items.push_back({kFirstPlusItem + int(menu), QStringLiteral("+"), {}});
    return popup;
}
