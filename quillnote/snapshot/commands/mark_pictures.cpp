#include "quillnote/snapshot/commands/mark_pictures.h"

#include "quillnote/entity/mark_record.h"

#include "host/aced/edfrontend.h"
#include "host/base/atomic_file.h"

#include <QDir>
#include <QFileInfo>

// Numbers have four digits, so that a folder shows the files in the order of the marks.
QString MarkPictureWriter::beginningOfName(const QuillnoteObj3 &mark)
{
    QString beginning = QStringLiteral("mark-%1").arg(mark.markNumber, 4, 10, QLatin1Char('0'));
    if (mark.subNumber != 0)
        beginning += QLatin1Char('.') + QString::number(mark.subNumber);
    if (m_used.contains(beginning))
        beginning += QLatin1Char('-') + QString::number(mark.objectId().handle().value, 16).toUpper();
    m_used.insert(beginning);
    return beginning;
}

bool MarkPictureWriter::write(const QuillnoteObj3 &mark)
{
    const QString beginning = beginningOfName(mark);
    const bool target = writeFile(beginning + QStringLiteral("-target.png"), mark.snapImage);
    const bool full = writeFile(beginning + QStringLiteral("-full.png"), mark.fullImage);
    return target && full;
}

bool MarkPictureWriter::writeAs(const QuillnoteObj3 &mark, const QString &what, const QByteArray &png)
{
    return writeFile(beginningOfName(mark) + QStringLiteral("-%1.png").arg(what), png);
}

bool MarkPictureWriter::writeFile(const QString &name, const QByteArray &bytes) const
{
    if (bytes.isEmpty())
        return true;
    const QString path = QDir(m_folder).filePath(name);
    if (!m_overwrite && QFileInfo::exists(path)) {
        acutPrintf(QStringLiteral("\n%1 exists; -f overwrites it").arg(path));
        return false;
    }
    if (!QDir().mkpath(m_folder)) {
        acutPrintf(QStringLiteral("\nthe folder %1 cannot be made").arg(m_folder));
        return false;
    }
    const auto written = base::writeFileAtomically(path, bytes);
    if (!written)
        acutPrintf(u'\n' + written.error().text());
    return written.ok();
}
