// Settings as text: one line a key, one line a value.
#include "host/os/settings_store.h"

#include "host/base/terminal_text.h"

#include <QStringDecoder>

#include <limits>

namespace os
{

static const QString kHeader = QStringLiteral("quillnote settings 1");

static QString quoted(QStringView text)
{
    QString result(u'"');
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar c = text[at];
        if (c == u'"' || c == u'\\')
            (result += u'\\') += c;
        else if (c == u'\n')
            result += QStringLiteral("\\n");
        else if (c.unicode() < 0x20 || c.isSurrogate() || base::isUnsafeOnTerminal(text, at))
            result += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            result += c;
    }
    return result += u'"';
}

QByteArray exportSettings(const SettingsStore &store, QStringView key)
{
    QString text = kHeader + u'\n';
    QString current;
    bool first = true;
    for (const SettingsStore::Entry &entry : store.entries(key)) {
        if (first || entry.key != current)
            text += QStringLiteral("\n[%1]\n").arg(entry.key);
        first = false;
        current = entry.key;
        text += quoted(entry.name);
        if (const auto *number = std::get_if<std::uint32_t>(&entry.value))
            text += QStringLiteral(" = number %1\n").arg(*number);
        else
            text += QStringLiteral(" = text %1\n").arg(quoted(std::get<QString>(entry.value)));
    }
    return text.toUtf8();
}

/// Takes a quoted text from the front of `line`.
static std::optional<QString> takeQuoted(QStringView &line)
{
    if (!line.startsWith(u'"'))
        return std::nullopt;
    QString result;
    for (qsizetype at = 1; at < line.size(); ++at) {
        const QChar c = line[at];
        if (c == u'"') {
            line = line.sliced(at + 1);
            return result;
        }
        if (c != u'\\') {
            result += c;
            continue;
        }
        const QChar escaped = ++at < line.size() ? line[at] : QChar();
        if (escaped == u'"' || escaped == u'\\') {
            result += escaped;
        } else if (escaped == u'n') {
            result += u'\n';
        } else if (escaped == u'u' && line.size() - at > 4) {
            bool isHex = false;
            result += QChar(line.sliced(at + 1, 4).toUShort(&isHex, 16));
            if (!isHex)
                return std::nullopt;
            at += 4;
        } else {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

static std::optional<std::variant<std::uint32_t, QString>> parseValue(QStringView text)
{
    if (text.startsWith(u"number ")) {
        bool isNumber = false;
        const qlonglong number = text.sliced(7).trimmed().toLongLong(&isNumber);
        if (!isNumber || number < std::numeric_limits<std::int32_t>::min() ||
            number > std::numeric_limits<std::uint32_t>::max())
            return std::nullopt;
        return static_cast<std::uint32_t>(number); // -1 is 0xFFFFFFFF.
    }
    if (!text.startsWith(u"text "))
        return std::nullopt;
    text = text.sliced(5).trimmed();
    auto value = takeQuoted(text);
    if (!value || !text.isEmpty())
        return std::nullopt;
    return std::move(*value);
}

/// "name" = number 1, or "name" = text "..."
static std::optional<SettingsStore::Entry> parseEntry(const QString &key, QStringView line)
{
    const auto name = takeQuoted(line);
    line = line.trimmed();
    if (!name || !line.startsWith(u'='))
        return std::nullopt;
    auto value = parseValue(line.sliced(1).trimmed());
    if (!value)
        return std::nullopt;
    return SettingsStore::Entry{key, *name, std::move(*value)};
}

bool makesProgramsRun(const SettingsStore::Entry &entry)
{
    // Records of modules name libraries that the program loads; what lies in the install folder is loaded as
    // well.
    const bool isRecord =
        entry.key.startsWith(QLatin1String("Software\\QuillnoteHost\\Applications"), Qt::CaseInsensitive);
    return isRecord || entry.name.compare(u"Location", Qt::CaseInsensitive) == 0;
}

/// Leaves out what would make programs run, unless its name is among those wanted.
static QStringList takeOut(std::vector<SettingsStore::Entry> &entries, const QStringList &wanted)
{
    QStringList leftOut;
    std::erase_if(entries, [&](const SettingsStore::Entry &entry) {
        const bool goes = makesProgramsRun(entry) && !wanted.contains(entry.name, Qt::CaseInsensitive);
        if (goes)
            leftOut.append(entry.key + u'\\' + entry.name);
        return goes;
    });
    return leftOut;
}

base::Result<ImportedSettings, SettingsImportError> importSettings(SettingsStore &store, QByteArrayView text,
                                                                   const QStringList &wanted)
{
    const auto wrong = [](int line, const QString &reason) {
        return base::Failure{SettingsImportError{line, reason}};
    };
    if (!text.isValidUtf8())
        return wrong(1, QStringLiteral("the text is not UTF-8"));
    const QStringList lines = QString::fromUtf8(text).split(u'\n');
    if (lines.first().trimmed() != kHeader)
        return wrong(1, QStringLiteral("the first line is not \"%1\"").arg(kHeader));

    std::vector<SettingsStore::Entry> entries;
    std::optional<QString> key;
    for (int number = 2; number <= lines.size(); ++number) {
        const QStringView line = QStringView(lines[number - 1]).trimmed();
        if (line.isEmpty() || line.startsWith(u';'))
            continue;
        if (line.startsWith(u'[') && line.endsWith(u']')) {
            key = line.sliced(1, line.size() - 2).toString();
            continue;
        }
        if (!key)
            return wrong(number, QStringLiteral("a value stands before the first key"));
        auto entry = parseEntry(*key, line);
        if (!entry)
            return wrong(number, QStringLiteral("neither a key, a number nor a text"));
        entries.push_back(std::move(*entry));
    }
    ImportedSettings imported;
    imported.leftOut = takeOut(entries, wanted);
    if (!store.setEntries(entries))
        return wrong(0, QStringLiteral("the settings could not be stored"));
    imported.count = static_cast<int>(entries.size());
    return imported;
}

} // namespace os
