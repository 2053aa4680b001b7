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

std::vector<PhrasePopup> phrasePopups(const PhraseLibrary &library)
{
    std::vector<PhrasePopup> popups;
    int index = 0;
    for (std::size_t m = 0; m < library.menus.size() && m < std::size_t(kMostPhraseMenus); ++m) {
        const PhraseMenu &menu = library.menus[m];
        PhrasePopup popup{menu.name.isEmpty() ? QStringLiteral("未命名") : menu.name, {}};
        for (int inMenu = 1; index < std::min(menu.end, kMostPhrases); ++index, ++inMenu) {
            popup.items.push_back(phraseItem(index, library.phrases[std::size_t(index)].text));
            if (inMenu % kGroup == 0)
                popup.items.push_back({});
        }
        if (!library.fromXml) {
            if (!popup.items.empty() && popup.items.back().number)
                popup.items.push_back({});
            popup.items.push_back({kFirstPlusItem + int(m), QStringLiteral("+"), {}});
        }
        popups.push_back(std::move(popup));
    }
    return popups;
}
