// Phrase files that are imported into the phrase bank: what goes in is in it once, is found by any of its
// words, and comes out in a file that reads as the same.
#include "helpers/phrase_bank/bank_files.h"

#include "host/base/assert.h"

#include <set>

using namespace bank;

/// Blanks are what an export may put in, characters of value 1 what it leaves out.
static QString withoutBlanks(const QString &text)
{
    QString rest;
    for (const QChar c : text) {
        if (!c.isSpace() && c != QChar(1))
            rest += c;
    }
    return rest;
}

static void checkExport(const std::vector<Entry> &entries)
{
    const auto again = entriesOf(QStringLiteral("t"), asPhraseFile(entries));
    QUILL_ASSERT(again && again->size() == entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        QUILL_ASSERT(withoutBlanks((*again)[i].text) == withoutBlanks(entries[i].text));
        QUILL_ASSERT((*again)[i].weight == entries[i].weight);
    }
}

static void checkBank(const std::vector<Entry> &entries)
{
    static Bank bank(QStringLiteral(":memory:"));
    const QString name = QStringLiteral("t");
    std::set<QString> texts;
    for (const Entry &entry : entries)
        texts.insert(entry.text);
    QUILL_ASSERT(bank.add(name, entries) == int(texts.size()));
    QUILL_ASSERT(bank.add(name, entries) == 0);
    const qint64 id = bank.banks().back().id;
    const std::vector<Entry> kept = bank.entries(id);
    QUILL_ASSERT(kept.size() == texts.size());
    for (const Entry &entry : kept)
        QUILL_ASSERT(texts.contains(entry.text));
    for (const QString &word : splitWords(entries.front().text).mid(0, 3)) {
        const std::vector<Found> found = bank.find(word, {}, id, int(texts.size()));
        QUILL_ASSERT(std::any_of(found.begin(), found.end(),
                                 [&](const Found &each) { return each.entry.text == entries.front().text; }));
    }
    bank.remove(id);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto entries = entriesOf(QStringLiteral("t"), QByteArrayView(data, qsizetype(size)));
    if (!entries || entries->empty())
        return 0;
    checkExport(*entries);
    checkBank(*entries);
    return 0;
}
