// What travels between people: a mark data file that tells one change of one mark, and its place in the order
// that everybody agrees on.
#pragma once

#include "quillnote/exchange/header/data_header.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace courier
{

/// A mark with all its texts and a sketch of the size that drawings hold fits many times.
inline constexpr qint64 kLargestMessage = 8 * 1024 * 1024;

/// The place in the order. Whoever publishes takes a counter above all that he has seen; the sender decides
/// between equal ones.
struct Stamp {
    qint64 counter = 0;
    QString sender; ///< Eight hexadecimal digits, in small letters.

    friend bool operator==(const Stamp &, const Stamp &) = default;
    friend bool operator<(const Stamp &a, const Stamp &b)
    {
        return a.counter != b.counter ? a.counter < b.counter : a.sender < b.sender;
    }
};

struct Message {
    Stamp stamp;
    QByteArray bytes;
};

/// The header of bytes that may travel: one change of one mark of a drawing, not too large, of right
/// checksum.
std::optional<MarkDataHeader> readMessage(QByteArrayView bytes);
/// The drawing as folders and subjects are called: 32 hexadecimal digits.
QString drawingName(const SharedChange &change);

bool isSenderName(const QString &text);
bool isDrawingName(const QString &text);

} // namespace courier
