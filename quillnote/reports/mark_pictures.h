// The pictures stored in marks, as files.
#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>

class QuillnoteObj3;

/// Writes the pictures of one mark after another into a folder, which is made when needed.
class MarkPictureWriter
{
public:
    MarkPictureWriter(const QString &folder, bool overwrite) : m_folder(folder), m_overwrite(overwrite) {}

    /// "mark-0007-target.png", "mark-0007.2-full.png"; a mark whose number an earlier one had carries its
    /// handle too ("mark-0007-1F3-target.png"). False, and a line on the command line, when a file is there
    /// already or cannot be written; the mark's other picture is written all the same.
    bool write(const QuillnoteObj3 &mark);

private:
    bool writeFile(const QString &name, const QByteArray &bytes) const;

    QString m_folder;
    bool m_overwrite;
    QSet<QString> m_used; ///< Beginnings of names.
};
