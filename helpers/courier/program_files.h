// The courier's side of what it and the program have between them: the program's files in the synchronisation
// folder, and in its folder "courier" the drawings that are open and the files that arrived
// (quillnote/exchange/courier_files.h is the program's side).
#pragma once

#include "helpers/courier/message.h"

#include <QStringList>

#include <map>
#include <set>
#include <vector>

namespace courier
{

/// A file that the program wrote.
struct SentFile {
    QString path;
    SharedChange change;
    QByteArray bytes;
};

class ProgramFiles
{
public:
    explicit ProgramFiles(QString folder);

    /// Its own files: the ledger, the lock, the status.
    QString courierFolder() const { return m_folder + QStringLiteral("courier/"); }

    /// In the order in which they were written. Files that do not travel are left alone; those that are too
    /// large to travel are counted.
    std::vector<SentFile> sent();
    int tooLarge() const { return m_tooLarge; }

    /// Drawings that are open, with a name for every time that one was opened. Those of programs that have
    /// ended are forgotten.
    std::map<QString, std::set<QString>> openDrawings() const;

    /// The number of the file that waits for the program; 0 when it has taken everything.
    qint64 laidDown(const QString &drawing) const;
    bool layDown(const QString &drawing, qint64 number, const QByteArray &bytes) const;
    void takeBack(const QString &drawing) const;
    /// What is laid down from now on is meant for these openings of the drawing: each gets a file of its
    /// name, which holds the serial, and the program takes nothing before.
    bool markBegun(const QString &drawing, const std::set<QString> &openings, quint64 serial) const;

private:
    QString arrivals(const QString &drawing) const;

    QString m_folder;
    std::set<QString> m_notOurs; ///< Names of files that do not travel.
    int m_tooLarge = 0;
};

} // namespace courier
