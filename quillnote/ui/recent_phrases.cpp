#include "quillnote/ui/recent_phrases.h"

#include "quillnote/frame/settings/settings.h"

static constexpr settings::Text kPhrases = u"savedNearTxt%d";

// Stored from the oldest on, because that is how every program reads them: from the last to the first.
QStringList recentPhrases()
{
    QStringList texts;
    for (int i = kMostRecentPhrases - 1; i >= 0; --i) {
        if (const QString text = settings::text(kPhrases, i); !text.isEmpty())
            texts.append(text);
    }
    return texts;
}

void keepRecentPhrase(const QString &text)
{
    constexpr qsizetype kLongestSetting = 4095;
    if (text.size() > kLongestSetting)
        return;
    QStringList texts = recentPhrases();
    texts.removeAll(text);
    texts.prepend(text);
    if (texts.size() > kMostRecentPhrases)
        texts.resize(kMostRecentPhrases);
    for (int i = 0; i < kMostRecentPhrases; ++i)
        settings::setText(kPhrases, i, i < texts.size() ? texts[texts.size() - 1 - i] : QString());
}
