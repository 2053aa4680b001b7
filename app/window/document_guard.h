// DocumentGuard: sees to it that nothing a user does is lost. It opens, saves and closes drawings with the
// questions that this takes, watches the files on the disk, keeps recovery copies, and offers what a crash
// left.
//
// What is decided here comes from answers; the rules are in host/acap. While it lives, drawings are locked.
#pragma once

#include "host/acap/recovery.h"
#include "host/aced/edfrontend.h"

#include <QObject>
#include <QTimer>

class QMessageBox;
class QWidget;

namespace window
{

class WindowFrontEnd;

class DocumentGuard : public QObject, public AcEdDrawingKeeper, private AcApDocManagerReactor
{
    Q_OBJECT

public:
    /// Message boxes belong to `window`, whose activation is watched.
    DocumentGuard(WindowFrontEnd &front, QWidget *window);
    ~DocumentGuard() override;

    /// Asks about a newer recovery copy and about somebody else's lock. False when nothing was opened.
    bool open(const QString &path) override;
    /// Asks when somebody changed the file, and for another name when somebody else edits it or there is
    /// none. False when nothing was saved.
    bool save(AcApDocument *document, const QString &path = {}) override;
    /// Asks for the name.
    bool saveAs(AcApDocument *document);
    /// Asks whether to save changes; false when the user wants to stay.
    bool mayClose(AcApDocument *document);
    bool mayClose(const std::vector<AcApDocument *> &documents) override;
    /// Without a question: everything unsaved stands in recovery copies, and the locks are given back. False
    /// while a drawing is being opened or saved.
    bool leaveAtOnce();
    /// Shows what earlier sessions left; opens it, discards it or keeps it for later.
    void offerRecovery();
    /// Recovery copies are written, and changes on disk are noticed when the window becomes active.
    void watch(bool on = true);
    /// Asks whether to read drawings again that somebody else has written. Each change is told once.
    void checkFiles();

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// Before the question whether to save this drawing.
    void asksAbout(AcApDocument *document);

private:
    void documentCreated(AcApDocument *document) override;
    void tick();
    void askAboutFile(AcApDocument *document);
    void reload(AcApDocument *document);
    bool openRecovered(const AcApRecoverable &copy);
    bool mayLose(const AcApDocument &document, const QString &path);
    bool write(AcApDocument *document, const QString &path, AcApOverwriteChanged overwrite);
    bool saveElsewhere(AcApDocument *document, const QString &reason);
    void tellRepairs(const AcApDocument &document);
    bool tell(const QString &trouble);
    int ask(QMessageBox &box);

    WindowFrontEnd &m_front;
    QWidget *m_window;
    AcApRecovery m_recovery;
    QTimer m_timer;
    std::map<QString, std::optional<base::FileStamp>> m_told; ///< Changes on disk, by path.
    QString m_toldTrouble;
    bool m_isAsking = false;
};

} // namespace window
