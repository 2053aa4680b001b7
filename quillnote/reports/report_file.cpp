#include "quillnote/reports/report_file.h"

#include "host/aced/edmessage.h"
#include "host/base/atomic_file.h"
#include "host/base/text_codec.h"
#include "host/os/shell.h"

// Texts typed on different systems hold different line ends; the file has one kind.
static QString withReportLineEnds(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
}

bool writeReportFile(const QString &path, QString text)
{
    const base::TextCodec codec("ANSI_936");
    const QByteArray bytes =
        codec.encode(withReportLineEnds(std::move(text)), base::Substitute::questionMark);
    if (base::writeFileAtomically(path, bytes))
        return true;
    acedAlert(QStringLiteral("创建文件<%1>失败！").arg(path));
    return false;
}

void openReport(const QString &path)
{
    os::shellOpen(path);
}
