// Text as drawing files store it: code pages, and the escapes for what a code page lacks.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <string_view>

namespace base
{

struct CodePage;

/// What encode() writes for a character that the code page lacks.
enum class Substitute {
    questionMark,  ///< One "?" for the character.
    unicodeEscape, ///< "\U+XXXX"; two of them outside the basic plane.
};

/// One code page. A value: cheap to copy, safe to use from several threads.
class TextCodec
{
public:
    /// Accepts the names that $DWGCODEPAGE holds, in any letter case, with or without "_" and "-":
    /// "ANSI_936", "dos850", "gb2312", "iso8859-1", "utf-8", "cp1252" ...
    /// An unknown name gives ANSI_1252 and known() says so.
    explicit TextCodec(std::string_view name = "ANSI_1252");
    /// By the number that a DWG file header holds (30 is ANSI_1252, 39 ANSI_936); unknown as above.
    static TextCodec fromDwgNumber(std::uint16_t number);

    bool known() const { return m_known; }
    /// The spelling that $DWGCODEPAGE uses: "ANSI_936". "UTF-8" for UTF-8.
    std::string_view name() const;
    /// 0 when DWG files have no number for the code page (UTF-8).
    std::uint16_t dwgNumber() const;
    bool isUtf8() const;
    bool isDoubleByte() const;

    /// Bytes that stand for nothing become U+FFFD, one for each byte.
    QString decode(std::string_view bytes) const;
    /// The same; `clean` is false when a U+FFFD had to be put in.
    QString decode(std::string_view bytes, bool &clean) const;

    QByteArray encode(QStringView text, Substitute substitute = Substitute::questionMark) const;
    /// The same with question marks; `lossless` is false when one had to be put in.
    QByteArray encode(QStringView text, bool &lossless) const;

    friend bool operator==(const TextCodec &a, const TextCodec &b) { return a.m_page == b.m_page; }

private:
    const CodePage *m_page = nullptr;
    bool m_known = true;
};

/// True for valid UTF-8 that holds at least one character beyond ASCII.
bool looksLikeUtf8(std::string_view bytes);

/// A string of a drawing file, whose encoding is known for the whole file (encoding_vote.h). Escapes
/// "\U+XXXX",
/// "\M+nXXXX" and carets ("^J", "^ ") become what they stand for; a malformed escape stays as it is.
QString decodeDrawingText(std::string_view bytes, const TextCodec &codec);

/// The inverse: control characters become carets, a caret becomes "^ ", and what the code page lacks
/// becomes "\U+XXXX"; so does a backslash that would begin an escape, and everything beyond ASCII when the
/// bytes of an older page would also be UTF-8. decodeDrawingText() gives `text` back.
QByteArray encodeDrawingText(QStringView text, const TextCodec &codec);

} // namespace base
