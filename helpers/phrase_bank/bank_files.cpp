#include "helpers/phrase_bank/bank_files.h"

#include "host/base/atomic_file.h"
#include "host/base/file_bytes.h"
#include "host/base/host_text.h"
#include "host/base/phrase_file.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <limits>

#include <dlfcn.h>

namespace bank
{

/// Control characters alone are no phrase: nobody could see or choose it.
static bool isSeen(QStringView text)
{
    return std::ranges::any_of(text,
                               [](QChar c) { return c.isSurrogate() || (c.isPrint() && !c.isSpace()); });
}

std::optional<std::vector<Entry>> entriesOf(const QString &title, QByteArrayView bytes)
{
    const auto text = bytes.size() <= kLargestPhraseFile ? decodePhraseBytes(bytes) : std::nullopt;
    if (!text)
        return {};
    std::vector<Entry> entries;
    auto parsed = parsePhraseFile(text->text, std::numeric_limits<int>::max());
    for (Phrase &phrase : parsed.phrases) {
        phrase.text = QString::fromUtf8(phrase.text.toUtf8()); // Halves of characters are none.
        phrase.text.remove(QChar::ByteOrderMark);              // Where files were put together.
        if (isSeen(phrase.text))
            entries.push_back({title, phrase.text, phrase.weight});
    }
    return entries;
}

std::vector<Entry> readPhraseFile(const QString &path)
{
    const auto bytes = base::readFileBytes(path);
    if (!bytes)
        throw Trouble(bytes.error().text());
    auto entries = entriesOf(QFileInfo(path).completeBaseName(), {bytes->data(), qsizetype(bytes->size())});
    if (!entries)
        throw Trouble(Host::tr("< %1 >文件不是ANSI编码，请用记事本打开并以ANSI格式保存。").arg(path));
    return *std::move(entries);
}

/// Marks that a phrase file takes for something else lose their meaning when a blank stands inside.
static QString harmless(QString text)
{
    text.remove(QChar(1)); // Of these a phrase file drops some; marks must not grow together behind them.
    for (const QString &mark :
         {QStringLiteral("//"), QStringLiteral(";;;"), QStringLiteral("'''"), QStringLiteral("@@@"),
          QStringLiteral("[[["), QStringLiteral("]]]"), QStringLiteral("$$$"), QStringLiteral("{{{"),
          QStringLiteral("}}}"), QStringLiteral("------"), QStringLiteral("______"), QStringLiteral("———")}) {
        while (text.contains(mark))
            text.replace(mark, mark.first(1) + u' ' + mark.sliced(1));
    }
    return text;
}

QByteArray asPhraseFile(const std::vector<Entry> &entries)
{
    const bool inParagraphs = std::any_of(entries.begin(), entries.end(),
                                          [](const Entry &entry) { return entry.text.contains(u'\n'); });
    QString text = inParagraphs ? QStringLiteral("ByLine = 0\r\n") : QString();
    bool isFirst = true;
    for (const Entry &entry : entries) {
        if (inParagraphs && !std::exchange(isFirst, false))
            text += QStringLiteral("------------\r\n");
        if (entry.weight)
            text += phraseTag(entry.weight);
        QString written = harmless(entry.text);
        if (&entry == &entries.front())
            written.replace(QStringLiteral("ByLine"),
                            QStringLiteral("By Line")); // Would tell how the file is read.
        text += written + QStringLiteral("\r\n");
    }
    bool isLossless = false;
    const QByteArray chinese = base::TextCodec("ANSI_936").encode(text, isLossless);
    // What would be read as something else in the code page is written as UTF-8.
    const auto read = isLossless ? decodePhraseBytes(chinese) : std::nullopt;
    return read && read->text == text ? chinese : text.toUtf8();
}

void writePhraseFile(const QString &path, const std::vector<Entry> &entries)
{
    if (const auto written = base::writeFileAtomically(path, asPhraseFile(entries)); !written)
        throw Trouble(written.error().text());
}

void fillNewBank(Bank &bank)
{
    Dl_info info{};
    if (!bank.isNew() || dladdr(reinterpret_cast<const void *>(&fillNewBank), &info) == 0 || !info.dli_fname)
        return;
    // The name of the folder that the module reads.
    const QDir shipped(QFileInfo(QFile::decodeName(info.dli_fname)).absolutePath() +
                       QStringLiteral("/\u5E38\u7528\u77E5\u8BC6"));
    for (const QFileInfo &file : shipped.entryInfoList({QStringLiteral("*.txt")}, QDir::Files, QDir::Name))
        bank.add(shipped.dirName(), readPhraseFile(file.absoluteFilePath()));
}

} // namespace bank
