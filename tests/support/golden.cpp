#include "tests/support/golden.h"

#include "tests/support/files.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace tests
{

static bool isText(const QByteArray &bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char c) {
        return static_cast<unsigned char>(c) >= 0x20 || c == '\n' || c == '\r' || c == '\t';
    });
}

static std::string lineAround(const QByteArray &text, qsizetype offset)
{
    if (offset >= text.size())
        return "(end)";
    const qsizetype start = offset == 0 ? 0 : text.lastIndexOf('\n', offset - 1) + 1;
    const qsizetype end = text.indexOf('\n', offset);
    // Quoted and escaped, so that a lost space or a carriage return can be seen.
    return testing::PrintToString(text.mid(start, end < 0 ? -1 : end - start).toStdString());
}

static std::string hexAround(const QByteArray &bytes, qsizetype offset)
{
    return bytes.mid(offset, 16).toHex(' ').toStdString();
}

testing::AssertionResult sameBytes(const QByteArray &actual, const QByteArray &expected)
{
    if (actual == expected)
        return testing::AssertionSuccess();

    const auto [differs, unused] =
        std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    const qsizetype offset = differs - actual.begin();
    auto result = testing::AssertionFailure();
    result << "sizes: " << actual.size() << " actual, " << expected.size()
           << " expected; first difference at ";
    if (isText(actual) && isText(expected)) {
        return result << "line " << actual.left(offset).count('\n') + 1
                      << "\n  actual:   " << lineAround(actual, offset)
                      << "\n  expected: " << lineAround(expected, offset);
    }
    return result << "byte " << offset << "\n  actual:   " << hexAround(actual, offset)
                  << "\n  expected: " << hexAround(expected, offset);
}

static QString keepActual(const QByteArray &actual, const QString &reference)
{
    const QString path = QStringLiteral(QUILL_BINARY_DIR "/tests/out/") + reference + QStringLiteral(".out");
    QDir().mkpath(QFileInfo(path).path());
    writeFile(path, actual);
    return path;
}

testing::AssertionResult matchesGolden(const QByteArray &actual, const QString &reference)
{
    const QString path = testDataPath(reference);
    if (qEnvironmentVariableIntValue("QUILL_UPDATE_GOLDEN") == 1) {
        QDir().mkpath(QFileInfo(path).path());
        writeFile(path, actual);
        return testing::AssertionSuccess();
    }
    if (!QFileInfo::exists(path)) {
        return testing::AssertionFailure()
               << "no reference " << qPrintable(path) << "; the actual bytes are in "
               << qPrintable(keepActual(actual, reference));
    }
    auto same = sameBytes(actual, readFile(path));
    if (!same)
        same << "\n  kept in   " << qPrintable(keepActual(actual, reference));
    return same;
}

} // namespace tests
