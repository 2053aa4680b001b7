#include "host/base/phrase_file.h"

#include <QStringList>

#include <array>

static constexpr QStringView kWeight =
    u"\u6743\u91CD="; // The word for weight: part of the format, not of the window.
static const QString kLineEnd = QStringLiteral("\r\n");

// Encoding ---------------------------------------------------------------------------------------

static const base::TextCodec &chinese()
{
    static const base::TextCodec codec("ANSI_936");
    return codec;
}

static const base::TextCodec &utf8()
{
    static const base::TextCodec codec("UTF-8");
    return codec;
}

static std::string_view view(QByteArrayView bytes)
{
    return {bytes.data(), std::size_t(bytes.size())};
}

std::optional<PhraseText> decodePhraseBytes(QByteArrayView bytes)
{
    for (const QByteArrayView mark :
         {QByteArrayView("\xEF\xBB\xBF"), QByteArrayView("\xFF\xFE"), QByteArrayView("\xFE\xFF")}) {
        if (bytes.startsWith(mark))
            return {};
    }
    const base::TextCodec &codec = base::looksLikeUtf8(view(bytes)) ? utf8() : chinese();
    QString text = codec.decode(view(bytes));
    return PhraseText{text.replace(QChar(QChar::Null), u' '), codec}; // Nobody can search for it, or type it.
}

// Reading ----------------------------------------------------------------------------------------

QString phraseLine(QStringView line)
{
    for (const QStringView comment : {u"//", u";;;", u"'''"}) {
        if (const qsizetype at = line.indexOf(comment); at >= 0)
            line = line.first(at);
    }
    return line.trimmed().toString();
}

static bool isSeparator(QStringView line)
{
    return line.contains(u"------") || line.contains(u"______") || line.contains(u"———");
}

/// Some editors leave a run of these near the beginning of an entry.
static void dropControlRun(QString &entry)
{
    constexpr qsizetype kLongest = 256;
    constexpr int kBytes = 50;
    if (entry.size() > kLongest)
        return;
    int bytes = 0;
    for (qsizetype i = 0; i < entry.size() && bytes < kBytes; ++i) {
        qsizetype end = i;
        while (end < entry.size() && entry[end] == QChar(1))
            ++end;
        if (end > i) {
            entry.remove(i, end - i);
            return;
        }
        bytes += entry[i].unicode() < 0x80 ? 1 : 2;
    }
}

static int leadingNumber(QStringView text)
{
    constexpr qsizetype kMostDigits = 9; // More do not fit the type.
    qsizetype end = 0;
    while (end < text.size() && end < kMostDigits && text[end] >= u'0' && text[end] <= u'9')
        ++end;
    return text.first(end).toInt();
}

static int weightOf(QString tag)
{
    tag.remove(u' ');
    tag.replace(u'，', u',').replace(u'；', u',').replace(u'＝', u'=');
    const QStringView weight = kWeight;
    for (const QStringView key : QStringView(tag).split(u',')) {
        if (key.startsWith(weight))
            return leadingNumber(key.sliced(weight.size()));
    }
    return 0;
}

Phrase parsePhrase(QString entry)
{
    const QString mark = QStringLiteral("@@@");
    dropControlRun(entry);
    for (const QLatin1String bracket : {QLatin1String("[[["), QLatin1String("]]]"), QLatin1String("$$$"),
                                        QLatin1String("{{{"), QLatin1String("}}}")})
        entry.replace(bracket, mark);
    Phrase phrase;
    const qsizetype begin = entry.indexOf(mark);
    if (begin < 0) {
        phrase.text = entry.trimmed();
        return phrase;
    }
    const qsizetype end = entry.indexOf(mark, begin + mark.size());
    const QString tag = end < 0 ? entry.sliced(begin) : entry.sliced(begin, end - begin);
    phrase.weight = weightOf(tag.sliced(mark.size()));
    const QString behind = end < 0 ? QString() : entry.sliced(end).remove(mark);
    phrase.text = (entry.first(begin) + behind).trimmed();
    return phrase;
}

namespace
{

/// Takes lines as they come; divides them into entries.
class PhraseLines
{
public:
    explicit PhraseLines(int limit) : m_limit(limit) {}

    /// False when nothing more is wanted.
    bool take(const QString &line)
    {
        if (line.isEmpty())
            return true;
        if (m_inHeader && line.contains(u"ByLine")) {
            inParagraphs |= line.contains(u'0');
            return true;
        }
        m_inHeader = false;
        endsWithSeparator = inParagraphs && isSeparator(line);
        if (endsWithSeparator) {
            m_begins = true;
            return true;
        }
        if (inParagraphs && !m_begins) {
            entries.back() += kLineEnd + line;
            return true;
        }
        m_begins = false;
        hasMore = entries.size() >= m_limit;
        if (!hasMore)
            entries.append(line);
        return !hasMore;
    }

