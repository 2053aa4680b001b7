// The lock file beside a drawing that is open for editing: it tells other people, and other programs of the
// same user, who has it. docs/formats/lock-file.md describes it.
#pragma once

#include "host/acap/process.h"

#include <QDateTime>
#include <QString>

#include <optional>

/// Who has a drawing open.
struct AcApLockHolder {
    QString user;
    AcApProcess process;
    QDateTime since; ///< UTC; invalid when the lock does not say.

    /// "li.ming on desk-3 since 2024-05-06 07:08" (local time).
    QString text() const;
};

/// ".plan.dxf.quill-lock" beside "plan.dxf".
QString acapLockFileName(const QString &drawing);
/// The one who keeps others from writing the drawing; none for this process's own lock and for one whose
/// process is gone.
std::optional<AcApLockHolder> acapForeignLock(const QString &drawing);

/// A lock that this process may hold; given up with the object.
class AcApFileLock
{
public:
    enum Result {
        taken,
        takenOver,  ///< Of somebody who is gone, or who was asked to stand aside.
        refused,    ///< holder() has it.
        impossible, ///< The folder takes no lock file.
    };

    AcApFileLock() = default;
    ~AcApFileLock() { release(); }
    AcApFileLock(const AcApFileLock &) = delete;
    AcApFileLock &operator=(const AcApFileLock &) = delete;

    /// Gives up what it held before. With `force` a living holder's lock is taken over too.
    Result acquire(const QString &drawing, bool force = false);
    /// False also when somebody took it over meanwhile.
    bool isHeld() const;
    void release();

    /// Who refused the lock, or whose lock was taken over.
    const AcApLockHolder &holder() const { return m_holder; }

private:
    QString m_file; ///< Empty when nothing is held.
    AcApLockHolder m_holder;
};
