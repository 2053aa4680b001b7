#include "quillnote/reports/mark_pictures.h"

#include "quillnote/entity/mark_record.h"

#include "host/aced/edfrontend.h"
#include "host/base/atomic_file.h"

#include <QDir>
#include <QFileInfo>

// Numbers have four digits, so that a folder shows the files in the order of the marks.
static QString beginningOfName(const QuillnoteObj3 &mark)
{
    const QString number = QStringLiteral("mark-%1").arg(mark.markNumber, 4, 10, QLatin1Char('0'));
    return mark.subNumber == 0 ? number : QStringLiteral("%1.%2").arg(number).arg(mark.subNumber);
}

bool MarkPictureWriter::write(const QuillnoteObj3 &mark)
{
    QString beginning = beginningOfName(mark);
    if (m_used.contains(beginning))
        beginning += QLatin1Char('-') + QString::number(mark.objectId().handle().value, 16).toUpper();
    m_used.insert(beginning);
    const bool target = writeFile(beginning + QStringLiteral("-target.png"), mark.snapImage);
    const bool full = writeFile(beginning + QStringLiteral("-full.png"), mark.fullImage);
    return target && full;
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
