#include "helpers/courier/message.h"

#include <algorithm>

namespace courier
{

std::optional<MarkDataHeader> readMessage(QByteArrayView bytes)
{
    if (bytes.size() > kLargestMessage)
        return {};
    std::optional<MarkDataHeader> header = readMarkDataHeader(bytes);
    const bool isChange = header && header->shared && !header->shared->mark.isEmpty() &&
                          header->markCount == 1 && header->tickCount == 0 && header->checksumHolds;
    if (!isChange)
        return {};
    const bool isErased = header->kind == MarkDataKind::erased;
    const bool saysErased = header->shared->after == erasedDigest();
    if (isErased != saysErased || (!isErased && header->kind != MarkDataKind::marks7))
        return {};
    return header;
}

QString drawingName(const SharedChange &change)
{
    return QString::fromLatin1(change.drawing.toHex());
}

static bool isHex(const QString &text, qsizetype digits)
{
    return text.size() == digits && std::ranges::all_of(text, [](QChar sign) {
               return (sign >= u'0' && sign <= u'9') || (sign >= u'a' && sign <= u'f');
           });
}

bool isSenderName(const QString &text)
{
    return isHex(text, 8);
}

bool isDrawingName(const QString &text)
{
    return isHex(text, 2 * kIdentitySize);
}

} // namespace courier
