#include "quillnote/reports/report_file.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edmessage.h"
#include "host/base/readable_text.h"

static void tellFailure(const QString &failure, const QString &path, const base::FileError &error)
{
    acutPrintf(u'\n' + error.text());
    acedFail(failure.arg(path));
}

// Texts typed on different systems hold different line ends; the file has one kind.
static QString withReportLineEnds(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
}

ReportFile::ReportFile(base::AtomicFileWriter file, const QString &path, const QString &failure)
    : m_file(std::move(file)), m_path(path), m_failure(failure), m_codec("ANSI_936")
{
}

std::optional<ReportFile> ReportFile::create(const QString &path, const QString &failure)
{
    auto file = base::AtomicFileWriter::open(path);
    if (file)
        return ReportFile(*std::move(file), path, failure);
    tellFailure(failure, path, file.error());
    return std::nullopt;
}

void ReportFile::write(QString text)
{
    const base::ReadableBytes written = base::encodeReadable(withReportLineEnds(std::move(text)), m_codec);
    m_file.write(written.bytes);
    m_changed += written.changed;
}

bool ReportFile::finish()
{
    if (const auto written = m_file.commit(); !written) {
        tellFailure(m_failure, m_path, written.error());
        return false;
    }
    if (m_changed > 0)
        acutPrintf(QStringLiteral("\n报告的编码（代码页 936）没有其中 %1 个字符，已改为相近的写法或“?”。")
                       .arg(m_changed));
    return true;
}

bool writeReportFile(const QString &path, const QString &text)
{
    auto file = ReportFile::create(path);
    if (!file)
        return false;
    file->write(text);
    return file->finish();
}
