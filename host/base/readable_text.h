// Text for people in a code page that lacks some of its characters.
#pragma once

#include "host/base/text_codec.h"

namespace base
{

struct ReadableBytes {
    QByteArray bytes;
    std::size_t changed = 0; ///< Characters of the text that stand in another form.
};

/// What the code page lacks becomes the nearest form that people read alike: "²" becomes "2", "½" "1/2", "Ø"
/// the "Φ" of diameters, "ñ" "n", "①" in a page without it "1". What shows nothing by itself (joiners,
/// variation selectors) goes away; what has no such form becomes one "?".
ReadableBytes encodeReadable(QStringView text, const TextCodec &codec);

} // namespace base
