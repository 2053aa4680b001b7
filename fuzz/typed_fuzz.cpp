// What a user types at prompts, as the first line and the rest: numbers, angles and points are finite; a
// pattern matches what it quotes, and nothing that its own negation matches.
#include "host/aced/edparse.h"
#include "host/base/assert.h"
#include "host/base/wildcard.h"

#include <cmath>

static bool isFinite(std::optional<double> number)
{
    return !number || std::isfinite(*number);
}

static void readValues(const QString &text)
{
    QUILL_ASSERT(isFinite(acedParseNumber(text)));
    for (int units = 0; units < 5; ++units) {
        const AcEdAngleFormat format{units, 0.5, units % 2 == 0};
        QUILL_ASSERT(isFinite(acedParseAngle(text, format)));
        if (const auto typed = acedParsePoint(text, format))
            QUILL_ASSERT(isFinite(typed->point.x) && isFinite(typed->point.y) && isFinite(typed->point.z));
    }
    acedMatchKeyword(text, {QStringLiteral("eXit"), QStringLiteral("LType,LT"), QStringLiteral("2Points")});
}

static void match(const QString &pattern, const QString &text)
{
    QString quoted;
    for (const QChar c : text)
        (quoted += u'`') += c;
    QUILL_ASSERT(base::Wildcard(quoted, Qt::CaseSensitive).matches(text));
    if (!pattern.contains(u',') && !pattern.startsWith(u'~'))
        QUILL_ASSERT(base::Wildcard(u'~' + pattern).matches(text) != base::Wildcard(pattern).matches(text));
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString typed = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString line = typed.section(u'\n', 0, 0);
    readValues(line);
    match(line, typed.section(u'\n', 1));
    return 0;
}
