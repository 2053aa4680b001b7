// Recovery copies: a drawing with unsaved changes also stands in the user's data folder, at most a minute
// behind, until it is saved or closed. What a crash leaves there is offered at the next start.
//
// The state is taken on the drawing's thread, which costs what the changed objects cost; a thread of its own
// writes it. docs/formats/recovery.md describes the files.
#pragma once

#include "host/acap/docman.h"

#include <QDateTime>

#include <atomic>
#include <chrono>
#include <future>

/// A copy that a program left behind.
struct AcApRecoverable {
    QString copy;                            ///< The drawing file with the unsaved changes.
    QString original;                        ///< Empty when the drawing had never been saved.
    QString title;                           ///< "plan.dxf"; the copy's own name when its record is lost.
    QDateTime time;                          ///< Of the state that the copy holds.
    std::optional<base::FileStamp> grewFrom; ///< The drawing's file as it was read or last written.
};

class AcApRecovery : public AcApDocManagerReactor
{
public:
    using Clock = std::chrono::steady_clock;

    /// Keeps copies of the manager's drawings in `folder`: a change is copied when it is seen to be
    /// `interval` old. With the default and a tick every ten seconds a copy is less than a minute behind.
    explicit AcApRecovery(AcApDocManager &manager, QString folder = userFolder(),
                          std::chrono::milliseconds interval = std::chrono::seconds(35));
    /// Waits for what is being written. Copies of drawings with unsaved changes stay.
    ~AcApRecovery() override;
    AcApRecovery(const AcApRecovery &) = delete;
    AcApRecovery &operator=(const AcApRecovery &) = delete;

    /// "recovery" in the user's folder for data (XDG_DATA_HOME).
    static QString userFolder();

    /// Called every now and then, between commands or while one waits. A drawing in which an object is open
    /// for writing has to wait for the next time.
    void tick(Clock::time_point now = Clock::now());
    /// Begins a copy of every change that no copy holds, however young it is.
    void copyNow();
    /// Waits until everything that was begun is written.
    void finish();
    /// The last trouble with writing; empty when there is none. Copies go on being tried.
    QString trouble() const;

    void documentToBeDestroyed(AcApDocument *document) override;
    void documentSaved(AcApDocument *document) override;

    /// What programs that do not run any more left in a folder, the newest first.
    static QList<AcApRecoverable> recoverable(const QString &folder = userFolder());
    /// The copy of a drawing that is not older than the drawing's file; none when there is no such copy.
    static std::optional<AcApRecoverable> newerCopy(const QString &drawing,
                                                    const QString &folder = userFolder());
    /// Opens a copy as unsaved changes of its drawing and keeps it from then on as that drawing's own copy.
    base::Result<AcApDocument *, QString> reopen(const AcApRecoverable &copy);
    /// Removes a copy for good.
    static void discard(const AcApRecoverable &copy);

private:
    struct Watched {
        QString copy;                  ///< Path; empty before the first one.
        std::uint64_t changeCount = 0; ///< Of the state in the copy, or on its way there.
        Clock::time_point changedAt;   ///< When a change that no copy holds was first seen.
        bool isBehind = false;
        std::atomic<bool> stop = false;
        std::future<QString> writing; ///< The trouble, if any.
    };

    void look(AcApDocument &document, Watched &watched, Clock::time_point now,
              std::chrono::milliseconds interval);
    void copy(AcApDocument &document, Watched &watched);
    QString freshCopyPath(const QString &suffix);
    void settle(Watched &watched);
    void drop(AcApDocument *document);

    AcApDocManager &m_manager;
    QString m_folder;
    std::chrono::milliseconds m_interval;
    std::map<AcApDocument *, Watched> m_watched;
    int m_count = 0;
    QString m_trouble;
};
