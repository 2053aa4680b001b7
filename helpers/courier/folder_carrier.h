// A shared folder as carrier: a network drive that everybody can write to. Inside, a folder for each drawing;
// in it a folder for each person, in which nobody else writes. docs/formats/courier-folder.md describes it.
//
// Nothing is asked of the drive but that a file that was renamed into place is whole: not that names differ
// in letter case, that clocks agree, that changes are notified, or that it is always there.
#pragma once

#include "helpers/courier/carrier.h"

#include <QElapsedTimer>

#include <map>
#include <set>

namespace courier
{

class FolderCarrier : public Carrier
{
public:
    /// `mark` remembers which folder it was: an empty mount point is another one. Empty at the first time;
    /// mark() is what to remember.
    FolderCarrier(QString root, QString sender, QString name, QString mark, Knowledge knowledge);

    base::Result<std::vector<Message>, QString> receive(const QString &drawing) override;
    base::Result<Stamp, QString> publish(const QString &drawing, const QString &id, const QByteArray &bytes,
                                         qint64 above) override;
    std::optional<Stamp> published(const QString &drawing, const QString &id) override;
    base::Result<std::vector<Person>, QString> keepHouse(const QString &drawing) override;
    void leave(const QString &drawing) override;

    const QString &mark() const { return m_mark; }

private:
    struct Known {
        std::map<QString, qint64> acknowledged; ///< By sender: up to which of this one's messages.
        QString name;
        qint64 beat = -1;
        QElapsedTimer sinceBeat;
        bool isHere = false;
    };
    struct Drawing {
        std::map<QString, Known> people;
        std::map<QString, qint64> own; ///< Counters of published messages, by id.
        bool ownListed = false;
        QByteArray told; ///< What the others were told last, without the beat.
        QElapsedTimer sinceTold;
        qint64 beat = 0;
    };

    base::Result<void, QString> findRoot();
    QString folderOf(const QString &drawing, const QString &sender) const;
    base::Result<QString, QString> ownFolder(const QString &drawing);
    void listOwn(const QString &drawing, Drawing &state);
    std::map<QString, qint64> receivedFrom(const QString &drawing) const;
    base::Result<void, QString> tell(const QString &drawing, Drawing &state, bool isHere);
    void readPerson(const QString &drawing, const QString &sender, Known &person) const;
    void clear(const QString &drawing, Drawing &state);

    QString m_root, m_sender, m_name, m_mark;
    Knowledge m_knowledge;
    std::map<QString, Drawing> m_drawings;
    std::set<QString> m_notWhole; ///< Files that were read and are no messages, with size and time.
};

} // namespace courier
