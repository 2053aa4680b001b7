// Phrase files, which users and other programs write: whatever the bytes are, a phrase that is added reads
// back, and what was there before stays.
#include "host/base/assert.h"
#include "host/base/phrase_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto text = decodePhraseBytes(bytes);
    if (!text)
        return 0;
    const PhraseFile file = parsePhraseFile(text->text);
    QUILL_ASSERT(file.phrases.size() <= std::size_t(kMostPhrasesOfFile));
    for (const Phrase &phrase : file.phrases)
        QUILL_ASSERT(!phrase.text.isEmpty() && phraseLabel(phrase.text).size() <= 45);

    // A byte at the end may be half a character, which takes the next byte along.
    if (!bytes.endsWith('\n'))
        return 0;
    for (const QString &phrase :
         {QStringLiteral("门宽不足"), QStringLiteral("20 m²"), QStringLiteral("臧红波")}) {
        QByteArray more = bytes;
        if (addPhrase(more, phrase) != PhraseAddition::added)
            continue;
        QUILL_ASSERT(more.startsWith(bytes));
        const PhraseFile again = parsePhraseFile(decodePhraseBytes(more)->text, 1000000);
        QUILL_ASSERT(again.phrases.back().text == phrase);
        QUILL_ASSERT(addPhrase(more, phrase) == PhraseAddition::alreadyThere);
    }
    return 0;
}