    bool inParagraphs = false;
    bool endsWithSeparator = false;
    bool hasMore = false;
    QStringList entries;

private:
    qsizetype m_limit;
    bool m_inHeader = true;
    bool m_begins = true;
};

} // namespace

/// Line ends of every kind count. `take` returns false when it has enough.
template <class Take>
static void eachLine(QStringView text, Take take)
{
    for (qsizetype begin = 0; begin <= text.size();) {
        qsizetype end = begin;
        while (end < text.size() && text[end] != u'\n' && text[end] != u'\r')
            ++end;
        if (!take(text.sliced(begin, end - begin)))
            return;
        begin = end + 1;
    }
}

static PhraseLines readLines(QStringView text, int limit)
{
    PhraseLines lines(limit);
    eachLine(text, [&](QStringView line) { return lines.take(phraseLine(line)); });
    return lines;
}

PhraseFile parsePhraseFile(QStringView text, int limit)
{
    const PhraseLines lines = readLines(text, limit);
    PhraseFile file;
    file.inParagraphs = lines.inParagraphs;
    file.hasMore = lines.hasMore;
    for (const QString &entry : lines.entries) {
        // A tag alone is nothing to choose.
        if (Phrase phrase = parsePhrase(entry); !phrase.text.isEmpty())
            file.phrases.push_back(std::move(phrase));
    }
    return file;
}

QString phraseTag(int weight)
{
    return QStringLiteral("[[[%1%2]]]").arg(kWeight).arg(weight);
}

QString phraseLabel(const QString &text)
{
    constexpr qsizetype kLongest = 40;
    return text.size() > kLongest ? text.first(kLongest) + QStringLiteral(". . .") : text;
}

// Adding -----------------------------------------------------------------------------------------

/// As they stand in an entry.
static QString joinedLines(const QString &phrase, const QString &between)
{
    QStringList lines;
    eachLine(phrase, [&](QStringView line) {
        if (!line.trimmed().isEmpty())
            lines.append(line.trimmed().toString());
        return true;
    });
    return lines.join(between);
}

static bool holdsComment(const QString &phrase)
{
    bool isCut = false;
    eachLine(phrase, [&](QStringView line) {
        isCut |= phraseLine(line) != line.trimmed();
        return !isCut;
    });
    return isCut;
}

static bool isThere(QStringView text, const PhraseLines &lines, const QString &phrase)
{
    bool found = lines.entries.contains(phrase, Qt::CaseInsensitive);
    eachLine(text, [&](QStringView line) {
        found |= phraseLine(line).compare(phrase, Qt::CaseInsensitive) == 0;
        return !found;
    });
    return found;
}

/// The first line end tells; a file without one gets what its users' editors write.
static QString lineEndOf(const PhraseText &file)
{
    const qsizetype first = file.text.indexOf(u'\n');
    if (first < 0)
        return file.codec.isUtf8() ? QStringLiteral("\n") : kLineEnd;
    return first > 0 && file.text[first - 1] == u'\r' ? kLineEnd : QStringLiteral("\n");
}

static bool isAscii(QByteArrayView bytes)
{
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

PhraseAddition addPhrase(QByteArray &bytes, const QString &phrase)
{
    const auto file = bytes.size() > kLargestPhraseFile ? std::nullopt : decodePhraseBytes(bytes);
    if (!file)
        return PhraseAddition::notReadable;
    const PhraseLines lines = readLines(file->text, std::numeric_limits<int>::max());
    const QString lineEnd = lineEndOf(*file);
    if (isThere(file->text, lines, joinedLines(phrase, lines.inParagraphs ? kLineEnd : QStringLiteral(" "))))
        return PhraseAddition::alreadyThere;
    if (holdsComment(phrase))
        return PhraseAddition::commentInside;

    const bool endsLine = file->text.isEmpty() || file->text.endsWith(u'\n') || file->text.endsWith(u'\r');
    QString tail = endsLine ? QString() : lineEnd;
    if (lines.inParagraphs && !lines.endsWithSeparator)
        tail += QStringLiteral("------------") + lineEnd;
    tail += joinedLines(phrase, lines.inParagraphs ? lineEnd : QStringLiteral(" "));
    if (endsLine)
        tail += lineEnd;

    bool isLossless = false;
    QByteArray added = file->codec.encode(tail, isLossless);
    // So far either encoding is right: the one is taken in which the file will be read.
    if (isAscii(bytes) && (!isLossless || base::looksLikeUtf8(view(bytes + added))))
        added = utf8().encode(tail, isLossless);
    if (!isLossless)
        return PhraseAddition::notInCodePage;
    bytes += added;
    return PhraseAddition::added;
}
