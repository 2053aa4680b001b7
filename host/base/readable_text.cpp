#include "host/base/readable_text.h"

#include <QList>

#include <algorithm>
#include <array>

namespace base
{

namespace
{

struct Form {
    char32_t character;
    const char16_t *readable;
};

// What Unicode's own decompositions do not know, or what drawings mean otherwise. By character.
constexpr std::array kForms{
    Form{0x00A1, u"!"},      Form{0x00A2, u"\uFFE0"}, Form{0x00A3, u"\uFFE1"}, Form{0x00A5, u"\uFFE5"},
    Form{0x00A6, u"|"},      Form{0x00A9, u"(C)"},    Form{0x00AB, u"\u300A"}, Form{0x00AC, u"\uFFE2"},
    Form{0x00AD, u""},       Form{0x00AE, u"(R)"},    Form{0x00B6, u"§"},      Form{0x00B8, u","},
    Form{0x00BB, u"\u300B"}, Form{0x00BF, u"?"},      Form{0x00C6, u"AE"},     Form{0x00D0, u"D"},
    Form{0x00D8, u"Φ"},      Form{0x00DE, u"Th"},     Form{0x00DF, u"ss"},     Form{0x00E6, u"ae"},
    Form{0x00F0, u"d"},      Form{0x00F8, u"φ"},      Form{0x00FE, u"th"},     Form{0x0110, u"D"},
    Form{0x0111, u"d"},      Form{0x0131, u"i"},      Form{0x0141, u"L"},      Form{0x0142, u"l"},
    Form{0x0152, u"OE"},     Form{0x0153, u"oe"},     Form{0x0192, u"f"},      Form{0x02DC, u"~"},
    Form{0x03D5, u"φ"},      Form{0x2011, u"-"},      Form{0x2012, u"-"},      Form{0x2013, u"-"},
    Form{0x2014, u"-"},      Form{0x2015, u"-"},      Form{0x2018, u"'"},      Form{0x2019, u"'"},
    Form{0x201A, u","},      Form{0x201B, u"'"},      Form{0x201C, u"\""},     Form{0x201D, u"\""},
    Form{0x201E, u"\""},     Form{0x2022, u"·"},      Form{0x2032, u"'"},      Form{0x2033, u"\""},
    Form{0x2039, u"\u3008"}, Form{0x203A, u"\u3009"}, Form{0x2044, u"/"},      Form{0x2190, u"<-"},
    Form{0x2192, u"->"},     Form{0x2194, u"<->"},    Form{0x2205, u"Φ"},      Form{0x2206, u"Δ"},
    Form{0x2212, u"-"},      Form{0x2215, u"/"},      Form{0x2219, u"·"},      Form{0x2264, u"<="},
    Form{0x2265, u">="},     Form{0x2300, u"Φ"},      Form{0x2610, u"□"},      Form{0x2611, u"√"},
    Form{0x2612, u"×"},      Form{0x2713, u"√"},      Form{0x2714, u"√"},      Form{0x2715, u"×"},
    Form{0x2716, u"×"},      Form{0x2717, u"×"},      Form{0x2718, u"×"},      Form{0x27C2, u"⊥"},
    Form{0x2B1C, u"□"},      Form{0x2B24, u"●"},
};
static_assert(std::ranges::is_sorted(kForms, {}, &Form::character));

} // namespace

static const char16_t *listedForm(char32_t character)
{
    const auto found = std::ranges::lower_bound(kForms, character, {}, &Form::character);
    return found != kForms.end() && found->character == character ? found->readable : nullptr;
}

/// Marks over and under letters, joiners, selectors of variants.
static bool showsNothingAlone(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return true;
    default:
        return false;
    }
}

/// The form of one character in the code page; false when there is none.
static bool appendForm(QByteArray &bytes, char32_t character, const TextCodec &codec, bool mayDecompose)
{
    bool lossless = true;
    const QString own = QString::fromUcs4(&character, 1);
    if (const QByteArray same = codec.encode(own, lossless); lossless) {
        bytes += same;
        return true;
    }
    if (const char16_t *const listed = listedForm(character)) {
        const QByteArray form = codec.encode(QStringView(listed), lossless);
        bytes += form;
        return lossless;
    }
    if (showsNothingAlone(character))
        return true;
    const QString parts = own.normalized(QString::NormalizationForm_KD);
    if (!mayDecompose || parts == own)
        return false;
    QByteArray form;
    for (const char32_t part : parts.toUcs4()) {
        if (!appendForm(form, part, codec, false))
            return false;
    }
    bytes += form;
    return true;
}

ReadableBytes encodeReadable(QStringView text, const TextCodec &codec)
{
    bool lossless = true;
    ReadableBytes result{codec.encode(text, lossless), 0};
    if (lossless)
        return result;
    result.bytes.clear();
    for (const char32_t character : text.toUcs4()) {
        const QString own = QString::fromUcs4(&character, 1);
        const QByteArray same = codec.encode(own, lossless);
        if (lossless) {
            result.bytes += same;
            continue;
        }
        ++result.changed;
        const qsizetype before = result.bytes.size();
        if (appendForm(result.bytes, character, codec, true))
            continue;
        result.bytes.truncate(before);
        result.bytes += '?';
    }
    return result;
}

} // namespace base
