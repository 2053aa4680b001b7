// Pictures of marks as files: those that are stored in them, and those that tell what has changed.
#pragma once

#include <QByteArray>
#include <QSet>
#include <QString>

class QuillnoteObj3;

/// Writes the pictures of one mark after another into a folder, which is made when needed.
///
/// Names are "mark-0007-target.png", "mark-0007.2-full.png"; a mark whose number an earlier one had carries
/// its handle too ("mark-0007-1F3-target.png").
class MarkPictureWriter
{
public:
    MarkPictureWriter(const QString &folder, bool overwrite) : m_folder(folder), m_overwrite(overwrite) {}

    /// The pictures that are stored in the mark. False, and a line on the command line, when a file is there
    /// already or cannot be written; the mark's other picture is written all the same.
    bool write(const QuillnoteObj3 &mark);
    /// One picture of the mark ("compared").
    bool writeAs(const QuillnoteObj3 &mark, const QString &what, const QByteArray &png);

private:
    QString beginningOfName(const QuillnoteObj3 &mark);
    bool writeFile(const QString &name, const QByteArray &bytes) const;

    QString m_folder;
    bool m_overwrite;
    QSet<QString> m_used; ///< Beginnings of names.
};
