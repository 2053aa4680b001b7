// A report file for other programs: code page 936, lines ended by CR LF, complete or not there.
#pragma once

#include "host/base/atomic_file.h"
#include "host/base/text_codec.h"

#include <QString>

#include <optional>

/// Takes the texts of a report one after another and puts the whole in the place of an earlier file.
class ReportFile
{
public:
    /// None when such a file cannot be made: a message box shows `failure` with the path in the place of %1,
    /// and the reason stands on the command line.
    static std::optional<ReportFile> create(const QString &path,
                                            const QString &failure = QStringLiteral("创建文件<%1>失败！"));

    /// Line ends of every kind become the file's own. Characters that the code page lacks take their nearest
    /// form (readable_text.h).
    void write(QString text);

    /// Puts the file in its place and says how many characters were changed. False, and told as by create(),
    /// when that did not come about.
    bool finish();

private:
    ReportFile(base::AtomicFileWriter file, const QString &path, const QString &failure);

    base::AtomicFileWriter m_file;
    QString m_path;
    QString m_failure;
    base::TextCodec m_codec;
    std::size_t m_changed = 0;
};

/// The whole text in one call.
bool writeReportFile(const QString &path, const QString &text);
