// What a mark says of itself to a search and to a cursor that rests on it.
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_values.h"

bool QuillnoteObj3::subIsHidden() const
{
    return displayMode == DisplayMode::hidden;
}

QStringList QuillnoteObj3::subTexts() const
{
    return {suggestionContent, feedbackContent};
}

/// Long opinions would cover the drawing.
static QString shortened(const QString &text)
{
    constexpr qsizetype kMost = 300;
    const QString trimmed = text.trimmed();
    return trimmed.size() > kMost ? trimmed.left(kMost) + QChar(0x2026) : trimmed;
}

QString QuillnoteObj3::subHint() const
{
    QStringList lines{
        QStringLiteral("%1  %2").arg(markNumberText(markNumber, subNumber), suggestionName).trimmed(),
        shortened(suggestionContent)};
    const QString status = handling::statusText(feedbackType);
    const QString answer = shortened(feedbackContent);
    if (status.isEmpty() && answer.isEmpty())
        lines += QStringLiteral("（未答复）");
    else
        lines += QStringLiteral("%1  %2")
                     .arg(status.isEmpty() ? answer : status, status.isEmpty() ? QString() : answer)
                     .trimmed();
    if (!feedbackName.isEmpty())
        lines.back() += QStringLiteral("  （%1）").arg(feedbackName);
    lines.removeAll(QString());
    return lines.join(u'\n');
}
